#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "qc/read_script.h"

namespace tarnwick::qc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tests::ReadPlain;
using tests::StatementsOf;
using tests::Told;

TEST(QcSequences, TakeOptionsOnTheirLineAndInTheirBlock) {
  const Script script = ReadPlain(
      "$declaresequence lean\n$animation run_n \"run_n.smd\" fps 20 frames 0 19 { LX LY\n walkframe 9 LX ly walkframe "
      "19 lx }\n"
      "$Sequence \"run\" { event AE_STEP 5 \"left foot\" RUN_N run_n\n run_n blendwidth 3 Blend move_x -1 1\n"
      " rotate 90 subtract run_n 0 FadeIn 0.3 align run_n X Y 0 5 ACT_RUN 2 {event 5004 3 \"a b\"}\n"
      " keyvalues { a b } activitymodifier { hurt low } activitymodifier slow { event 1 2 }\n"
      " blendlayer lean 0 2 8 10 spline poseparameter p local }");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$declaresequence lean",
                          "$animation run_n|run_n.smd: fps 20, frames 0|19, LX, LY, walkframe 9|LX|ly, walkframe 19|lx",
                          "$Sequence run: event AE_STEP|5|left foot, RUN_N RUN_N, run_n run_n, run_n run_n, "
                          "blendwidth 3, Blend move_x|-1|1, rotate 90, subtract run_n|0, FadeIn 0.3, "
                          "align run_n|X|Y|0|5, ACT_RUN ACT_RUN|2, event 5004|3|a b, keyvalues, "
                          "activitymodifier hurt|low, activitymodifier slow, event 1|2, "
                          "blendlayer lean|0|2|8|10 (spline, poseparameter p, local)"));
  const auto& options = script.Statements[2].Options;
  EXPECT_EQ(options[1].Arguments[0].Statement, 1);
  EXPECT_EQ(options[10].Kind, Key::Activity);
  EXPECT_EQ(options[12].Text, 0);
}

TEST(QcSequences, GoOnOverLinesThatBeginNoStatement) {
  const Script script =
      ReadPlain("$sequence idle idle.smd\n  fps 30\n  ACT_IDLE 1\n$animation a a.smd\n loop\n$opaque");
  EXPECT_THAT(StatementsOf(script), ElementsAre("$sequence idle: idle.smd idle.smd, fps 30, ACT_IDLE ACT_IDLE|1",
                                                "$animation a|a.smd: loop", "$opaque"));
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("a.qc:2:3: warning: this line begins with no statement; it is taken "
                                                  "as more of the $sequence of line 1"),
                                        HasSubstr("a.qc:5:2: warning")));
}

TEST(QcSequences, AreAddedToByName) {
  const Script script =
      ReadPlain("$sequence Idle a.smd\n$continue idle fps 5\n$append Idel { loop }\n$prepend idle loop");
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$sequence Idle: a.smd a.smd", "$continue idle: fps 5", "$prepend idle: loop"));
  EXPECT_THAT(Told(script), ElementsAre("a.qc:3:9: error: no sequence or animation \"Idel\" stands above; did you mean "
                                        "\"Idle\"?"));
}

TEST(QcSequences, ReadRulesOfInverseKinematics) {
  const Script script = ReadPlain(
      "$sequence s a.smd { ikrule rfoot footstep range 0 .. 8 .. contact 4 usesource\n"
      "ikrule rhand touch \"gun bone\" fakeorigin 1 2 3\niklock lfoot 1 0 ikrule x release noautoik }\n"
      "$ikchain rfoot foot knee 0 1 0 height 18 X 2");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$sequence s: a.smd a.smd, ikrule rfoot (footstep, range 0|..|8|.., contact 4, usesource), "
                          "ikrule rhand (touch gun bone, fakeorigin 1|2|3), iklock lfoot|1|0, ikrule x (release), "
                          "noautoik",
                          "$ikchain rfoot|foot: knee 0|1|0, height 18, X 2"));
  EXPECT_TRUE(std::isnan(script.Statements[0].Options[1].Options[1].Number(1)));
}

TEST(QcFaces, AreReadWithTheirRules) {
  const Script script = ReadPlain(
      "$model face \"face.smd\"\n{\n flexfile face.vta\n {\n  defaultflex frame 0\n  flex jaw frame 1 position 0.5\n"
      "  flexpair smile 1.5 frame 2\n }\n eyeball righteye head 1 2 3 white 1.2 3 iris 0.6\n"
      " eyelid upper_right \"face.vta\" lowerer 3 -0.2 neutral 0 0.1\n  raiser 4 0.3 split 0.1 eyeball righteye\n"
      " mouth 0 jaw head 0 1 0\n flexcontroller mouth \"range\" -1 1 jaw_x jaw_y default 0.5\n localvar half \"other "
      "half\"\n"
      " %half = jaw_x * 0.5 + (jaw_y\n   - 1)\n \"%other half\" = \"%other half\"\n %smileR = %half\n "
      "%upper_right_raiser = jaw_z\n}");
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$model face|face.smd: flexfile face.vta (defaultflex (frame 0), flex jaw (frame 1, position "
                          "0.5), flexpair smile|1.5 (frame 2)), eyeball righteye|head|1|2|3|white|1.2|3|iris|0.6, "
                          "eyelid upper_right|face.vta (lowerer 3|-0.2, neutral 0|0.1, raiser 4|0.3, split 0.1, "
                          "eyeball righteye), mouth 0|jaw|head|0|1|0, flexcontroller mouth|jaw_x|jaw_y (range -1|1, "
                          "default 0.5), localvar half|other half, half, other half, smileR, upper_right_raiser"));
  EXPECT_EQ(script.Rules[0].Nodes.size(), 7u);
  EXPECT_THAT(Told(script),
              ElementsAre(HasSubstr("note: default has no effect"),
                          "a.qc:19:24: error: there is no flexcontroller \"jaw_z\"; did you mean \"jaw_x\"?"));
}

TEST(QcFaces, TellAnEyelidsEyeballFromAnEyeball) {
  const Script script = ReadPlain(
      "$model face \"face.smd\"\n{\neyeball right head 1 2 3 white\n 1.2 3 iris .6\n"
      "eyelid upper_right face.vta\n lowerer 3 -.2\n neutral 0 .1\n raiser 4 .3\n split .1\n eyeball right\n"
      "eyelid lower_right face.vta lowerer 3 -.2 neutral 0 .1 raiser 4 .3 eyeball right\n"
      "eyeball left head -1 2 3 white 1.2 3 iris .6\neyelid upper_left face.vta split 1\neyeball left }");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$model face|face.smd: eyeball right|head|1|2|3|white|1.2|3|iris|.6, eyelid "
                          "upper_right|face.vta (lowerer 3|-.2, neutral 0|.1, raiser 4|.3, split .1, eyeball right), "
                          "eyelid lower_right|face.vta (lowerer 3|-.2, neutral 0|.1, raiser 4|.3, eyeball right), "
                          "eyeball left|head|-1|2|3|white|1.2|3|iris|.6, eyelid upper_left|face.vta (split 1, eyeball "
                          "left)"));
}

TEST(QcFaces, TellWhatALineLacks) {
  const Script script = ReadPlain(
      "$model face \"face.smd\"\n{\neyeball right head 1 2\nflexcontroller eyes blink rang 0 1\n"
      "flexcontroller a 5\n}");
  EXPECT_THAT(Told(script), ElementsAre("a.qc:3:1: error: eyeball needs 10 arguments, 4 are given",
                                        HasSubstr("4:32: warning: \"0\" stands where the name of a flexcontroller"),
                                        HasSubstr("4:34: warning: \"1\" stands"), HasSubstr("5:18: warning: \"5\""),
                                        "a.qc:5:1: error: flexcontroller needs a group and a name"));
}

TEST(QcBones, AreReadWithTheirOptions) {
  const Script script = ReadPlain(
      "$attachment eyes \"\" 1 2 3 absolute rotate 0 -90 0 rigid\n$poseparameter move_yaw -180 180 loop 360\n"
      "$poseparameter aim -1 1 360 wrap\n$animblocksize 16 nostall numframes 3\n"
      "$jigglebone \"tail\" {\n is_flexible {\n length 20\n yaw_constraint -10 10 allow_length_flex }\n"
      " has_base_spring { left_constraint -1 1 }\n is_rigid }\n$hboxset cover\n$bonesaveframe root position rotation");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$attachment eyes||1|2|3: absolute, rotate 0|-90|0, rigid",
                          "$poseparameter move_yaw|-180|180: loop 360", "$poseparameter aim|-1|1|360: wrap",
                          "$animblocksize 16: nostall, numframes 3",
                          "$jigglebone tail: is_flexible (length 20, yaw_constraint -10|10, allow_length_flex), "
                          "has_base_spring (left_constraint -1|1), is_rigid",
                          "$hboxset cover", "$bonesaveframe root: position, rotation"));
}

}  // namespace
}  // namespace tarnwick::qc
