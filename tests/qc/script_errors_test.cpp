#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/read_script.h"

namespace tarnwick::qc {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using tests::ReadPlain;
using tests::StatementsOf;
using tests::Told;

TEST(QcErrors, AreAllToldAndHideNoLaterStatement) {
  const Script script = ReadPlain(
      "$surfaceprob metal { a { b }\n}\n$scale\n$scale big\n} stray words\n$bbox 1 2 3\n$mass 5\n"
      "$attachment a b 1 2 3 rotat 1 2 3\n$opaque 1\n$lod 5 {\n nofacal\n replacebone a b\n}\n{ lost }\n"
      "$definebone a b 1 2 3 4 5 6 7\n$root end");
  EXPECT_THAT(
      Told(script),
      ElementsAre("a.qc:1:1: error: the statement \"$surfaceprob\" is not known; did you mean \"$surfaceprop\"?",
                  "a.qc:3:1: error: $scale needs 1 argument, 0 are given",
                  "a.qc:4:8: error: \"big\" stands where a number should", "a.qc:5:1: error: this } closes nothing",
                  "a.qc:6:1: error: $bbox needs 6 arguments, 3 are given",
                  HasSubstr("a.qc:7:1: error: \"$mass\" belongs into the braces of $collisionmodel"),
                  "a.qc:8:23: error: \"rotat\" is no word of $attachment; did you mean \"rotate\"?",
                  HasSubstr("a.qc:9:9: warning: \"1\" is one word too many for $opaque"),
                  "a.qc:11:2: error: \"nofacal\" is no word of $lod; did you mean \"nofacial\"?",
                  "a.qc:14:1: error: this { opens the block of no statement",
                  "a.qc:15:1: error: $definebone takes 6, 9 or 12 numbers, 7 are given"));
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$scale big", "$attachment a|b|1|2|3", "$opaque", "$lod 5: replacebone a|b", "$root end"));
}

TEST(QcErrors, ABlockThatIsNotClosedEndsAtTheNextStatement) {
  const Script script = ReadPlain(
      "$sequence a a.smd { loop\n$sequence b b.smd loop\n$keyvalues { a { b c\n$collisionmodel p.smd {\n $concave\n"
      "$texturegroup t { { a b }\n$root r");
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$sequence a: a.smd a.smd, loop", "$sequence b: b.smd b.smd, loop", "$keyvalues",
                          "$collisionmodel p.smd: $concave", "$texturegroup t {a|b}", "$root r"));
  EXPECT_THAT(Told(script), Contains("a.qc:2:1: error: the block that opens in line 1 is not closed ahead of this "
                                     "$sequence"));
}

TEST(QcErrors, NumbersThatAreNoneCountAsNothingWhereTheCollisionModelTakesThem) {
  const Script script =
      ReadPlain("$collisionmodel p.smd { $mass $20 }\n$collisionmodel p { $mass weight $damping 50kg }");
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$collisionmodel p.smd: $mass $20", "$collisionmodel p: $mass weight, $damping 50kg"));
  EXPECT_EQ(script.Statements[1].Options[0].Number(0, -1), 0);
  EXPECT_EQ(script.Statements[1].Options[1].Number(0, -1), 50);
  EXPECT_TRUE(script.Sound());
  EXPECT_EQ(script.Told.All().size(), 3u);
}

TEST(QcErrors, LimitsOfJointsNameAnAxisAndWhatTheJointMayDo) {
  const Script script = ReadPlain(
      "$collisionjoints p.smd {\n$jointconstrain a X Limit -1 1 0\n$jointconstrain b w free\n"
      "$jointconstrain c y frre 0 0 0\n$jointconstrain d z limit\n}");
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("3:19: warning: \"w\" is no axis of a joint"),
                                        HasSubstr("4:21: warning: \"frre\" is nothing that a joint can be"),
                                        HasSubstr("5:21: warning: a limit of a joint needs")));
  EXPECT_EQ(script.Statements[0].Options.size(), 2u);
}

TEST(QcErrors, OptionsOfASequenceInAnAnimationAreTold) {
  const Script script = ReadPlain("$animation a a.smd { fadein 0.2 loop }\n$sequence s { event x }\n$sequence t");
  EXPECT_THAT(Told(script),
              ElementsAre("a.qc:1:22: error: \"fadein\" is no word of $animation; it belongs to $sequence",
                          "a.qc:2:15: error: an event needs a number or a name, and a frame",
                          "a.qc:2:1: error: the sequence \"s\" names no animation and no file",
                          "a.qc:3:1: error: the sequence \"t\" names no animation and no file"));
}

TEST(QcErrors, NamesThatAreUsedAndNotDeclaredAreTold) {
  const Script script = ReadPlain(
      "$body b meshes\\Walker.smd\n$declaresequence lean\n$weightlist Arms a 1\n$cmdlist fix { loop }\n"
      "$sequence walk w.smd subtract WALK 0 addlayer lean weightlist arms cmdlist fix\n"
      "$sequence run r.smd { subtract rn 0 blendlayer jump 0 1 2 3 weightlist legs cmdlist fox }\n"
      "$sequence jump j.smd\n$lod 5 { replacemodel \"walker\" l.smd removemodel wlker }");
  EXPECT_THAT(Told(script),
              ElementsAre("a.qc:6:32: error: there is no sequence or animation \"rn\"; did you mean \"run\"?",
                          "a.qc:6:48: warning: the sequence \"jump\" stands below the line that uses it",
                          HasSubstr("a.qc:6:72: error: there is no weight list \"legs\""),
                          "a.qc:6:85: error: there is no command list \"fox\"; did you mean \"fix\"?",
                          "a.qc:8:50: warning: no body has the mesh \"wlker\"; did you mean \"walker\"?"));
}

}  // namespace
}  // namespace tarnwick::qc
