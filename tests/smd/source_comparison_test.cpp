#include "smd/source_comparison.h"

#include <gmock/gmock.h>

#include "support/recording_troubles.h"
#include "support/scratch_folder.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::smd;
using namespace tarnwick::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(SourceComparison, TellsRoundingFromARealDifference) {
  struct Case {
    const char* Name;
    const char* First;
    const char* Second;
    bool IsRounding;
    size_t Lines;
    size_t Line;
  };
  const Case cases[] = {
      {"a.qc", "$scale 1\n$eye 1.00001 2\n", "$scale 1\n$eye 1 2\n", true, 1, 2},
      {"a.qc", "$eye 1.5 2\n", "$eye 1 2\n", false, 1, 1},
      {"a.qc", "$surfaceprop metal\n", "$surfaceprop wood\n", false, 1, 1},
      // A line more does not push the rest apart.
      {"a.qc", "a\nb\nc\nd\n", "a\nx\nb\nc\nd\n", false, 1, 2},
      {"a.qc", "a\n", "a", false, 1, 1},
      // A step of a track, and two sets of angles of one rotation.
      {"a.smd", "0 1.0 0 0 0.1 0 0\n", "0 1.01 0 0 0.101 0 0\n", true, 1, 1},
      {"a.smd", "0 1 2 3 0.5 1.570796 0\n", "0 1 2 3 0 1.570796 -0.5\n", true, 1, 1},
      {"a.smd", "0 1 2 3 0.5 0 0\n", "0 1 2 3 0 0 0.5\n", false, 1, 1},
      {"a.smd", "0 1 2 3 0 0 0\n", "1 1 2 3 0 0 0\n", false, 1, 1},
      // Vertices are no tracks.
      {"a.smd", "0 1 2 3 0 0 1 0.5 0.5\n", "0 1.01 2 3 0 0 1 0.5 0.5\n", false, 1, 1},
      // What was no number in a model is none of a source.
      {"a.smd", "0 1 2 3 nan -nan inf 0.5 0.5\n", "0 1 2 3 0 0 0 0.5 0.5\n", true, 1, 1},
      {"a.smd", "0 1 2 3 0 0 0 0.5 0.5\n", "0 1 2 3 nan 0 0 0.5 0.5\n", false, 1, 1},
      {"a.qc", "$body nan\n", "$body inf\n", false, 1, 1},
      // The first real line counts, not a rounded one ahead of it.
      {"a.vta", "0 1.000001 0\n0 5 0\n", "0 1 0\n0 6 0\n", false, 2, 2},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.First);
    const auto difference = CompareSourceTexts(one.Name, one.First, one.Second);
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference->IsRounding(), one.IsRounding) << DifferenceLine(*difference);
    EXPECT_EQ(difference->Lines, one.Lines);
    EXPECT_EQ(difference->Line, one.Line);
  }
  EXPECT_FALSE(CompareSourceTexts("a.qc", "x\n", "x\n"));
}

TEST(SourceComparison, GoesThroughBothFolders) {
  const ScratchFolder a;
  const ScratchFolder b;
  for (const ScratchFolder* folder : {&a, &b}) WriteText(folder->Path("same.smd"), "0 1\n");
  WriteText(a.Path("gone.vta"), "x\n");
  WriteText(b.Path("sub/new.smd"), "x\n");
  WriteText(a.Path("walk.smd"), "9 1.00001 1\n9 2 1\n");
  WriteText(b.Path("walk.smd"), "9 1 1\n9 2.00002 1\n");
  RecordingTroubles troubles;
  std::vector<std::string> lines;
  for (const auto& difference : CompareSources(a.Path(), b.Path(), troubles))
    lines.push_back(DifferenceLine(difference));
  EXPECT_THAT(lines,
              ElementsAre("gone.vta: is missing from the second sources", "sub/new.smd: is in the second sources alone",
                          HasSubstr("walk.smd: 2 lines differ by up to 2e-05 (rounding), first line 1: \"9 "
                                    "1.00001 1\" and \"9 1 1\"")));
  EXPECT_THAT(troubles.Texts(), IsEmpty());
}

}  // namespace
