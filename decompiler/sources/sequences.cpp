#include "decompiler/sources/sequences.h"

#include "decompiler/stages/animation_file.h"
#include "decompiler/stages/sequence_statement.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Exports one animation. False when the stage is to end.
bool ExportAnimation(JobContext& job, const core::Record<StudioAnimDesc>& description, int64_t number) {
  auto& exports = job.Animations.Exports;
  const bool known = exports.contains(number);
  const auto name = known ? job.Model.NameOf(description, description->NameOffset)
                          : job.NameOf("animation name", description, description->NameOffset);
  if (known) return SpendForAnimationLines(job, name.value_or(""));
  if (!name) {
    exports[number] = {{}, AnimationFiles::Outcome::NoFile};
    return true;
  }
  const NamedAnimation animation{description, number, *name};
  if (!SpendForAnimationLines(job, *name)) return false;
  if (animation.IsDelta() && !job.DeltaWritten &&
      !WriteDeltaReference(job, job.Names.Take(DeltaStem, AnimationExtension))) {
    return false;
  }
  if (!HasFrames(job, animation)) return true;
  if (job.Stopped() || GetAnimationSmdModel(job) == nullptr) return false;
  const std::string file = job.Names.Take(AnimationStem(*name), AnimationExtension);
  if (!WriteAnimationFile(job, animation, file)) return false;
  WriteAnimationStatement(job, animation, std::string_view(file).substr(0, file.size() - AnimationExtension.size()));
  return true;
}

}  // namespace

std::string ExportSequenceAnimations(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  ForEachBlended(job, sequence, [&job](const core::Record<StudioAnimDesc>& description, int64_t number) {
    return ExportAnimation(job, description, number);
  });
  return job.DeltaReference;
}

void WriteSequences(JobContext& job) {
  WriteSequenceStatements(job, ExportSequenceAnimations);
}

}  // namespace tarnwick::decompiler::sources
