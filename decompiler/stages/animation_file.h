#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "decompiler/job/job_context.h"
#include "decompiler/writers/animation_smd.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler {

inline constexpr std::string_view AnimationExtension = ".smd";
/// The file of the pose that delta animations are differences to, less its extension.
inline constexpr std::string_view DeltaStem = "ravelback_delta";

/// An animation on its way into a file.
struct NamedAnimation {
  core::Record<StudioAnimDesc> Description;
  int64_t Number = 0;
  std::string_view Name;

  bool IsDelta() const { return (Description->Flags & AnimFlagDelta) != 0; }
};

/// The name of an animation less an "@" before it.
[[nodiscard]] std::string_view AnimationStem(std::string_view name);

/// The name of an animation's file less its extension.
[[nodiscard]] inline std::string_view AnimationSource(std::string_view file) {
  return file.substr(0, file.size() - std::min(file.size(), AnimationExtension.size()));
}

/// Pays for the log and script lines of an animation. False when the stage is to end.
[[nodiscard]] bool SpendForAnimationLines(JobContext& job, std::string_view name);

/// What all animation files of the job share; made at the first call. Nothing, told, if it cannot be had.
[[nodiscard]] const AnimationSmdModel* GetAnimationSmdModel(JobContext& job);

/// Whether the animation has frames; if not, that is told and its place among the job's exports says so.
[[nodiscard]] bool HasFrames(JobContext& job, const NamedAnimation& animation);

/// Writes the delta reference file `name` with its `$animation` line. False when the stage is to end.
[[nodiscard]] bool WriteDeltaReference(JobContext& job, std::string name);

/// Writes the animation to the file `name`. What became of it stands among the job's exports. A file that cannot be
/// opened and damaged data cost that one file, and are told. False when the stage is to end.
[[nodiscard]] bool WriteAnimationFile(JobContext& job, const NamedAnimation& animation, const std::string& name,
                                      AnimationSmdForm form);

}  // namespace tarnwick::decompiler
