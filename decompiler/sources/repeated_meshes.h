#pragma once

#include <map>
#include <string>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/vtx_records.h"

namespace tarnwick::decompiler::sources {

/// The models that were made of one source file: a script may name a file several times, and a compile then gives each
/// model the file's name. They need the file once.
class RepeatedMeshes {
 public:
  /// Keeps a model that was written to `file`.
  void Add(const JobContext& job, const core::Record<StudioModel>& model, const core::RecordArray<VtxModelLod>& lods,
           const std::string& file);

  /// The file of a model that was added, has the name of `model` (whatever its folder and its ending), and shows the
  /// same triangles at every level of detail; null if there is none. Models with faces have files of their own.
  [[nodiscard]] const std::string* FindSame(JobContext& job, const core::Record<StudioModel>& model,
                                            const core::RecordArray<VtxModelLod>& lods) const;

 private:
  struct Written {
    core::Record<StudioModel> Model;
    core::RecordArray<VtxModelLod> Lods;
    std::string File;
  };
  std::map<std::string, std::vector<Written>> m_written;  // by name, in small letters
};

}  // namespace tarnwick::decompiler::sources
