#include "decompiler/stages/animation_file.h"

#include <algorithm>
#include <utility>

namespace tarnwick::decompiler {

namespace {

/// Stands for the delta reference among the numbers of animations.
constexpr int64_t DeltaNumber = -1;

/// What one place of a blend table costs a job (see JobContext::Spend) on top of the names in its log and script lines.
constexpr int64_t BlendCost = 128;
constexpr int64_t NamesInLines = 4;

/// The longest text of one animation, for a file of models of this many bytes: 256 MiB, which 60 bones fill in more
/// than 50,000 frames, and as much again for every megabyte of data. A frame count beyond it is no frame count.
constexpr int64_t MostTextBase = int64_t{256} << 20;
constexpr int64_t MostTextForEachByte = 256;

/// The bytes that the animation's data lie in.
int64_t DataSize(const JobContext& job) {
  return job.Model.View().Size() + (job.Model.AnimBlocks ? job.Model.AnimBlocks->File.View().Size() : 0);
}

void TellDamage(JobContext& job, const NamedAnimation& animation, std::string_view problem) {
  TellAnimationDamage(job, job.Model.Mdl.Path(), animation.Name, "record", animation.Description.Offset(), problem);
}

/// Begins a file and tells so in the log. Nothing if it cannot be opened.
std::optional<core::OutputFile> Open(JobContext& job, const std::string& name, int64_t number) {
  std::string reason;
  auto file = job.Create(name, &reason);
  if (file) {
    job.Animations.LastWriters[FileKey(name)] = number;
    DecompileLog(job, "Creating " + name + "\r\n");
  } else {
    job.LogError(job.OutputPath(name) + ": " + reason, core::TroubleKind::Unwritable, reason);
    DecompileLog(job, "Unable to open file " + name);
  }
  return file;
}

}  // namespace

std::string_view AnimationStem(std::string_view name) {
  return name.substr(name.starts_with('@') ? 1 : 0);
}

bool SpendForAnimationLines(JobContext& job, std::string_view name) {
  return job.Spend(BlendCost + NamesInLines * static_cast<int64_t>(name.size()));
}

const AnimationSmdModel* GetAnimationSmdModel(JobContext& job) {
  AnimationFiles& files = job.Animations;
  if (!std::exchange(files.ModelSought, true)) {
    const Skeleton* skeleton = GetSkeleton(job);
    if (skeleton != nullptr && job.Spend(AnimationHeadSize(*skeleton))) {
      files.Model = MakeAnimationSmdModel(*skeleton, !job.KeepRotations());
    }
  }
  return files.Model.get();
}

bool HasFrames(JobContext& job, const NamedAnimation& animation) {
  const int32_t count = animation.Description->FrameCount;
  if (count > 0) return true;
  if (count == 0) {
    job.Advise("Animation " + std::string(animation.Name) +
               " has no frames: there is no file for it, though sequences name it");
  } else {
    TellDamage(job, animation, "has a negative number of frames");
  }
  job.Animations.Exports[animation.Number] = {{}, AnimationFiles::Outcome::NoFile};
  return false;
}

bool WriteDeltaReference(JobContext& job, std::string name) {
  const AnimationSmdModel* model = job.Stopped() ? nullptr : GetAnimationSmdModel(job);
  if (model == nullptr) return false;
  job.DeltaWritten = true;
  job.DeltaReference = std::move(name);
  if (!job.Spend(FileCost + AnimationSmdSize(*model, 2))) return false;
  if (auto file = Open(job, job.DeltaReference, DeltaNumber)) {
    job.WriteFile(std::move(*file),
                  [shared = job.Animations.Model, turned = job.ReadyToCompile()](core::TextWriter& writer) {
                    WriteBindPoseSmd(writer, *shared, turned);
                    return true;
                  });
  }
  if (!job.ReadyToCompile()) {
    job.Script().Format("$animation %s \"%s\" fps 30\n", job.DeltaReference, job.DeltaReference);
  }
  return true;
}

bool WriteAnimationFile(JobContext& job, const NamedAnimation& animation, const std::string& name,
                        AnimationSmdForm form) {
  AnimationFiles::Export& outcome = job.Animations.Exports[animation.Number];
  outcome = {name, AnimationFiles::Outcome::NoFile};
  const int32_t frames = animation.Description->FrameCount;
  const int64_t size = AnimationSmdSize(*GetAnimationSmdModel(job), int64_t{frames} + 1);
  if (size > MostTextBase + MostTextForEachByte * DataSize(job)) {
    TellDamage(job, animation, "has " + std::to_string(frames) + " frames, more than its data can hold");
    return true;
  }
  if (!job.Spend(FileCost + size)) return false;
  auto checked = CheckAnimation(job, animation.Description, animation.Name);
  if (!checked) return true;
  auto file = Open(job, name, animation.Number);
  outcome.State = file ? AnimationFiles::Outcome::Written : AnimationFiles::Outcome::NotOpened;
  if (!file) return true;
  job.WriteFile(std::move(*file), [model = job.Animations.Model, data = std::move(*checked),
                                   what = std::move(form)](core::TextWriter& writer) {
    WriteAnimationSmd(writer, *model, data, what);
    return true;
  });
  return true;
}

}  // namespace tarnwick::decompiler
