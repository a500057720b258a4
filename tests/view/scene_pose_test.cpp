#include "view/scene/scene_pose.h"

#include <cmath>

#include "model/animation_records.h"
#include "scene_support.h"
#include "support/plain_scene_pose.h"
#include "view/scene/sequence_place.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {
namespace {

using namespace tests;
using model::StudioAutoLayer;

constexpr float HalfRoot = 0.70710678f;

/// Runs of an axis of a position (a hundredth of a unit) or a rotation (a thousandth of a radian).
AxisRuns Runs(std::vector<int16_t> values) {
  const auto count = static_cast<uint8_t>(values.size());
  return {{std::move(values), count}};
}

/// An animation that moves bone 1 along X through these hundredths of a unit.
AnimationDescription Moves(const std::string& name, std::vector<int16_t> values, uint32_t flags = 0) {
  const auto count = static_cast<int32_t>(values.size());
  return {.Name = name,
          .Flags = flags,
          .FrameCount = count,
          .Data = {.Bones = {{.Bone = 1,
                              .PositionRuns = {{Runs(std::move(values)), {}, {}}},
                              .IsDelta = (flags & model::AnimFlagDelta) != 0}}}};
}

/// An animation of one frame that turns bone 1 by thousandths of a radian about Z.
AnimationDescription Turns(const std::string& name, int16_t z, uint32_t flags = 0) {
  return {.Name = name,
          .Flags = flags,
          .Data = {.Bones = {{.Bone = 1,
                              .RotationRuns = {{AxisRuns{}, AxisRuns{}, Runs({z})}},
                              .IsDelta = (flags & model::AnimFlagDelta) != 0}}}};
}

/// Two bones, one 8 units along X from the other.
ModelBuilder TwoBones() {
  ModelBuilder model;
  model.Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0, .Position = {8, 0, 0}}};
  return model;
}

Vec3 HandOf(ScenePose& pose, const PoseRequest& request) {
  pose.Set(request);
  return pose.Bones()[1].Translation();
}

TEST(ScenePose, RestStandsAsTheModelIsTurned) {
  // Without an animation a compiler's quarter turn is the guess; a static model is not turned.
  ModelBuilder model = TwoBones();
  const BuiltScene turned(model);
  ScenePose pose(*turned);
  EXPECT_THAT(pose.Bones()[1].Translation(), Is(0, 8, 0));
  EXPECT_THAT(TransformPoint(pose.SkinMatrices()[1], {8, 1, 0}), Is(-1, 8, 0));
  model.Flags = model::ModelFlagStatic;
  const BuiltScene standing(model);
  EXPECT_THAT(ScenePose(*standing).Bones()[1].Translation(), Is(8, 0, 0));
  // The first animation tells.
  model.Flags = 0;
  model.Animations = {{.Data = {.Bones = {{.Bone = 0, .RotationRuns = {{AxisRuns{}, AxisRuns{}, Runs({1571})}}}}}}};
  model.Sequences = {{}};
  EXPECT_THAT(ScenePose(*BuiltScene(model)).Bones()[1].Translation(), Is(0, 8, 0));
  model.Animations = {{}};
  EXPECT_THAT(ScenePose(*BuiltScene(model)).Bones()[1].Translation(), Is(8, 0, 0));
}

TEST(ScenePose, GoesFromFrameToFrame) {
  ModelBuilder model = TwoBones();
  std::vector<int16_t> values;
  for (int16_t i = 0; i < 41; ++i) values.push_back(static_cast<int16_t>(i * 10));
  model.Animations = {Moves("@walk", values)};
  model.Sequences = {{.Label = "walk"}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  for (const float frame : {0.0f, 40.0f, 0.5f, 15.75f, 16.0f, 31.5f, 3.0f}) {
    EXPECT_THAT(HandOf(pose, {.Sequence = 0, .Cycle = frame / 40}), IsNear(8 + frame / 10, 0, 0, 2e-3f)) << frame;
  }
  // What cannot be: another sequence, a cycle that is none.
  EXPECT_THAT(HandOf(pose, {.Sequence = 7}), Is(8, 0, 0));
  EXPECT_THAT(HandOf(pose, {.Sequence = 0, .Cycle = NAN}), Is(8, 0, 0));
  EXPECT_THAT(HandOf(pose, {.Sequence = 0, .Cycle = 9}), Is(12, 0, 0));
}

TEST(ScenePose, BlendsAlongBothAxes) {
  ModelBuilder model = TwoBones();
  for (int16_t i = 0; i < 6; ++i) {
    model.Animations.push_back(Moves("@a" + std::to_string(i), {static_cast<int16_t>(i * 100)}));
  }
  model.PoseParameters = {{"across", -1, 1}, {"down", 0, 10}};
  model.Sequences = {{.Label = "grid",
                      .Blends = {0, 1, 2, 3, 4, 5},
                      .BlendSize = {3, 2},
                      .PoseParameter = {0, 1},
                      .PoseStart = {-1, 0},
                      .PoseEnd = {1, 10}}};
  const auto x = [](const Scene& scene, std::vector<float> values) {
    ScenePose pose(scene);
    return HandOf(pose, {.Sequence = 0, .PoseParameters = std::move(values)}).X - 8;
  };
  const BuiltScene even(model);
  EXPECT_NEAR(x(*even, {-1, 0}), 0, 1e-3);
  EXPECT_NEAR(x(*even, {-0.5f, 0}), 0.5, 1e-3);
  EXPECT_NEAR(x(*even, {1, 0}), 2, 1e-3);
  EXPECT_NEAR(x(*even, {0.5f, 5}), 1.5 + 1.5, 1e-3);
  EXPECT_NEAR(x(*even, {5, 50}), 5, 1e-3);
  EXPECT_NEAR(x(*even, {}), 1, 1e-3) << "the defaults are 0 and 0";
  model.Sequences[0].PoseKeys = {-1, 0.5f, 1, 0, 10};
  const BuiltScene keyed(model);
  EXPECT_NEAR(x(*keyed, {-0.25f, 0}), 0.5, 1e-3);
  EXPECT_NEAR(x(*keyed, {0.75f, 0}), 1.5, 1e-3);
}

TEST(ScenePose, WrapsPoseParametersAndBlendsTheirTiming) {
  ModelBuilder model = TwoBones();
  model.Animations = {Moves("@slow", {0, 0, 0}), Moves("@quick", {100, 100, 100, 100, 100})};
  model.Animations[1].Fps = 10;
  model.PoseParameters = {{"yaw", -180, 180, 360}};
  model.Sequences = {
      {.Blends = {0, 1}, .BlendSize = {2, 1}, .PoseParameter = {0, -1}, .PoseStart = {-180, 0}, .PoseEnd = {180, 0}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 0, .PoseParameters = {90}}).X, 8.75, 1e-3);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 0, .PoseParameters = {90 + 720}}).X, 8.75, 1e-3);
  const std::vector<float> middle = {0};
  EXPECT_NEAR(TimingOf(*scene, 0, middle).Fps, 20, 1e-3);
  EXPECT_NEAR(TimingOf(*scene, 0, middle).LastFrame, 3, 1e-3);
  EXPECT_EQ(scene->Sequences[0].FrameCount, 4);
}

TEST(ScenePose, LayersWeighByBoneAndDeltasAdd) {
  ModelBuilder model = TwoBones();
  model.Animations = {Moves("@base", {0}), Moves("@other", {400}), Moves("@delta", {100}, model::AnimFlagDelta),
                      Turns("@turn", 1000)};
  model.Sequences = {{.Label = "base", .Blends = {0}},
                     {.Label = "other", .Blends = {1}},
                     {.Label = "half", .Blends = {1}, .Weights = {1, 0.5f}},
                     {.Label = "root alone", .Blends = {1}, .Weights = {1, 0}},
                     {.Label = "delta", .Flags = model::SequenceFlagDelta, .Blends = {2}},
                     {.Label = "turn", .Blends = {3}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  const auto x = [&](std::vector<PoseLayer> layers) {
    return HandOf(pose, {.Sequence = 0, .Layers = std::move(layers)}).X;
  };
  EXPECT_NEAR(x({{1, 0, 1}}), 12, 1e-3);
  EXPECT_NEAR(x({{1, 0, 0.25f}}), 9, 1e-3);
  EXPECT_NEAR(x({{2, 0, 0.5f}}), 9, 1e-3);
  EXPECT_NEAR(x({{3, 0, 1}}), 8, 1e-3);
  EXPECT_NEAR(x({{4, 0, 1}}), 9, 1e-3);
  EXPECT_NEAR(x({{4, 0, 0.5f}, {4, 0, 1}}), 9.5, 1e-3);
  EXPECT_NEAR(x({{1, 0, 0.5f}, {4, 0, 1}}), 11, 1e-3);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 4}).X, 9, 1e-3) << "a delta alone is added to the rest pose";
  // Half of a turn by 1 radian about Z.
  pose.Set({.Sequence = 0, .Layers = {{5, 0, 0.5f}}});
  EXPECT_NEAR(pose.Bones()[1](1, 0), std::sin(0.5f), 1e-3);
}

TEST(ScenePose, DeltasTurnBehindOrAheadOfTheBase) {
  ModelBuilder model = TwoBones();
  AnimationDescription base = Turns("@base", 0);
  base.Data.Bones[0].RotationRuns = {{Runs({1571}), AxisRuns{}, AxisRuns{}}};
  model.Animations = {base, Turns("@delta", 1571, model::AnimFlagDelta)};
  model.Sequences = {
      {.Label = "base", .Blends = {0}},
      {.Label = "ahead", .Flags = model::SequenceFlagDelta, .Blends = {1}},
      {.Label = "behind", .Flags = model::SequenceFlagDelta | model::SequenceFlagLayered, .Blends = {1}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  // The base turns Y up to Z; the delta turns X to Y, in the parent's space or in the bone's own.
  pose.Set({.Sequence = 0, .Layers = {{1, 0, 1}}});
  EXPECT_THAT(TurnDirection(pose.Bones()[1], {1, 0, 0}), Is(0, 1, 0));
  pose.Set({.Sequence = 0, .Layers = {{2, 0, 1}}});
  EXPECT_THAT(TurnDirection(pose.Bones()[1], {1, 0, 0}), Is(0, 0, 1));
}

TEST(ScenePose, SequencesBringTheirLayers) {
  ModelBuilder model = TwoBones();
  model.Animations = {Moves("@base", {0, 0, 0, 0, 0}), Moves("@gesture", {400, 400, 400, 400, 400}),
                      Moves("@delta", {0, 100, 200}, model::AnimFlagDelta)};
  model.PoseParameters = {{"lean", 0, 4}};
  const auto base = [](std::vector<StudioAutoLayer> layers) {
    return SequenceDescription{.Blends = {0}, .Layers = std::move(layers)};
  };
  model.Sequences = {base({{1, 0, 0, 0.25f, 0.5f, 0.5f, 1}}),
                     {.Label = "gesture", .Blends = {1}},
                     base({{3, 0, 0, 0, 0, 0, 0}}),
                     {.Label = "delta", .Flags = model::SequenceFlagDelta, .Blends = {2}},
                     base({{1, 0, LayerFlagPose, 0, 2, 2, 4}}),
                     base({{3, 0, LayerFlagLocal, 0, 0, 0, 0}}),
                     base({{6, 0, 0, 0, 0, 0, 0}, {6, 0, 0, 0, 0, 0, 0}})};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  const auto x = [&](int32_t sequence, float cycle, std::vector<float> values = {}) {
    return HandOf(pose, {.Sequence = sequence, .Cycle = cycle, .PoseParameters = std::move(values)}).X - 8;
  };
  // Up from a quarter to half, down from half to the end.
  EXPECT_NEAR(x(0, 0.125f), 0, 1e-3);
  EXPECT_NEAR(x(0, 0.375f), 2, 1e-3);
  EXPECT_NEAR(x(0, 0.5f), 4, 1e-3);
  EXPECT_NEAR(x(0, 0.75f), 2, 1e-3);
  EXPECT_NEAR(x(2, 0.5f), 1, 1e-3);
  EXPECT_NEAR(x(5, 0.75f), 1.5, 1e-3);
  // By a pose parameter.
  EXPECT_NEAR(x(4, 0, {1}), 2, 1e-3);
  EXPECT_NEAR(x(4, 0, {2}), 4, 1e-3);
  // One that names itself twice ends.
  EXPECT_NEAR(x(6, 0), 0, 1e-3);
}

TEST(ScenePose, AutoplayFollowsTheTime) {
  ModelBuilder model = TwoBones();
  model.Animations = {Moves("@base", {0}), Moves("@breath", {0, 100, 200, 300}, model::AnimFlagDelta)};
  model.Sequences = {{.Blends = {0}},
                     {.Label = "breath",
                      .Flags = model::SequenceFlagDelta | model::SequenceFlagAutoplay | model::SequenceFlagLooping,
                      .Blends = {1}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 0, .Seconds = 0.05f}).X, 9.5, 1e-3);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 0, .Seconds = 0.15f}).X, 9.5, 2e-3);
  EXPECT_NEAR(HandOf(pose, {.Sequence = 0, .Autoplay = false, .Seconds = 0.05f}).X, 8, 1e-3);
}

TEST(ScenePose, WorldSpaceLayersKeepTheirDirection) {
  ModelBuilder model = TwoBones();
  AnimationDescription lean = Turns("@lean", 0);
  lean.Data.Bones = {{.Bone = 0, .RotationRuns = {{AxisRuns{}, AxisRuns{}, Runs({1000})}}}};
  model.Animations = {lean, Turns("@aim", 0)};
  model.Sequences = {{.Blends = {0}},
                     {.Label = "aim", .Flags = model::SequenceFlagWorldSpace, .Blends = {1}, .Weights = {0, 1}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  EXPECT_TRUE(pose.Set({.Sequence = 0}));
  EXPECT_NEAR(pose.Bones()[1](1, 0), std::sin(1.0f), 1e-3);
  EXPECT_FALSE(pose.Set({.Sequence = 0, .Seconds = 1})) << "one frame stays where it is, however long it plays";
  EXPECT_TRUE(pose.Set({.Sequence = 0, .Layers = {{1, 0, 1}}}));
  EXPECT_NEAR(pose.Bones()[1](1, 0), 0, 1e-3) << "the hand looks where the layer says";
  EXPECT_NEAR(pose.Bones()[0](1, 0), std::sin(1.0f), 1e-3) << "the root leans";
}

TEST(ScenePose, DrivenBonesFollowTheirTriggers) {
  ModelBuilder model = TwoBones();
  const model::Quat still{0, 0, 0, 1};
  const model::Quat quarter{0, 0, HalfRoot, HalfRoot};
  model.Bones.push_back({.Name = "helper",
                         .Parent = 0,
                         .Driven = DrivenDescription{.Driver = 1,
                                                     .Triggers = {{1 / 1.5708f, still, {0, 0, 1}, still},
                                                                  {1 / 1.5708f, quarter, {0, 0, 3}, still}}}});
  model.Animations = {Turns("@still", 0), Turns("@half", 785), Turns("@turned", 1571)};
  model.Sequences = {{.Blends = {0}}, {.Label = "half", .Blends = {1}}, {.Label = "turned", .Blends = {2}}};
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  for (const auto& [sequence, height] : {std::pair{0, 1.0f}, std::pair{1, 2.0f}, std::pair{2, 3.0f}}) {
    pose.Set({.Sequence = sequence});
    EXPECT_NEAR(pose.Bones()[2].Translation().Z, height, 3e-3) << sequence;
  }
}

/// A skeleton of many bones whose animations turn and move them all.
ModelBuilder ManyBones() {
  ModelBuilder model;
  model.Bones.clear();
  for (int b = 0; b < 40; ++b) {
    model.Bones.push_back({.Name = "bone" + std::to_string(b),
                           .Parent = b == 0 ? -1 : (b - 1) / 2,
                           .Position = {1, static_cast<float>(b % 3), 2},
                           .Angles = {0.1f * static_cast<float>(b % 5), 0.2f, -0.1f}});
  }
  uint32_t seed = 1;
  const auto value = [&] {
    seed = seed * 1664525 + 1013904223;
    return static_cast<int16_t>(static_cast<int32_t>(seed >> 20) - 2048);
  };
  for (int a = 0; a < 8; ++a) {
    AnimationDescription animation{.Name = "@a" + std::to_string(a), .FrameCount = 5 + 7 * a};
    if (a == 7) animation.Flags = model::AnimFlagDelta;
    for (uint8_t b = 0; b < 40; ++b) {
      BoneAnimDescription bone{.Bone = b, .IsDelta = a == 7};
      std::array<AxisRuns, 3> axes;
      for (AxisRuns& axis : axes) {
        RunDescription run{.Values = {}, .Total = static_cast<uint8_t>(animation.FrameCount)};
        for (int f = 0; f < animation.FrameCount; ++f) run.Values.push_back(static_cast<int16_t>(value() / 4));
        axis = {run};
      }
      bone.RotationRuns = axes;
      bone.PositionRuns = axes;
      animation.Data.Bones.push_back(bone);
    }
    model.Animations.push_back(animation);
  }
  model.PoseParameters = {{"x", -1, 1}, {"y", 0, 1}};
  model.Sequences = {{.Label = "grid",
                      .Blends = {0, 1, 2, 3},
                      .BlendSize = {2, 2},
                      .PoseParameter = {0, 1},
                      .PoseStart = {-1, 0},
                      .PoseEnd = {1, 1},
                      .Layers = {{1, 0, 0, 0.2f, 0.4f, 0.6f, 0.9f}}},
                     {.Label = "gesture", .Blends = {4}, .Weights = std::vector<float>(40, 0.6f)},
                     {.Label = "walk", .Blends = {5}},
                     {.Label = "delta", .Flags = model::SequenceFlagDelta, .Blends = {7}}};
  return model;
}

TEST(ScenePose, IsThePlainPoseOfManyBones) {
  const BuiltScene scene(ManyBones());
  ScenePose pose(*scene);
  for (const float cycle : {0.0f, 0.3f, 0.51f, 0.77f, 1.0f}) {
    const PoseRequest request{.Sequence = 0,
                              .Cycle = cycle,
                              .PoseParameters = {0.4f, 0.7f},
                              .Layers = {{1, 0.5f, 0.5f}, {2, cycle, 0.25f}, {3, 0.1f, 0.8f}}};
    pose.Set(request);
    const std::vector<Matrix34> plain = PlainScenePose(*scene, request);
    for (size_t b = 0; b < plain.size(); ++b) {
      // Errors of the short way to rotations add up along the chain.
      for (size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(pose.Bones()[b].M[i], plain[b].M[i], i % 4 == 3 ? 0.1f : 0.01f) << cycle << " bone " << b;
      }
    }
  }
}

TEST(ScenePose, ManyBlocksOfFramesComeAndGo) {
  // More frames than are kept, forwards, backwards and from one animation to another.
  ModelBuilder model = TwoBones();
  for (int a = 0; a < 40; ++a) {
    model.Animations.push_back(
        Moves("@a" + std::to_string(a), {static_cast<int16_t>(a), static_cast<int16_t>(a + 100)}));
    model.Sequences.push_back({.Label = "a" + std::to_string(a), .Blends = {static_cast<int16_t>(a)}});
  }
  const BuiltScene scene(model);
  ScenePose pose(*scene);
  for (int round = 0; round < 3; ++round) {
    for (int a = 39; a >= 0; --a) {
      EXPECT_NEAR(HandOf(pose, {.Sequence = a, .Cycle = 0.5f}).X, 8.5 + 0.01 * a, 1e-3);
    }
  }
}

TEST(ViewState, PlaysToTheEndOrRoundAndRound) {
  ModelBuilder model = TwoBones();
  model.Animations = {Moves("@delta", {0}, model::AnimFlagDelta), Moves("@walk", {0, 100, 200, 300})};
  model.Sequences = {{.Label = "delta", .Flags = model::SequenceFlagDelta, .Blends = {0}},
                     {.Label = "walk", .Blends = {1}}};
  model.PoseParameters = {{"lean", 2, 4}};
  const BuiltScene scene(model);
  ViewState state = FirstViewOf(*scene, 1);
  EXPECT_EQ(state.Sequence, 1) << "a delta is nothing by itself";
  EXPECT_EQ(state.PoseParameters, std::vector<float>{2});
  Advance(*scene, state, 0.05f);
  EXPECT_NEAR(ShownFrame(*scene, state), 1.5, 1e-4);
  Advance(*scene, state, 0.1f);
  EXPECT_NEAR(ShownFrame(*scene, state), 1.5, 1e-3);
  state.Loops = false;
  Advance(*scene, state, 0.1f);
  EXPECT_EQ(state.Cycle, 1);
  EXPECT_FALSE(state.IsPlaying);
  ShowFrame(*scene, state, 2);
  EXPECT_NEAR(state.Cycle, 2.0 / 3, 1e-6);
  Advance(*scene, state, 1);
  EXPECT_NEAR(ShownFrame(*scene, state), 2, 1e-4) << "a state that stands stays";
}

}  // namespace
}  // namespace tarnwick::view
