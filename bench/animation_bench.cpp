// Animation export against the plain way: each frame decoded from the start of its runs, each number printed by
// fprintf.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "core/work_queue.h"
#include "decompiler/plain/sequences.h"
#include "decompiler/stages/animation_file.h"
#include "model/animation_check.h"
#include "support/model_builder.h"
#include "support/plain_animation.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick {
namespace {

using namespace decompiler;
using namespace tests;

constexpr int BoneCount = 60;

/// Runs for `frames` frames: `valid` values that wander, held up to `total`.
AxisRuns Runs(std::mt19937& random, int frames, int valid, int total) {
  std::uniform_int_distribution<int> step(-40, 40);
  AxisRuns runs;
  int value = 0;
  for (int covered = 0; covered < frames; covered += total) {
    RunDescription& run = runs.emplace_back();
    run.Total = static_cast<uint8_t>(std::min(total, frames - covered));
    for (int i = 0; i < std::min<int>(valid, run.Total); ++i) {
      value += step(random);
      run.Values.push_back(static_cast<int16_t>(value));
    }
  }
  return runs;
}

/// Data in which every bone turns in all axes and every tenth moves.
AnimDataDescription MovingData(std::mt19937& random, int frames, int valid, int total) {
  AnimDataDescription data;
  const auto axes = [&] {
    return std::array{Runs(random, frames, valid, total), Runs(random, frames, valid, total),
                      Runs(random, frames, valid, total)};
  };
  for (int b = 0; b < BoneCount; ++b) {
    BoneAnimDescription& bone = data.Bones.emplace_back();
    bone.Bone = static_cast<uint8_t>(b);
    bone.RotationRuns = axes();
    if (b % 10 == 0) bone.PositionRuns = axes();
  }
  return data;
}

/// More values than these do not fit behind a bone's 16-bit offsets; longer animations come in sections of this length.
constexpr int SectionFrames = 1000;

AnimationDescription MovingAnimation(std::mt19937& random, const std::string& name, int frames, int valid, int total) {
  AnimationDescription animation{.Name = name, .FrameCount = frames};
  if (frames / total * valid <= 2 * SectionFrames) {
    animation.Data = MovingData(random, frames, valid, total);
  } else {
    animation.SectionFrames = SectionFrames;
    for (int section = 0; section < frames / SectionFrames + 2; ++section) {
      animation.Sections.push_back(MovingData(random, SectionFrames, valid, total));
    }
  }
  return animation;
}

/// A model with the bones of a figure and one sequence that blends all of its animations.
ModelBuilder Figure() {
  ModelBuilder model;
  model.BodyParts.clear();
  model.Bones.clear();
  std::mt19937 random(7);
  std::uniform_real_distribution<float> place(-12, 12), turn(-1, 1);
  for (int b = 0; b < BoneCount; ++b) {
    model.Bones.push_back({.Name = "ValveFreeBone_" + std::to_string(b),
                           .Parent = b - 1 - b / 3 % 4 < 0 ? b - 1 : b - 1 - b / 3 % 4,
                           .Position = {place(random), place(random), place(random)},
                           .Angles = {turn(random), turn(random), turn(random)}});
  }
  return model;
}

ModelBuilder Library(int animations, int frames, int valid, int total) {
  ModelBuilder model = Figure();
  std::mt19937 random(11);
  SequenceDescription sequence{.Blends = {}, .BlendSize = {animations, 1}};
  for (int i = 0; i < animations; ++i) {
    model.Animations.push_back(MovingAnimation(random, "motion_" + std::to_string(i), frames, valid, total));
    sequence.Blends.push_back(static_cast<int16_t>(i));
  }
  model.Sequences = {std::move(sequence)};
  return model;
}

/// A built model on the disk, and jobs over it.
struct Subject {
  explicit Subject(const ModelBuilder& model) {
    Record.ModelPath = model.Write(Folder.Path(), "figure");
    Clear();
  }

  /// Begins an output folder with nothing in it.
  void Clear() {
    Output.emplace();
    Record.OutputDirectory = Output->Path();
  }

  /// The job's record must outlive the job.
  std::unique_ptr<JobContext> Begin(core::WorkQueue* helpers = nullptr) {
    Record.Helpers = helpers;
    auto job = std::make_unique<JobContext>(Record, Report);
    job->Model.Mdl = *LoadModelFile(Record.ModelPath);
    return job;
  }

  ScratchFolder Folder;
  std::optional<ScratchFolder> Output;
  RecordingReport Report;
  DecompileJob Record;
};

core::Record<StudioAnimDesc> AnimationOf(const JobContext& job, int64_t index) {
  const auto header = job.Model.Header();
  return (*job.Model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount))[index];
}

void Count(benchmark::State& state, uint64_t bytes) {
  state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
}

void PlainFiles(benchmark::State& state, const ModelBuilder& model) {
  Subject subject(model);
  uint64_t bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    subject.Clear();
    state.ResumeTiming();
    const auto job = subject.Begin();
    bytes = 0;
    for (int64_t i = 0; i < job->Model.Header()->AnimCount; ++i) {
      const std::string path = subject.Output->Path("motion_" + std::to_string(i) + ".smd");
      std::FILE* const file = std::fopen(path.c_str(), "w");
      PlainAnimationSmd(file, *job, AnimationOf(*job, i));
      bytes += static_cast<uint64_t>(std::ftell(file));
      std::fclose(file);
    }
  }
  Count(state, bytes);
}

/// A whole export with `threads` threads besides the job's own.
void OurFiles(benchmark::State& state, const ModelBuilder& model, int threads) {
  Subject subject(model);
  std::optional<core::WorkQueue> helpers;
  if (threads > 0) helpers.emplace(threads);
  uint64_t bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    subject.Clear();
    state.ResumeTiming();
    const auto job = subject.Begin(helpers ? &*helpers : nullptr);
    std::string script;
    core::TextWriter writer(script);
    job->SetScript(writer);
    plain::ExportSequenceAnimations(*job, *job->Model.View().At<StudioSeqDesc>(job->Model.Header()->SequenceOffset));
    job->FinishFiles();
    bytes = 0;
    for (const WrittenFile& file : job->Result().Files) bytes += file.Size;
  }
  Count(state, bytes);
}

const ModelBuilder& ShortAnimations() {
  static const ModelBuilder model = Library(1000, 16, 16, 16);
  return model;
}

const ModelBuilder& LongAnimation() {
  static const ModelBuilder model = Library(1, 5000, 60, 250);
  return model;
}

void LibraryPlain(benchmark::State& state) {
  PlainFiles(state, ShortAnimations());
}
void LibraryOneCore(benchmark::State& state) {
  OurFiles(state, ShortAnimations(), 0);
}
void LibraryTwoCores(benchmark::State& state) {
  OurFiles(state, ShortAnimations(), 1);
}
BENCHMARK(LibraryPlain)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryOneCore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryTwoCores)->Unit(benchmark::kMillisecond)->UseRealTime();

void LongPlain(benchmark::State& state) {
  PlainFiles(state, LongAnimation());
}
void LongOneCore(benchmark::State& state) {
  OurFiles(state, LongAnimation(), 0);
}
BENCHMARK(LongPlain)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LongOneCore)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Time for each byte of text, without a file, of one animation with this many frames, all of which differ.
void BytesInMemory(benchmark::State& state) {
  const auto frames = static_cast<int>(state.range(0));
  Subject subject(Library(1, frames, 60, 60));
  const auto job = subject.Begin();
  const auto* model = GetAnimationSmdModel(*job);
  const auto checked = CheckAnimation(*job, AnimationOf(*job, 0), "motion");
  std::string text;
  for (auto _ : state) {
    text.clear();
    core::TextWriter writer(text);
    WriteAnimationSmd(writer, *model, *checked, {});
    writer.Flush();
    benchmark::DoNotOptimize(text.data());
  }
  Count(state, text.size());
}
BENCHMARK(BytesInMemory)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace
}  // namespace tarnwick
