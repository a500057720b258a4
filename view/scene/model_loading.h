#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/file_source.h"
#include "core/trouble.h"
#include "model/model_reader.h"

namespace tarnwick::view {

/// Loads the files of one model into a reader, each under a name of any case and wherever `files` has it. What is
/// missing is told.
class ModelLoading {
 public:
  /// What cannot be read is told as `failure`. All three references outlive this object.
  ModelLoading(std::string path, const core::FileSource& files, model::ModelReader& reader,
               core::Severity failure = core::Severity::Error)
      : m_path(std::move(path)), m_files(files), m_reader(reader), m_failure(failure) {}

  /// The .mdl file; false, told, if it is no model.
  bool LoadModel();
  /// The .vtx and .vvd files of a model that has body parts.
  void LoadMesh();
  /// The file in which animations lie, for a model that has one.
  void LoadAnimBlocks();
  std::optional<core::FileImage> ReadBeside(std::string_view extension);

  /// Of all files that were read.
  int64_t FileBytes() const { return m_fileBytes; }

 private:
  std::optional<core::FileImage> Read(const std::string& path, std::string& reason) const;
  bool Refuse(core::TroubleKind kind, std::string text);
  std::string Beside(std::string_view extension) const;
  void TellMissing(const std::string& path, core::TroubleKind kind, const std::string& reason);
  void Count(const core::FileImage& file) { m_fileBytes += file.View().Size(); }
  void LoadVtx();
  void LoadVvd();

  const std::string m_path;
  const core::FileSource& m_files;
  model::ModelReader& m_reader;
  const core::Severity m_failure;
  int64_t m_fileBytes = 0;
};

}  // namespace tarnwick::view
