#include "view/scene/jiggle.h"

#include <gmock/gmock.h>

#include <cmath>

#include "model/procedural_records.h"
#include "scene_support.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {
namespace {

using tests::IsNear;

constexpr float Moment = 1.0f / 60;

Vec3 TipOf(const Matrix34& bone, float length) {
  return TransformPoint(bone, {0, 0, length});
}

/// A bone of length 10 that stands up, and the same laid over to X.
class Jiggle : public testing::Test {
 protected:
  Jiggle() {
    m_scene.Bones.resize(1);
    m_scene.Jiggles = {{.Bone = 0,
                        .Flags = model::JiggleFlagFlexible | model::JiggleFlagKeepLength,
                        .Length = 10,
                        .YawStiffness = 100,
                        .YawDamping = 4,
                        .PitchStiffness = 100,
                        .PitchDamping = 4}};
  }
  SceneJiggle& Says() { return m_scene.Jiggles[0]; }

  Scene m_scene;
  const Matrix34 m_up = MatrixOf({}, {1, 2, 3});
  const Matrix34 m_over = MatrixOf({0, std::sqrt(0.5f), 0, std::sqrt(0.5f)}, {1, 2, 3});
};

TEST_F(Jiggle, StandsStillUntilItsBoneMovesThenComesLateAndToRest) {
  JiggleMotion motion(m_scene);
  for (int i = 0; i < 30; ++i) {
    motion.Step(Moment);
    EXPECT_THAT(TipOf(motion.Move(0, m_up), 10), IsNear(1, 2, 13, 1e-3));
  }
  motion.Step(Moment);
  const Matrix34 late = motion.Move(0, m_over);
  EXPECT_GT(TipOf(late, 10).Z, 12) << "hardly on its way";
  bool wasPast = false;
  for (int i = 0; i < 600; ++i) {
    motion.Step(Moment);
    const Matrix34 now = motion.Move(0, m_over);
    EXPECT_THAT(now.Translation(), IsNear(1, 2, 3, 1e-4));
    EXPECT_NEAR(Length(TipOf(now, 10) - now.Translation()), 10, 1e-3);
    wasPast = wasPast || TipOf(now, 10).Z < 2.5f;
  }
  EXPECT_TRUE(wasPast) << "it swings";
  motion.Step(Moment);
  EXPECT_THAT(TipOf(motion.Move(0, m_over), 10), IsNear(11, 2, 3, 0.05));
}

TEST_F(Jiggle, KeepsItsLimits) {
  Says().Flags |= model::JiggleFlagAngleLimit;
  Says().AngleLimit = 0.3f;
  Says().TipMass = 2000;  // which draws it down
  JiggleMotion motion(m_scene);
  for (int i = 0; i < 200; ++i) {
    motion.Step(Moment);
    const Vec3 way = Unit(TipOf(motion.Move(0, m_over), 1) - m_over.Translation());
    EXPECT_GE(way.X, std::cos(0.301f));
    if (i > 100) {
      EXPECT_LT(way.Z, -0.25f);
    }
  }
  Says().Flags = model::JiggleFlagFlexible | model::JiggleFlagYawLimit | model::JiggleFlagPitchLimit;
  Says().Yaw = {-0.1f, 0.2f, 0.5f};
  Says().Pitch = {0, 0, 0};
  JiggleMotion narrow(m_scene);
  narrow.Step(Moment);
  narrow.Move(0, m_up);
  narrow.Step(Moment);
  const Vec3 way = Unit(TipOf(narrow.Move(0, m_over), 1) - m_over.Translation());
  EXPECT_GE(way.X, std::cos(0.21f)) << "what was far away is at the limit at once";
}

TEST_F(Jiggle, BeginsAnewAfterAPauseAndWithNumbersThatNoSpringHas) {
  JiggleMotion motion(m_scene);
  motion.Step(Moment);
  motion.Move(0, m_up);
  motion.Step(5);
  EXPECT_THAT(TipOf(motion.Move(0, m_over), 10), IsNear(11, 2, 3, 1e-3));
  motion.Rest();
  EXPECT_EQ(motion.Move(0, m_up), m_up);
  motion.Step(std::nanf(""));
  EXPECT_THAT(TipOf(motion.Move(0, m_over), 10), IsNear(11, 2, 3, 1e-3));
  Says() = {.Bone = 0,
            .Flags = 0x41,
            .Length = 1e4f,
            .TipMass = 1e4f,
            .YawStiffness = 1e4f,
            .PitchStiffness = 1e4f,
            .AlongStiffness = 1e4f,
            .BaseMass = 1e4f,
            .BaseStiffness = 1e4f,
            .BaseLimits = {{{-1e4f, 1e4f, 0}, {-1e4f, 1e4f, 0}, {5, -5, 9}}}};
  JiggleMotion wild(m_scene);
  for (int i = 0; i < 1000; ++i) {
    wild.Step(Moment);
    const Matrix34 now = wild.Move(0, i % 2 == 0 ? m_up : m_over);
    for (const float value : now.M) ASSERT_TRUE(std::isfinite(value)) << i;
  }
}

TEST_F(Jiggle, OfAModelSwingWhilePlaying) {
  model::StudioJiggleBone jiggle{};
  jiggle.Flags = model::JiggleFlagFlexible | model::JiggleFlagKeepLength;
  jiggle.Length = 8;
  jiggle.YawStiffness = jiggle.PitchStiffness = 60;
  tests::ModelBuilder model{.Bones = {{.Name = "root"}, {.Name = "tail", .Parent = 0, .Jiggle = jiggle}}};
  model.Animations = {{.Name = "@nod", .FrameCount = 2}};
  model.Animations[0].Data.Bones = {
      {.Bone = 0, .RotationRuns = std::array<tests::AxisRuns, 3>{tests::AxisRuns{{{0, 1500}, 2}}, {}, {}}}};
  model.Sequences = {{.Label = "nod"}};
  const tests::BuiltScene scene(model);
  ASSERT_EQ(scene->Jiggles.size(), 1u);
  EXPECT_EQ(scene->Jiggles[0].Length, 8);
  const auto tailAt = [&](bool swings) {
    ScenePose pose(*scene);
    pose.Set({.Sequence = 0, .Seconds = 1, .Swings = swings});
    pose.Set({.Sequence = 0, .Cycle = 1, .Seconds = 1.02f, .Swings = swings});
    return TipOf(pose.Bones()[1], 1);
  };
  EXPECT_GT(Length(tailAt(true) - tailAt(false)), 0.5f);
  ViewState state;
  EXPECT_TRUE(PoseOf(state).Swings);
  state.IsPlaying = false;
  EXPECT_FALSE(PoseOf(state).Swings) << "what stands still is shown as it was made";
}

}  // namespace
}  // namespace tarnwick::view
