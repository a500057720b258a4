#include "model/phy_file.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <limits>

#include "model/phy_records.h"
#include "support/phy_builder.h"
#include "support/recording_troubles.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::model;
using namespace tarnwick::tests;
using testing::HasSubstr;
using testing::IsEmpty;

std::optional<PhyFile> Read(const std::string& bytes, RecordingTroubles& troubles) {
  return ReadPhyFile(core::ImageView(std::as_bytes(std::span(bytes))), "hat.phy", troubles);
}

template <typename T>
void Put(std::string& bytes, int64_t offset, T value) {
  ASSERT_LE(offset + static_cast<int64_t>(sizeof value), static_cast<int64_t>(bytes.size()));
  std::memcpy(bytes.data() + offset, &value, sizeof value);
}

TEST(PhyFile, GivesBackPiecesTextAndChecksum) {
  const PhyBuilder file{.Checksum = 0x89ABCDEF,
                        .Solids = {{.BoneNumber = 2, .Boxes = {{{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}}}, {}},
                        .Values = {.RootName = "Pelvis"}};
  const std::string bytes = file.Build();
  RecordingTroubles troubles;
  const auto read = Read(bytes, troubles);
  ASSERT_TRUE(read);
  EXPECT_THAT(troubles.Texts(), IsEmpty());
  EXPECT_EQ(read->Checksum, 0x89ABCDEF);
  ASSERT_EQ(read->Solids.size(), 2u);
  const PhySolid& two = *read->Solids[0];
  ASSERT_EQ(two.Pieces.size(), 2u);
  EXPECT_EQ(two.Points.size(), 16u);
  EXPECT_EQ(two.Pieces[0].BoneNumber, 2);
  EXPECT_EQ(two.Pieces[1].Triangles.size(), 12u);
  EXPECT_EQ(read->Text.size(), 3u);
  EXPECT_EQ(read->Text[2].Find("ROOTNAME"), "Pelvis");
}

TEST(PhyFile, KeepsPiecesInTheirOrderWhateverTheTreePairsUp) {
  // A tree halves them along X.
  const std::vector<BoxDescription> row = {{{16, 0, 0}, {20, 4, 4}}, {{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}};
  RecordingTroubles troubles;
  const auto read = Read(PhyBuilder{.Solids = {{.Boxes = row}}}.Build(), troubles);
  ASSERT_TRUE(read && read->Solids[0] && read->Solids[0]->Pieces.size() == 3);
  for (size_t i = 0; i < row.size(); ++i) {
    float least = 1000;
    for (const PhyCorners& triangle : read->Solids[0]->Pieces[i].Triangles) {
      for (const uint16_t corner : triangle) {
        least = std::min(least, float{PhyToModel(read->Solids[0]->Points[corner]).x});
      }
    }
    EXPECT_NEAR(least, row[i].Low.x, 1e-4f);
  }
}

TEST(PhyFile, ADamagedSolidCostsThatSolidAlone) {
  constexpr int64_t Solid = 16;
  constexpr int64_t Surface = Solid + 32;
  constexpr int64_t Ledge = Surface + 48;
  constexpr int64_t Tree = Surface + 48 + 16 + 16 * 12 + 16 * 8;
  constexpr int64_t Points = Tree - 16 * 8;
  struct Case {
    const char* Told;
    std::function<void(std::string&)> Damage;
  };
  const Case cases[] = {
      {"tag VPHY", [](std::string& b) { Put(b, Solid + 4, 'X'); }},
      {"unknown version 2", [](std::string& b) { Put(b, Solid + 8, int16_t{2}); }},
      {"unknown version", [](std::string& b) { Put(b, Solid + 10, int16_t{1}); }},
      {"sizes contradict", [](std::string& b) { Put(b, Solid + 12, 0x7FFFFFFF); }},
      {"tag IVPS", [](std::string& b) { Put(b, Surface + 44, 'X'); }},
      {"tree node lies outside", [](std::string& b) { Put(b, Surface + 32, std::numeric_limits<int32_t>::max()); }},
      {"tree node lies outside", [](std::string& b) { Put(b, Surface + 32, 0); }},
      {"tree node lies outside", [](std::string& b) { Put(b, Tree, 28); }},
      {"piece lies outside", [](std::string& b) { Put(b, Tree + 4, std::numeric_limits<int32_t>::min()); }},
      {"fewer than two triangles", [](std::string& b) { Put(b, Ledge + 12, uint16_t{1}); }},
      {"run past the end", [](std::string& b) { Put(b, Ledge + 12, uint16_t{65535}); }},
      {"points (8) run past", [](std::string& b) { Put(b, Ledge, std::numeric_limits<int32_t>::min()); }},
      {"points (65536) run past", [](std::string& b) { Put(b, Ledge + 16 + 4, uint16_t{65535}); }},
      {"one point twice", [](std::string& b) { Put(b, Ledge + 16 + 4, uint16_t{1}); }},
      {"not finite", [](std::string& b) { Put(b, Points, std::numeric_limits<float>::quiet_NaN()); }},
      {"far outside", [](std::string& b) { Put(b, Points + 8, 1e30f); }},
  };
  const std::string sound = PhyBuilder{.Solids = {{}, {.Values = {.Name = "second"}}}}.Build();
  for (const Case& bad : cases) {
    std::string bytes = sound;
    bad.Damage(bytes);
    RecordingTroubles troubles;
    const auto read = Read(bytes, troubles);
    ASSERT_TRUE(read) << bad.Told;
    EXPECT_FALSE(read->Solids[0]) << bad.Told;
    EXPECT_TRUE(read->Solids[1]) << bad.Told;
    EXPECT_EQ(read->Text.size(), 3u);
    EXPECT_THAT(troubles.Texts(), testing::ElementsAre(HasSubstr(bad.Told)));
  }
}

TEST(PhyFile, ADamagedFrameCostsTheFile) {
  struct Case {
    const char* Told;
    std::function<void(std::string&)> Damage;
  };
  const Case cases[] = {
      {"does not begin as", [](std::string& b) { Put(b, 0, 20); }},
      {"does not begin as", [](std::string& b) { b.resize(15); }},
      {"more than its", [](std::string& b) { Put(b, 8, 1000000); }},
      {"more than its", [](std::string& b) { Put(b, 8, -1); }},
      {"solid 0 runs past", [](std::string& b) { Put(b, 16, 103); }},
      {"solid 0 runs past", [](std::string& b) { Put(b, 16, std::numeric_limits<int32_t>::max()); }},
  };
  for (const Case& bad : cases) {
    std::string bytes = PhyBuilder{}.Build();
    bad.Damage(bytes);
    RecordingTroubles troubles;
    EXPECT_FALSE(Read(bytes, troubles)) << bad.Told;
    EXPECT_THAT(troubles.Texts(), testing::ElementsAre(HasSubstr(bad.Told)));
  }
}

TEST(PhyFile, EndsOnATreeThatNamesItsNodesAndPiecesAgainAndAgain) {
  const std::vector<BoxDescription> row = {{{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}, {{16, 0, 0}, {20, 4, 4}}};
  const std::string sound = PhyBuilder{.Solids = {{.Boxes = row}}}.Build();
  constexpr int64_t Tree = 16 + 32 + 48 + 4 * (16 + 16 * 12) + 24 * 16;
  // The root's right child is its left one; the pieces of all leaves are the first one's.
  for (const bool isNode : {true, false}) {
    std::string bytes = sound;
    if (isNode) {
      Put(bytes, Tree, 28);
    } else {
      for (int64_t i = 1; i < 5; ++i) Put(bytes, Tree + 28 * i + 4, static_cast<int32_t>(16 + 32 + 48 - Tree - 28 * i));
    }
    RecordingTroubles troubles;
    const auto read = Read(bytes, troubles);
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->Solids[0]);
    EXPECT_THAT(troubles.Texts(), testing::ElementsAre(HasSubstr("more than once")));
  }
}

}  // namespace
