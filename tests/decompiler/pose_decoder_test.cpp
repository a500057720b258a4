#include "model/pose_decoder.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

#include "animation_job.h"
#include "support/plain_pose.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;

std::array<float, 7> Pose(AnimationJob& job, int32_t frame = 0, size_t bone = 0) {
  const auto bones = GetSkeleton(job.Context())->Bones;
  std::vector<Vec3> positions(static_cast<size_t>(bones.Count()));
  std::vector<Quat> rotations(positions.size());
  DecodePoseAtFrame(job.Context(), bones, job.Animation(0), frame, positions, rotations);
  const Vec3 p = positions[bone];
  const Quat q = rotations[bone];
  return {p.x, p.y, p.z, q.x, q.y, q.z, q.w};
}

TEST(RunValues, RepeatTheLastValueAndEndInZero) {
  std::string bytes;
  for (const int value : {2, 5, 10, 0, -20, -1, 1, 1, 7, 0, 0, 0}) bytes += static_cast<char>(value);
  // Frames 0 to 4: 10, then -20 four times; frame 5: 7; nothing behind.
  const RunStream stream{core::ImageView(std::as_bytes(std::span(bytes))), 0};
  std::vector<float> values;
  RunCursor cursor(0);
  for (int32_t frame = 0; frame < 8; ++frame) {
    values.push_back(DecodeRunValue(frame, stream, 0.5f));
    EXPECT_EQ(static_cast<float>(cursor.At(stream.Image, frame)) * 0.5f, values.back());
  }
  EXPECT_THAT(values, testing::ElementsAre(5, -10, -10, -10, -10, 3.5f, 0, 0));
  EXPECT_EQ(DecodeRunValue(3, std::nullopt, 0.5f), 0);
}

TEST(PoseDecoder, DecodesEveryKindOfRecord) {
  ModelBuilder model;
  model.Bones = {{.Position = {1, 2, 3}, .Angles = {0.2f, 0, 0}, .PositionScale = {0.5f, 0.25f, 2}}};
  const auto pose = [&](BoneAnimDescription bone, uint32_t flags = 0) {
    model.Animations = {{.Flags = flags, .FrameCount = 1, .Data = {.Bones = {std::move(bone)}}}};
    AnimationJob job(model);
    return Pose(job);
  };
  using testing::ElementsAre;
  using testing::FloatNear;
  const auto near = [](float value) { return FloatNear(value, 1e-6f); };
  EXPECT_THAT(pose({.Rotation48 = {{0x4000, 0xC000, 0x6000}}, .RawPosition = {{4, -5, 6}}}),
              ElementsAre(4, -5, 6, -0.5f, 0.5f, 0.5f, 0.5f));
  EXPECT_THAT(
      pose({.Rotation64 = 1048576 | uint64_t{1048576} << 21 | uint64_t{1048576} << 42, .RawPosition = {{4, -5, 6}}}),
      ElementsAre(4, -5, 6, 0, 0, 0, 1));
  EXPECT_THAT(pose({.RawPosition = {{4, -5, 6}}}), ElementsAre(4, -5, 6, near(0.0998334f), 0, 0, near(0.9950042f)));
  // 100 steps of 0.001 behind the default of 0.2 about X; 2, 4 and 8 steps behind the default position.
  const std::array<AxisRuns, 3> turn = {AxisRuns{{{100}, 1}}, {}, {}};
  const std::array<AxisRuns, 3> move = {AxisRuns{{{2}, 1}}, AxisRuns{{{4}, 1}}, AxisRuns{{{8}, 1}}};
  EXPECT_THAT(pose({.RotationRuns = turn, .PositionRuns = move}),
              ElementsAre(2, 3, 19, near(0.1494381f), 0, 0, near(0.9887711f)));
  // A delta record stands alone, whatever the animation says; without values it is nothing at all.
  EXPECT_THAT(pose({.RotationRuns = turn, .PositionRuns = move, .IsDelta = true}),
              ElementsAre(1, 1, 16, near(0.0499792f), 0, 0, near(0.9987503f)));
  EXPECT_THAT(pose({.IsDelta = true}), ElementsAre(0, 0, 0, 0, 0, 0, 1));
  EXPECT_THAT(pose({}), ElementsAre(1, 2, 3, near(0.0998334f), 0, 0, near(0.9950042f)));
  // Without a record the animation decides; a record of a bone that the model does not have is none.
  EXPECT_THAT(pose({.Bone = 255, .RawPosition = {{4, -5, 6}}}, AnimFlagDelta), ElementsAre(0, 0, 0, 0, 0, 0, 1));

  // An aligned bone gets the quaternion on the alignment's side, but not from a delta record.
  model.Bones[0].Flags = BoneFlagFixedAlignment;
  model.Bones[0].Alignment = {0, 0, 0, -1};
  EXPECT_THAT(pose({.RotationRuns = turn})[6], near(-0.9887711f));
  EXPECT_THAT(pose({.RotationRuns = turn, .IsDelta = true})[6], near(0.9987503f));
}

TEST(PoseDecoder, FindsTheSectionOfEachFrame) {
  // Each section moves the root to its own place: X is the section's number, Y the frame within it.
  const auto section = [](int16_t number, int32_t block = 0) {
    return AnimDataDescription{
        .Bones = {{.PositionRuns = {{AxisRuns{{{number}, 9}}, AxisRuns{{{0, 1, 2, 3}, 4}}, {}}}}}, .Block = block};
  };
  ModelBuilder model{.Bones = {{.PositionScale = {1, 1, 1}}}, .AnimBlockName = "in.ani"};
  const auto places = [&](int32_t frames, std::vector<AnimDataDescription> sections, bool withBlocks = true) {
    model.Animations = {{.FrameCount = frames, .SectionFrames = 4, .Sections = std::move(sections)}};
    ModelFiles files = model.Build();
    if (!withBlocks) files.Ani = {};
    AnimationJob job(files);
    std::string text;
    for (int32_t frame = 0; frame < frames; ++frame) {
      const auto pose = Pose(job, frame);
      text += std::to_string(static_cast<int>(pose[0])) + "." + std::to_string(static_cast<int>(pose[1])) + " ";
    }
    return text;
  };
  // The last frame has a section of its own, one behind the next.
  EXPECT_EQ(places(6, {section(0), section(1), section(2), section(3)}), "0.0 0.1 0.2 0.3 1.0 2.0 ");
  EXPECT_EQ(places(8, {section(0), section(1), section(2), section(3)}), "0.0 0.1 0.2 0.3 1.0 1.1 1.2 3.0 ");
  EXPECT_EQ(places(4, {section(5)}), "5.0 5.1 5.2 5.3 ");
  // Sections of a block file, and the last frame of an earlier section where the file is missing.
  const std::vector<AnimDataDescription> blocks = {section(7), section(8, 1), section(9, 2)};
  EXPECT_EQ(places(6, blocks), "7.0 7.1 7.2 7.3 8.0 9.0 ");
  EXPECT_EQ(places(6, blocks, false), "7.0 7.1 7.2 7.3 7.3 7.3 ");
  // A section that says it has no data has none.
  EXPECT_EQ(places(6, {section(7), section(8, -1), section(9)}), "7.0 7.1 7.2 7.3 0.0 9.0 ");
}

}  // namespace
}  // namespace tarnwick::decompiler
