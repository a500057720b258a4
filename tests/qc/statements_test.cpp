#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/read_script.h"
#include "qc/tables.h"

namespace tarnwick::qc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tests::ReadPlain;
using tests::StatementsOf;
using tests::Told;

TEST(QcStatements, AreReadInAnyCaseWithQuotesAnywhere) {
  const Script script = ReadPlain(
      "$SurfaceProp \"metal\"\n\"$Scale\" \"2.5\"\n\t$CDMATERIALS \"a/\" b\\ \"\"\n$bbox -1 -2 -3.0 1 2 +3\n"
      "$staticprop $opaque\n$illumposition 1 2 3 head\n$HBOX 1.0 \"bone 1\" 1 2 3 4 5 6 7\n$allowrootlods 1\n"
      "$definebone a \"\" 1 2 3 4 5 6 0 0 0\n$heirarchy a b\n$eyeposition 1\n2\n3");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(
      StatementsOf(script),
      ElementsAre("$SurfaceProp metal", "$Scale 2.5", "$CDMATERIALS a/|b\\|", "$bbox -1|-2|-3.0|1|2|+3", "$staticprop",
                  "$opaque", "$illumposition 1|2|3|head", "$HBOX 1.0|bone 1|1|2|3|4|5|6|7", "$allowrootlods 1",
                  "$definebone a||1|2|3|4|5|6|0|0|0", "$heirarchy a|b", "$eyeposition 1|2|3"));
  EXPECT_EQ(script.Statements[10].Kind, Command::Hierarchy);
  EXPECT_EQ(script.Statements[3].Number(2), -3);
  EXPECT_EQ(script.Statements[6].At.Line, 6u);
}

TEST(QcStatements, BlocksMayOpenOnALaterLineUnlessASequencesOrAWeightLists) {
  const Script script = ReadPlain(
      "$bodygroup \"hats\"\n\n{\n studio\n  hat.smd reverse\n\tblank\n}\n"
      "$collisionjoints phys.smd\n{\n$Mass 5\n$jointconstrain arm X Limit -5 5 0.5\n$jointconstrain arm y free }\n"
      "$weightlist w arm 0.5 leg 1\n$weightlist v\n{ arm 1 }\n$sequence s a.smd\n{\nloop\n}\n");
  EXPECT_THAT(
      StatementsOf(script),
      ElementsAre("$bodygroup hats: studio hat.smd (reverse), blank",
                  "$collisionjoints phys.smd: $Mass 5, $jointconstrain arm|X|Limit|-5|5|0.5, "
                  "$jointconstrain arm|y|free",
                  "$weightlist w {arm|0.5} {leg|1}", "$weightlist v {arm|1}", "$sequence s: a.smd a.smd, loop"));
  EXPECT_THAT(Told(script),
              ElementsAre("a.qc:15:1: error: the { of $weightlist must stand on the line of the statement",
                          "a.qc:17:1: error: the { of $sequence must stand on the line of the statement"));
}

TEST(QcStatements, KeepKeyValuesAsATree) {
  const Script script = ReadPlain(
      "$keyvalues {\n prop_data { base Metal.Large \"allowstatic\" \"1\" }\n particles { \"effect\" { name x } }\n}\n"
      "$collisiontext { break { model \"a b.mdl\" } }");
  EXPECT_THAT(Told(script), IsEmpty());
  ASSERT_EQ(script.KeyValues.size(), 2u);
  EXPECT_EQ(script.Statements[1].Text, 1);
  const auto& keys = script.KeyValues[0];
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0].Children[1].Key, "allowstatic");
  EXPECT_EQ(keys[0].Children[0].Value, "Metal.Large");
  EXPECT_EQ(keys[1].Children[0].Children[0].Value, "x");
  EXPECT_EQ(script.KeyValues[1][0].Children[0].Value, "a b.mdl");
}

TEST(QcStatements, TellWhatNothingIsBuiltFromAndWhatHasNoEffect) {
  const Script script = ReadPlain("$realignbones 1 2\n$externaltextures\n$clampworldspace");
  EXPECT_THAT(StatementsOf(script), ElementsAre("$realignbones 1|2", "$externaltextures", "$clampworldspace"));
  EXPECT_THAT(Told(script), ElementsAre("a.qc:1:1: warning: $realignbones is known, but nothing is built from it",
                                        "a.qc:2:1: note: $externaltextures has no effect on this kind of model",
                                        HasSubstr("$clampworldspace is known")));
  EXPECT_TRUE(script.Sound());
}

TEST(QcStatements, HaveOneRowEachInTheirTables) {
  const auto rows = StatementRows();
  for (size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(FindStatement(rows[i].Name), &rows[i]) << rows[i].Name;
    EXPECT_EQ(rows[i].Arguments.find_first_not_of("wnimoxfasvd?*L"), std::string_view::npos) << rows[i].Name;
  }
  for (const OptionTable* table : {&SequenceOptions(), &AnimationOptions(), &CollisionOptions(), &FaceOptions()}) {
    for (const OptionRow& row : table->Rows) EXPECT_EQ(table->Find(row.Name), &row) << row.Name;
  }
}

}  // namespace
}  // namespace tarnwick::qc
