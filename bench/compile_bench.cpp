// Reading sources against the plain way (a line at a time by fgets, cut by strtok, numbers by strtod), and a compile of
// an animation library against taking it apart.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "smd/smd_reader.h"
#include "support/model_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick {
namespace {

using namespace tests;

constexpr int BoneCount = 60;

std::string Nodes() {
  std::string text = "version 1\nnodes\n";
  for (int b = 0; b < BoneCount; ++b) {
    text += std::to_string(b) + " \"FreeBone_" + std::to_string(b) + "\" " + std::to_string(b - 1) + "\n";
  }
  return text + "end\nskeleton\n";
}

std::string Poses(std::mt19937& random, int frames) {
  std::uniform_real_distribution<double> place(-40, 40), turn(-3, 3);
  std::string text;
  char line[160];
  for (int f = 0; f < frames; ++f) {
    text += "time " + std::to_string(f) + "\n";
    for (int b = 0; b < BoneCount; ++b) {
      std::snprintf(line, sizeof line, "  %d %f %f %f %f %f %f\n", b, place(random), place(random), place(random),
                    turn(random), turn(random), turn(random));
      text += line;
    }
  }
  return text + "end\n";
}

const std::string& AnimationText() {
  static const std::string text = [] {
    std::mt19937 random(3);
    return Nodes() + Poses(random, 3000);
  }();
  return text;
}

const std::string& MeshText() {
  static const std::string text = [] {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-40, 40), unit(-1, 1);
    std::string mesh = Nodes() + Poses(random, 1) + "triangles\n";
    char line[240];
    for (int corner = 0; corner < 150'000; ++corner) {
      if (corner % 3 == 0) mesh += "material_" + std::to_string(corner / 30'000) + ".tga\n";
      const double weight = 0.5 + 0.5 * std::abs(unit(random));
      std::snprintf(line, sizeof line, "%d %f %f %f %f %f %f %f %f 2 %d %f %d %f\n", corner % BoneCount, place(random),
                    place(random), place(random), unit(random), unit(random), unit(random), unit(random), unit(random),
                    corner % BoneCount, weight, (corner + 1) % BoneCount, 1 - weight);
      mesh += line;
    }
    return mesh + "end\n";
  }();
  return text;
}

/// Every number of every line, kept.
std::vector<float> ReadPlainly(const std::string& text) {
  std::vector<float> numbers;
  std::FILE* const file = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
  char line[1024];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    for (char* word = std::strtok(line, " \t\r\n"); word != nullptr; word = std::strtok(nullptr, " \t\r\n")) {
      char* end = nullptr;
      const double value = std::strtod(word, &end);
      if (end != word) numbers.push_back(static_cast<float>(value));
    }
  }
  std::fclose(file);
  return numbers;
}

void Plain(benchmark::State& state, const std::string& text) {
  for (auto _ : state) benchmark::DoNotOptimize(ReadPlainly(text));
  state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

void Fast(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    smd::SmdSource source;
    benchmark::DoNotOptimize(smd::ReadSource(text, "bench.smd", source));
    if (source.Nodes.size() != static_cast<size_t>(BoneCount)) state.SkipWithError("the text was not read");
  }
  state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

/// A model of `animations` animations of 16 frames, in which every bone turns.
ModelBuilder Library(int animations) {
  std::mt19937 random(11);
  std::uniform_int_distribution<int> step(-400, 400);
  ModelBuilder model;
  model.Bones.clear();
  for (int b = 0; b < BoneCount; ++b) {
    model.Bones.push_back({.Name = "FreeBone_" + std::to_string(b), .Parent = b - 1, .Position = {0, 1, 2}});
  }
  for (int i = 0; i < animations; ++i) {
    AnimationDescription animation{.Name = "motion_" + std::to_string(i), .FrameCount = 16};
    for (int b = 0; b < BoneCount; ++b) {
      BoneAnimDescription& bone = animation.Data.Bones.emplace_back();
      bone.Bone = static_cast<uint8_t>(b);
      std::array<AxisRuns, 3> runs;
      for (AxisRuns& axis : runs) {
        RunDescription& run = axis.emplace_back();
        run.Total = 16;
        for (int f = 0; f < 16; ++f) run.Values.push_back(static_cast<int16_t>(step(random)));
      }
      bone.RotationRuns = runs;
    }
    model.Animations.push_back(animation);
    SequenceDescription sequence{.Label = animation.Name, .Blends = {static_cast<int16_t>(i)}, .BlendSize = {1, 1}};
    model.Sequences.push_back(sequence);
  }
  return model;
}

/// A library on the disk, taken apart by its first use.
struct Subject {
  ScratchFolder Folder, Sources;
  std::string Path = Library(1000).Write(Folder.Path(), "library");

  Subject() { Decompile(Sources); }
  void Decompile(const ScratchFolder& output) const {
    decompiler::DecompileJob job{
        .ModelPath = Path, .OutputDirectory = output.Path(), .Options = decompiler::DecompileOptionReadyToCompile};
    RecordingReport report;
    if (!decompiler::DecompileModel(job, report).Succeeded()) std::abort();
  }
};

const Subject& TheSubject() {
  static const Subject subject;
  return subject;
}

void LibraryDecompile(benchmark::State& state) {
  const Subject& subject = TheSubject();
  for (auto _ : state) {
    state.PauseTiming();
    auto output = std::make_unique<ScratchFolder>();
    state.ResumeTiming();
    subject.Decompile(*output);
    state.PauseTiming();
    output.reset();
    state.ResumeTiming();
  }
}

void LibraryCompile(benchmark::State& state) {
  const Subject& subject = TheSubject();
  for (auto _ : state) {
    compiler::CompileReport report;
    if (!compiler::CompileToMemory(subject.Sources.Path("ravelback.qc"), {}, report)) {
      state.SkipWithError("the library does not compile");
    }
  }
}

BENCHMARK_CAPTURE(Plain, Mesh, MeshText())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Fast, Mesh, MeshText())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Plain, Animation, AnimationText())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Fast, Animation, AnimationText())->Unit(benchmark::kMillisecond);
BENCHMARK(LibraryDecompile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryCompile)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tarnwick
