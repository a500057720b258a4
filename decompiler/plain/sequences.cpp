#include "decompiler/plain/sequences.h"

#include "decompiler/plain/blended_animations.h"
#include "decompiler/plain/sequence_statement.h"

namespace tarnwick::decompiler::plain {

namespace {

/// An animation that an earlier place of a blend table has brought. False when the stage is to end.
bool ExportAgain(JobContext& job, const NamedAnimation& animation, const AnimationFiles::Export& earlier) {
  if (!SpendForAnimationLines(job, animation.Name)) return false;
  if (earlier.File.empty()) return true;
  if (earlier.State == AnimationFiles::Outcome::Written) {
    if (job.Animations.LastWriters[FileKey(earlier.File)] != animation.Number) {
      if (!WriteAnimationFile(job, animation, std::string(earlier.File),
                              {.OnDefaultPose = !job.DeltaReference.empty()}))
        return false;
    } else {
      DecompileLog(job, "Creating " + earlier.File + "\r\n");
    }
  } else if (earlier.State == AnimationFiles::Outcome::NotOpened) {
    DecompileLog(job, "Unable to open file " + earlier.File);
  }
  WriteAnimationStatement(job, animation, animation.Name);
  return true;
}

/// Exports one animation. False when the stage is to end.
bool ExportAnimation(JobContext& job, const core::Record<StudioAnimDesc>& description, int64_t number) {
  auto& exports = job.Animations.Exports;
  if (const auto found = exports.find(number); found != exports.end()) {
    const auto name = job.Model.NameOf(description, description->NameOffset);
    return ExportAgain(job, {description, number, name.value_or("")}, found->second);
  }
  const auto name = job.NameOf("animation name", description, description->NameOffset);
  if (!name) {
    exports[number] = {{}, AnimationFiles::Outcome::NoFile};
    return true;
  }
  const NamedAnimation animation{description, number, *name};
  if (!SpendForAnimationLines(job, *name)) return false;
  if (animation.IsDelta() && !job.DeltaWritten &&
      !WriteDeltaReference(job, std::string(DeltaStem) + std::string(AnimationExtension))) {
    return false;
  }
  if (!HasFrames(job, animation)) return true;
  if (job.Stopped() || GetAnimationSmdModel(job) == nullptr) return false;
  if (!WriteAnimationFile(job, animation, std::string(AnimationStem(*name)) + std::string(AnimationExtension),
                          {.OnDefaultPose = !job.DeltaReference.empty()})) {
    return false;
  }
  WriteAnimationStatement(job, animation, *name);
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

}  // namespace tarnwick::decompiler::plain
