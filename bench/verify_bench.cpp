// Verifying a tree of models against decompiling it: in memory, as it is done, and with every file on the disk.

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>

#include "jobs/decompile_tree.h"
#include "jobs/verify_models.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"

namespace tarnwick {
namespace {

constexpr int Copies = 20;
constexpr int Bones = 12;
constexpr int Frames = 20;

/// A ball of 48 by 32 squares whose vertices follow two bones each, and, if it is `moving`, an animation of every bone.
tests::ModelBuilder Ball(bool moving) {
  constexpr int Around = 48, Down = 32;
  std::mt19937 random(7);
  std::uniform_real_distribution<float> noise(-0.2f, 0.2f);
  tests::ModelBuilder model;
  model.Bones.clear();
  for (int b = 0; b < (moving ? Bones : 1); ++b) {
    model.Bones.push_back({.Name = "bone_" + std::to_string(b), .Parent = b - 1, .Position = {0, 0, 4}});
  }
  tests::MeshDescription mesh;
  mesh.Vertices.clear();
  for (int d = 0; d <= Down; ++d) {
    for (int a = 0; a <= Around; ++a) {
      const float turn = 2 * std::numbers::pi_v<float> * static_cast<float>(a % Around) / Around;
      const float tilt = std::numbers::pi_v<float> * static_cast<float>(d) / Down;
      const model::Vec3 normal = {std::sin(tilt) * std::cos(turn), std::sin(tilt) * std::sin(turn), std::cos(tilt)};
      const float reach = 30 + noise(random);
      tests::VertexDescription vertex{.Position = {normal.x * reach, normal.y * reach, normal.z * reach},
                                      .Normal = normal,
                                      .U = static_cast<float>(a) / Around,
                                      .V = static_cast<float>(d) / Down};
      if (moving) {
        const auto bone = static_cast<uint8_t>(d * (Bones - 1) / (Down + 1));
        vertex.Weights = {{bone, 0.75f}, {static_cast<uint8_t>(bone + 1), 0.25f}};
      }
      mesh.Vertices.push_back(vertex);
    }
  }
  std::vector<uint16_t> corners;
  for (int d = 0; d < Down; ++d) {
    for (int a = 0; a < Around; ++a) {
      const int at = d * (Around + 1) + a, below = at + Around + 1;
      for (const int corner : {at, below, at + 1, at + 1, below, below + 1}) {
        corners.push_back(static_cast<uint16_t>(corner));
      }
    }
  }
  mesh.Lods = {tests::Triangles(corners)};
  model.BodyParts[0].Models[0].Meshes = {mesh};
  model.Animations = {{.Name = "idle"}};
  model.Sequences = {{.Label = "idle"}};
  if (!moving) return model;
  std::uniform_int_distribution<int> step(-400, 400);
  tests::AnimationDescription& animation = model.Animations[0];
  animation.FrameCount = Frames;
  for (int b = 0; b < Bones; ++b) {
    tests::BoneAnimDescription& bone = animation.Data.Bones.emplace_back();
    bone.Bone = static_cast<uint8_t>(b);
    std::array<tests::AxisRuns, 3> runs;
    for (tests::AxisRuns& axis : runs) {
      tests::RunDescription& run = axis.emplace_back();
      run.Total = Frames;
      for (int f = 0; f < Frames; ++f) run.Values.push_back(static_cast<int16_t>(step(random)));
    }
    bone.RotationRuns = runs;
  }
  return model;
}

/// Balls that move and balls that do not, each in a folder of its own.
const std::string& Tree() {
  static const tests::ScratchFolder folder;
  static const std::string path = [] {
    const tests::ModelBuilder still = Ball(false), moving = Ball(true);
    for (int i = 0; i < Copies; ++i) {
      const std::string below = folder.Path(std::to_string(i));
      std::filesystem::create_directory(below);
      still.Write(below, "still");
      moving.Write(below, "moving");
    }
    return folder.Path();
  }();
  return path;
}

class SilentHost : public jobs::Host {
 public:
  void On(const jobs::Event&) override {}
  bool Ask(const jobs::Question&) override { return false; }
};

template <typename Job>
void Run(benchmark::State& state, const Job& job) {
  SilentHost host;
  const jobs::JobResult result = jobs::Run(job, host, {});
  for (const jobs::ItemResult& item : result.Items) {
    // The balls hold values that no compiler writes; being compared is enough.
    if (!item.Succeeded() && !item.Verified) return state.SkipWithError((item.Source + ": " + item.Shown).c_str());
  }
  if (result.Items.size() != 2 * Copies) state.SkipWithError("models are missing");
}

void DecompileTree(benchmark::State& state) {
  const std::string& tree = Tree();
  for (auto _ : state) {
    const tests::ScratchFolder output;
    Run(state, jobs::DecompileTree{.Inputs = {tree},
                                   .OutputDirectory = output.Path(),
                                   .Recursive = true,
                                   .Options = decompiler::DecompileOptionReadyToCompile});
  }
}

void VerifyTree(benchmark::State& state) {
  const std::string& tree = Tree();
  jobs::VerifyModels job{.Inputs = {tree}, .Recursive = true};
  if (state.range(0) == 0) job.MemoryLimit = 0;
  for (auto _ : state) Run(state, job);
}

BENCHMARK(DecompileTree)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(VerifyTree)->ArgName("memory")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

}  // namespace
}  // namespace tarnwick
