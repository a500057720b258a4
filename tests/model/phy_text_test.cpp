#include <gmock/gmock.h>

#include "model/phy_values.h"
#include "support/recording_troubles.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::model;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

std::vector<PhyEntry> Read(std::string_view text, tests::RecordingTroubles& troubles) {
  static const std::string name = "hat.phy";
  return ReadPhyText(text, name, 100, troubles);
}

TEST(PhyText, KeepsBlocksAndPairsInOrderQuotedOrBare) {
  using namespace std::string_view_literals;
  tests::RecordingTroubles troubles;
  const auto text = Read(
      "break { \"model\" \"a b.mdl\" health 5 }\nsolid{index 0}\nouter { inner { a b } c \"\" }\0 junk {"sv, troubles);
  EXPECT_THAT(troubles.Texts(), IsEmpty());
  ASSERT_EQ(text.size(), 3u);
  EXPECT_EQ(text[0].Key, "break");
  EXPECT_EQ(text[0].Entries[0].Value, "a b.mdl");
  EXPECT_EQ(text[0].Find("Health"), "5");
  EXPECT_EQ(text[1].Find("index"), "0");
  EXPECT_TRUE(text[2].Entries[0].IsBlock);
  EXPECT_EQ(text[2].Entries[0].Find("a"), "b");
  EXPECT_EQ(text[2].Find("c"), "");
}

TEST(PhyText, TellsWhatDoesNotFitAndKeepsTheRest) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "a{";
  std::string many = "a {";
  for (int i = 0; i < 70000; ++i) many += "b c ";
  const std::pair<std::string, const char*> cases[] = {{"a { b c } } d { e f }", "closes no block"},
                                                       {"a { b c } { x y } d { e f }", "no name"},
                                                       {"a { b c d } d { e f }", "no value"},
                                                       {"d { e f } a { b c", "never closed"},
                                                       {"d { e f } a { b \"c }", "never closed"},
                                                       {deep, "too deep"},
                                                       {many, "more entries"}};
  for (const auto& [bad, told] : cases) {
    tests::RecordingTroubles troubles;
    const auto text = Read(bad, troubles);
    EXPECT_THAT(troubles.Texts(), ElementsAre(HasSubstr(told)));
    if (bad.size() > 1000) continue;
    const auto found = std::find_if(text.begin(), text.end(), [](const PhyEntry& entry) { return entry.Key == "d"; });
    ASSERT_NE(found, text.end()) << bad;
    EXPECT_EQ(found->Find("e"), "f");
  }
}

PhyValues Sample() {
  PhyValues values;
  values.Solids = {{.Name = "pelvis", .SurfaceProp = "flesh", .Mass = 12.5f, .Damping = 0.25f, .Volume = 100},
                   {.Name = "thigh", .Parent = "pelvis", .RotationDamping = 3, .Inertia = 10, .MassBias = 2}};
  values.Constraints = {{0, 1, {{{-10, 20, 0.5f}, {0, 0, 0}, {-360, 360, 1}}}}};
  values.CollisionPairs = {{0, 1}};
  values.AnimatedFriction = PhyAnimatedFriction{1, 400, 0.5f, 0.25f, 0};
  values.RootName = "pelvis";
  values.TotalMass = 30;
  values.JointMerges = {{"pelvis", "spine"}};
  return values;
}

TEST(PhyValues, ComeBackFromTheTextThatStandsForThem) {
  const PhyValues values = Sample();
  const std::string text = FormatPhyText(values, "break {\n\"model\" \"x\"\n}\neditparams {\n\"totalmass\" \"5\"\n}\n");
  tests::RecordingTroubles troubles;
  const PhyValues read = TakePhyValues(Read(text, troubles), 2, "hat.phy", troubles);
  EXPECT_THAT(troubles.Texts(), IsEmpty());
  EXPECT_EQ(read.UnknownPairs, 0);
  ASSERT_EQ(read.Others.size(), 2u);
  EXPECT_EQ(read.Others[1].Key, "editparams");
  EXPECT_EQ(read.TotalMass, 30);
  EXPECT_EQ(read.Constraints[0].Axes[0].Maximum, 20);
  EXPECT_THAT(read.JointMerges, ElementsAre(Pair("pelvis", "spine")));
  // All the rest: the text says every value.
  EXPECT_EQ(FormatPhyText(read) + "break", text.substr(0, text.find("break") + 5));
  EXPECT_THAT(
      text, HasSubstr("solid {\n\"index\" \"1\"\n\"name\" \"thigh\"\n\"parent\" \"pelvis\"\n\"mass\" \"1.000000\"\n"));
  EXPECT_THAT(text, HasSubstr("\"volume\" \"0.000000\"\n\"massbias\" \"2.000000\"\n}\n"));
}

TEST(PhyValues, HostileNumbersAreToldAndLeaveDefaults) {
  const std::string text =
      "solid { mass nan damping 1e99 rotdamping x name a inertia 0x10 surprise 1 }"
      "ragdollconstraint { parent 0 child 5 xmin 1 } ragdollconstraint { parent -1 }"
      "collisionrules { collisionpair 0,0 collisionpair 0 collisionpair 0,9999999999 }"
      "editparams { totalmass heavy jointmerge alone concave 0 }";
  tests::RecordingTroubles troubles;
  const PhyValues read = TakePhyValues(Read(text, troubles), 1, "hat.phy", troubles);
  EXPECT_EQ(read.Solids[0].Mass, 1);
  EXPECT_EQ(read.Solids[0].Damping, 0);
  EXPECT_EQ(read.Solids[0].Inertia, 16);
  EXPECT_EQ(read.UnknownPairs, 1);
  EXPECT_THAT(read.Constraints, IsEmpty());
  EXPECT_THAT(read.CollisionPairs, ElementsAre(Pair(0, 0)));
  EXPECT_EQ(read.TotalMass, 1);
  EXPECT_FALSE(read.IsConcave);
  EXPECT_EQ(troubles.Troubles.size(), 10u);
}

}  // namespace
