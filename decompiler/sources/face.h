#pragma once

#include <string_view>
#include <vector>

#include "decompiler/job/job_context.h"
#include "decompiler/sources/face_shapes.h"
#include "model/face_records.h"

namespace tarnwick::decompiler::sources {

/// What the face commands of all models of a script share.
struct FaceNames {
  std::vector<std::string_view> Descriptors;
  std::vector<bool> Known;  // those that a flex, a pair or a lid declares
  /// Puts the descriptor's name among those that are known; nothing for a number that is none.
  void Declare(int64_t descriptor) {
    if (descriptor >= 0 && descriptor < static_cast<int64_t>(Known.size()))
      Known[static_cast<size_t>(descriptor)] = true;
  }
  [[nodiscard]] bool Has(int64_t descriptor) const {
    return descriptor >= 0 && descriptor < static_cast<int64_t>(Descriptors.size());
  }
};

/// The names of the model's flex descriptors. Nothing, told, if the table is damaged.
[[nodiscard]] std::optional<FaceNames> ReadFaceNames(JobContext& job);

/// Whether the file has anything that moves faces beside the flexes and eyes of its models: controllers, rules, mouths.
[[nodiscard]] bool HasSharedFace(const JobContext& job);

/// Writes what moves the face of one model into its open `$model` block: the `flexfile` block with its VTA file,
/// eyeballs and eyelids.
void WriteModelFace(JobContext& job, const core::Record<StudioModel>& model, FaceNames& names);

/// Writes, into the last `$model` block with a face, what the file holds once for all its models: mouths, controllers,
/// local variables and rules.
void WriteSharedFace(JobContext& job, const FaceNames& names);

/// Counts as lost what `WriteSharedFace` would have written.
void LoseSharedFace(JobContext& job);

/// Counts as lost the flexes and eyes of a model that a body group offers: no statement has a block for it there.
void LoseModelFace(JobContext& job, const core::Record<StudioModel>& model);

/// The descriptors that the lids of the model's eyes name, in the order of their lines.
[[nodiscard]] std::vector<int32_t> LidDescriptors(JobContext& job, const core::Record<StudioModel>& model);

/// Writes the eyes of a model with their lids. The shapes of the lids are those with frames in `frames`, one a shape,
/// 0 for none.
void WriteEyes(JobContext& job, const core::Record<StudioModel>& model, FaceNames& names, std::string_view vtaName,
               const FaceShapes& shapes, const std::vector<int32_t>& frames);

/// The shapes that lids of the model's eyes show: `flex` lines do not name them.
[[nodiscard]] std::vector<bool> FindLidShapes(JobContext& job, const core::Record<StudioModel>& model,
                                              const FaceShapes& shapes);

}  // namespace tarnwick::decompiler::sources
