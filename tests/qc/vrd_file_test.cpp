#include "qc/vrd_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::qc {
namespace {

using ::testing::ElementsAre;

TEST(VrdFile, HoldsHelpersWithTheirPosesAndBonesThatAim) {
  const VrdFile file = ReadVrdText(
      "// knees\n<helper> knee_r leg_r \"thigh r\" leg_r\n<display> 1 2 3 100\n<basepos>\t1 -2 3 // place\n"
      "<trigger> 90 0 0 0 1 2 3 4 5 6\r\n<Trigger> 45 7 8 9 1 2 3 4 5 6\n\n<aimconstraint> eye head target\n"
      "<aimvector> 1 0 0\n<upvector> 0 0 1\n",
      "a.vrd");
  EXPECT_TRUE(file.Told.All().empty());
  ASSERT_EQ(file.Bones.size(), 2u);
  const VrdBone& knee = file.Bones[0];
  EXPECT_EQ(knee.DriverParent, "thigh r");
  EXPECT_THAT(knee.BasePosition, ElementsAre(1, -2, 3));
  ASSERT_EQ(knee.Triggers.size(), 2u);
  EXPECT_EQ(knee.Triggers[1].ConeAngle, 45);
  EXPECT_THAT(knee.Triggers[1].Driver, ElementsAre(7, 8, 9));
  EXPECT_THAT(knee.Triggers[0].Position, ElementsAre(4, 5, 6));
  EXPECT_EQ(knee.Others.size(), 1u);
  EXPECT_EQ(file.Bones[1].What, VrdBone::Kind::Aim);
  EXPECT_EQ(file.Bones[1].Driver, "target");
  ASSERT_TRUE(file.Bones[1].UpVector);
  EXPECT_EQ((*file.Bones[1].UpVector)[2], 1);
}

TEST(VrdFile, TellsEachWrongLine) {
  std::string text = "<basepos> 1 2 3\n<helper> a b c\n<trigger> 1 2\n<triger> 1\n<basepos> 1 x 3\nwords\n";
  for (size_t i = 0; i <= VrdFile::MostTriggers; ++i) text += "<trigger> 1 0 0 0 0 0 0 0 0 0\n";
  const VrdFile file = ReadVrdText(text, "dir/a.vrd");
  std::vector<std::string> told;
  for (const Message& message : file.Told.All()) told.push_back(MessageText(file.Files, message));
  EXPECT_THAT(
      told, ElementsAre("a.vrd:1:1: error: \"<basepos>\" stands ahead of every bone",
                        "a.vrd:2:1: error: <helper> takes the bone, its parent, the driver's parent and the driver; 3 "
                        "names stand on the line",
                        "a.vrd:3:1: error: <trigger> takes 10 numbers, 2 stand on the line",
                        "a.vrd:4:1: error: the tag \"<triger>\" is not known; did you mean \"<trigger>\"?",
                        "a.vrd:5:13: error: \"x\" stands where a number should",
                        "a.vrd:6:1: error: \"words\" stands where a line should begin with its <tag>",
                        "a.vrd:39:1: error: the bone \"a\" has more than 32 triggers"));
  EXPECT_EQ(ReadVrd("/nowhere/x.vrd").Told.ErrorCount(), 1u);
}

}  // namespace
}  // namespace tarnwick::qc
