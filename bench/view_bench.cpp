// Posing a scene's bones against the plain way: every frame sought from the start of its runs, rotations along the true
// arc in double precision. And making a scene against the bare reading of its files.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>
#include <string>

#include "model/animation_records.h"
#include "support/model_builder.h"
#include "support/plain_scene_pose.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "view/scene/face.h"
#include "view/scene/make_scene.h"

namespace tarnwick {
namespace {

using namespace tests;
using namespace view;

constexpr int BoneCount = 100;
constexpr int Frames = 60;

AxisRuns Runs(std::mt19937& random) {
  std::uniform_int_distribution<int> step(-40, 40);
  RunDescription run{.Values = {}, .Total = Frames};
  for (int f = 0, value = 0; f < Frames; ++f) run.Values.push_back(static_cast<int16_t>(value += step(random)));
  return {run};
}

/// 100 bones; a sequence of two blends, and three that are layered: one of some bones, one plain, one a delta.
ModelBuilder Figure() {
  ModelBuilder model;
  model.Bones.clear();
  std::mt19937 random(3);
  for (int b = 0; b < BoneCount; ++b) {
    model.Bones.push_back({.Name = "bone" + std::to_string(b), .Parent = b == 0 ? -1 : b - 1 - b % 4});
  }
  for (int a = 0; a < 5; ++a) {
    AnimationDescription& animation = model.Animations.emplace_back();
    animation.Name = "@a" + std::to_string(a);
    animation.FrameCount = Frames;
    if (a == 4) animation.Flags = model::AnimFlagDelta;
    for (int b = 0; b < BoneCount; ++b) {
      animation.Data.Bones.push_back({.Bone = static_cast<uint8_t>(b),
                                      .RotationRuns = {{Runs(random), Runs(random), Runs(random)}},
                                      .IsDelta = a == 4});
    }
  }
  model.PoseParameters = {{"yaw", -1, 1}};
  std::vector<float> weights(BoneCount, 1.0f);
  std::fill_n(weights.begin(), BoneCount / 2, 0.5f);
  model.Sequences = {
      {.Label = "walk",
       .Blends = {0, 1},
       .BlendSize = {2, 1},
       .PoseParameter = {0, -1},
       .PoseStart = {-1, 0},
       .PoseEnd = {1, 0}},
      {.Label = "upper", .Blends = {2}, .Weights = weights},
      {.Label = "whole", .Blends = {3}},
      {.Label = "breath", .Flags = model::SequenceFlagDelta | model::SequenceFlagLayered, .Blends = {4}}};
  return model;
}

/// The model of the pose benchmarks, on the disk while the program runs.
const std::string& FigurePath() {
  static const ScratchFolder folder;
  static const std::string path = Figure().Write(folder.Path());
  return path;
}

Scene MakeFigure() {
  RecordingTroubles troubles;
  return *MakeScene(FigurePath(), troubles);
}

PoseRequest RequestAt(float cycle) {
  return {.Sequence = 0,
          .Cycle = cycle,
          .PoseParameters = {0.3f},
          .Layers = {{1, cycle, 0.7f}, {2, cycle, 0.4f}, {3, cycle, 0.9f}}};
}

/// As a viewer plays: a moment further on each time.
float NextCycle(float cycle) {
  return cycle > 0.99f ? 0 : cycle + 0.003f;
}

void Pose(benchmark::State& state) {
  const Scene scene = MakeFigure();
  ScenePose pose(scene);
  float cycle = 0;
  for (auto _ : state) {
    pose.Set(RequestAt(cycle));
    benchmark::DoNotOptimize(pose.SkinMatrices().data());
    cycle = NextCycle(cycle);
  }
}
BENCHMARK(Pose)->Unit(benchmark::kMicrosecond);

void PlainPose(benchmark::State& state) {
  const Scene scene = MakeFigure();
  float cycle = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(PlainScenePose(scene, RequestAt(cycle)));
    cycle = NextCycle(cycle);
  }
}
BENCHMARK(PlainPose)->Unit(benchmark::kMicrosecond);

/// A mesh of 128 x 128 squares, 32,768 triangles, in two levels.
ModelBuilder Carpet() {
  constexpr uint16_t Side = 129;
  MeshDescription mesh;
  mesh.Vertices.clear();
  std::vector<uint16_t> triangles;
  for (uint16_t y = 0; y < Side; ++y) {
    for (uint16_t x = 0; x < Side; ++x) {
      mesh.Vertices.push_back({.Position = {static_cast<float>(x), static_cast<float>(y), 0},
                               .U = static_cast<float>(x),
                               .V = static_cast<float>(y)});
      if (x + 1 == Side || y + 1 == Side) continue;
      const auto at = static_cast<uint16_t>(y * Side + x);
      const auto above = static_cast<uint16_t>(at + Side);
      for (const int corner : {int{at}, at + 1, int{above}, int{above}, at + 1, above + 1}) {
        triangles.push_back(static_cast<uint16_t>(corner));
      }
    }
  }
  mesh.Lods = {Triangles(triangles), Triangles(triangles)};
  ModelBuilder model;
  model.BodyParts[0].Models[0] = {.Meshes = {mesh}, .SwitchDistances = {0, 10}};
  return model;
}

const std::string& CarpetPath() {
  static const ScratchFolder folder;
  static const std::string path = Carpet().Write(folder.Path());
  return path;
}

void SceneOfMesh(benchmark::State& state) {
  const std::string path = CarpetPath();
  RecordingTroubles troubles;
  for (auto _ : state) benchmark::DoNotOptimize(MakeScene(path, troubles));
}
BENCHMARK(SceneOfMesh)->Unit(benchmark::kMillisecond);

/// What reading the same files costs.
void BareReading(benchmark::State& state) {
  const std::string stem = CarpetPath().substr(0, CarpetPath().size() - 4);
  for (auto _ : state) {
    for (const char* extension : {".mdl", ".dx90.vtx", ".vvd"}) {
      benchmark::DoNotOptimize(core::FileImage::Read(stem + extension));
    }
  }
}
BENCHMARK(BareReading)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnwick
