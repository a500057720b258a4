#include "decompiler/writers/animation_smd.h"

#include <gmock/gmock.h>

#include <cstring>
#include <random>

#include "animation_job.h"
#include "model/pose_player.h"
#include "support/plain_animation.h"
#include "support/plain_pose.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;

constexpr char Nodes[] = "version 1\nnodes\n  0 \"hip\" -1\n  1 \"knee\" 0\nend\nskeleton\n";

ModelBuilder TwoBones() {
  return {.Bones = {{.Name = "hip", .Position = {1, 2, 3}}, {.Name = "knee", .Parent = 0, .Position = {0, 0, 8}}}};
}

TEST(AnimationSmd, ShowsFrameZeroTwiceAndTurnsRoots) {
  ModelBuilder model = TwoBones();
  // The hip moves along X by half a unit in frame 1; the knee bends about Y with a run that covers both frames.
  model.Animations = {{.FrameCount = 2,
                       .Data = {.Bones = {{.Bone = 0, .PositionRuns = {{AxisRuns{{{0, 50}, 2}}, {}, {}}}},
                                          {.Bone = 1, .RotationRuns = {{AxisRuns{}, AxisRuns{{{250}, 2}}, {}}}}}}}};
  EXPECT_EQ(AnimationJob(model, DecompileOptionKeepRotations).Text(0),
            std::string(Nodes) +
                "time 0\n"
                "  0 1.000000 2.000000 3.000000 0.000000 -0.000000 0.000000\n"
                "  1 0.000000 0.000000 8.000000 0.000000 0.250000 0.000000\n"
                "time 1\n"
                "  0 1.000000 2.000000 3.000000 0.000000 -0.000000 0.000000\n"
                "  1 0.000000 0.000000 8.000000 0.000000 0.250000 0.000000\n"
                "time 2\n"
                "  0 1.500000 2.000000 3.000000 0.000000 -0.000000 0.000000\n"
                "  1 0.000000 0.000000 8.000000 0.000000 0.250000 0.000000\n"
                "end\n");
  // 270 degrees about Z in the parent's space: (x, y) goes to (y, -x).
  EXPECT_THAT(AnimationJob(model).Text(0),
              testing::HasSubstr("time 2\n"
                                 "  0 2.000000 -1.500000 3.000000 0.000000 0.000000 -1.570796\n"
                                 "  1 0.000000 0.000000 8.000000 0.000000 0.250000 0.000000\nend\n"));
}

TEST(AnimationSmd, PutsDeltasOnTheRightOfTheDefaultPose) {
  ModelBuilder model = TwoBones();
  model.Bones[1].Angles = {0, 0, 1.5707964f};
  // The knee's delta: 2 along its own X, and a turn of 0.5 about its own X. The hip has no data.
  model.Animations = {{.Flags = AnimFlagDelta,
                       .FrameCount = 1,
                       .Data = {.Bones = {{.Bone = 1,
                                           .RotationRuns = {{AxisRuns{{{500}, 1}}, {}, {}}},
                                           .PositionRuns = {{AxisRuns{{{200}, 1}}, {}, {}}},
                                           .IsDelta = true}}}}};
  AnimationJob job(model, DecompileOptionKeepRotations);
  EXPECT_THAT(job.Text(0), testing::HasSubstr("time 1\n"
                                              "  0 0.000000 0.000000 0.000000 0.000000 -0.000000 0.000000\n"
                                              "  1 2.000000 0.000000 0.000000 0.500000 -0.000000 0.000000\nend\n"));
  job.Context().DeltaReference = "ravelback_delta.smd";
  EXPECT_THAT(job.Text(0), testing::HasSubstr("time 1\n"
                                              "  0 1.000000 2.000000 3.000000 0.000000 -0.000000 0.000000\n"
                                              "  1 0.000000 2.000000 8.000000 0.500000 0.000000 1.570796\nend\n"));
}

TEST(AnimationSmd, WritesTheBindPoseAsItIs) {
  AnimationJob job(TwoBones());
  std::string text;
  core::TextWriter writer(text);
  WriteBindPoseSmd(writer, *GetAnimationSmdModel(job.Context()));
  writer.Flush();
  const std::string pose =
      "  0 1.000000 2.000000 3.000000 0.000000 -0.000000 0.000000\n"
      "  1 0.000000 0.000000 8.000000 0.000000 -0.000000 0.000000\n";
  EXPECT_EQ(tests::WithLineFeeds(text), Nodes + ("time 0\n" + pose) + "time 1\n" + pose + "end\n");
}

TEST(AnimationSmd, CountsNumbersThatAreNotFiniteOnEveryLine) {
  ModelBuilder model = TwoBones();
  model.Animations = {{.FrameCount = 3, .Data = {.Bones = {{.Bone = 1, .Rotation48 = {{0, 0, 0}}}}}}};
  AnimationJob job(model);
  EXPECT_EQ(job.Text(0), PlainAnimationText(job.Context(), job.Animation(0)));
  EXPECT_EQ(job.NonFinite % 4, 0u);  // in each of the four blocks
  EXPECT_GT(job.NonFinite, 0u);
}

/// Models that hold what sound models can hold, at random: every kind of record, runs that hold their last value or end
/// early, sections, a block file, delta animations, aligned bones.
class RandomModel {
 public:
  explicit RandomModel(uint32_t seed) : m_random(seed) {}

  ModelBuilder Make() {
    ModelBuilder model;
    model.AnimBlockName = "in.ani";
    model.Bones.clear();
    const int bones = Number(1, 12);
    for (int b = 0; b < bones; ++b) {
      model.Bones.push_back({.Name = "bone" + std::to_string(b),
                             .Parent = Number(-1, b - 1),
                             .Position = {Real(), Real(), Real()},
                             .Angles = {Real() / 10, Real() / 10, Real() / 10},
                             .Alignment = {Real(), Real(), Real(), Real()},
                             .Flags = Chance(3) ? BoneFlagFixedAlignment : 0});
    }
    for (int a = 0; a < 8; ++a) model.Animations.push_back(Animation(bones));
    return model;
  }

 private:
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
  bool Chance(int of) { return Number(1, of) == 1; }
  float Real() { return static_cast<float>(Number(-3000, 3000)) / 100; }

  AxisRuns Runs(int frames) {
    AxisRuns runs;
    if (Chance(4)) return runs;
    for (int covered = 0; covered < frames && !Chance(12); covered += runs.back().Total) {
      RunDescription& run = runs.emplace_back();
      run.Total = static_cast<uint8_t>(Number(1, 9));
      const int valid = Number(1, run.Total);
      const int span = Chance(3) ? 0 : 3000;
      for (int i = 0; i < valid; ++i) run.Values.push_back(static_cast<int16_t>(Number(-span, span)));
    }
    return runs;
  }

  AnimDataDescription Data(int bones, int frames) {
    AnimDataDescription data{.Block = Chance(3) ? Number(1, 2) : 0};
    for (int b = 0; b < bones; ++b) {
      if (Chance(4)) continue;
      BoneAnimDescription& bone = data.Bones.emplace_back();
      bone.Bone = static_cast<uint8_t>(b);
      bone.IsDelta = Chance(4);
      const int rotation = Number(0, 3);
      const auto word = [this] { return static_cast<uint16_t>(Number(20000, 45000)); };
      if (rotation == 0) bone.Rotation48 = {word(), word(), word()};
      if (rotation == 1) bone.Rotation64 = static_cast<uint64_t>(Number(0, 1 << 30)) << 33;
      if (rotation == 2) bone.RotationRuns = {Runs(frames), Runs(frames), Runs(frames)};
      if (rotation >= 2 && Chance(2)) {
        bone.PositionRuns = {Runs(frames), Runs(frames), Runs(frames)};
      } else if (rotation != 2 && Chance(2)) {
        bone.RawPosition = {Real(), Real(), Real()};
      }
    }
    return data;
  }

  AnimationDescription Animation(int bones) {
    AnimationDescription animation{.Flags = Chance(3) ? AnimFlagDelta : 0, .FrameCount = Number(1, 40)};
    if (Chance(2)) {
      animation.SectionFrames = Number(2, 15);
      const int sections = animation.FrameCount / animation.SectionFrames + 2;
      for (int s = 0; s < sections; ++s) {
        animation.Sections.push_back(Data(bones, animation.SectionFrames));
        if (Chance(8)) animation.Sections.back().Block = -1;
      }
    } else {
      animation.Data = Data(bones, animation.FrameCount);
      if (Chance(8)) animation.Data.Block = -1;
    }
    return animation;
  }

  std::mt19937 m_random;
};

/// `text` for a comparison; the mathematics library of Windows gives what is no number either sign.
std::string Comparable(std::string text) {
#ifdef _WIN32
  for (size_t at = text.find("-nan"); at != std::string::npos; at = text.find("-nan", at)) text.erase(at, 1);
#endif
  return text;
}

TEST(AnimationSmd, AgreesWithThePlainWayForModelsOfEveryKind) {
  for (uint32_t seed = 0; seed < 60; ++seed) {
    const ModelBuilder model = RandomModel(seed).Make();
    ModelFiles files = model.Build();
    if (seed % 5 == 0) files.Ani = {};  // a block file that is missing
    AnimationJob job(files, seed % 2 == 0 ? DecompileOptionKeepRotations : 0);
    if (seed % 3 != 0) job.Context().DeltaReference = "ravelback_delta.smd";
    for (size_t i = 0; i < model.Animations.size(); ++i) {
      const auto index = static_cast<int64_t>(i);
      ASSERT_EQ(Comparable(job.Text(index)), Comparable(PlainAnimationText(job.Context(), job.Animation(index))))
          << seed << ", " << i;
    }
  }
}

TEST(PosePlayer, GivesTheVeryBitsOfThePlainDecoder) {
  for (uint32_t seed = 100; seed < 140; ++seed) {
    AnimationJob job(RandomModel(seed).Make());
    const auto bones = GetSkeleton(job.Context())->Bones;
    for (int64_t i = 0; i < 8; ++i) {
      const auto animation = job.Animation(i);
      const auto checked = CheckAnimation(job.Context(), animation, "x");
      ASSERT_TRUE(checked);
      PosePlayer player(bones, *checked);
      std::vector<Vec3> positions(static_cast<size_t>(bones.Count()));
      std::vector<Quat> rotations(positions.size());
      const int32_t step = 1 + static_cast<int32_t>(seed % 3);  // frames may be left out
      for (int32_t frame = 0; frame < animation->FrameCount; frame += step) {
        player.GoTo(frame);
        DecodePoseAtFrame(job.Context(), bones, animation, frame, positions, rotations);
        ASSERT_EQ(std::memcmp(positions.data(), player.Positions().data(), positions.size() * sizeof(Vec3)), 0);
        ASSERT_EQ(std::memcmp(rotations.data(), player.Rotations().data(), rotations.size() * sizeof(Quat)), 0);
      }
    }
  }
}

}  // namespace
}  // namespace tarnwick::decompiler
