#include "smd/smd_scan.h"

#include <gmock/gmock.h>

#include "smd/smd_info.h"
#include "support/scratch_folder.h"

namespace tarnwick::smd {
namespace {

using testing::ElementsAre;

constexpr const char* Vertex = "0 1 2 3 4 5 6 7 8\n";

std::string Triangle(const std::string& material) {
  return material + "\n" + Vertex + Vertex + Vertex;
}

struct Result {
  SmdSummary Summary;
  bool Sound = false;
  int64_t Line = 0;
};

/// Scans in pieces of `piece` bytes.
Result Scan(const std::string& text, size_t piece = std::string::npos) {
  Result result;
  SmdScanner scanner(result.Summary);
  for (size_t at = 0; at < text.size(); at += std::min(piece, text.size() - at)) scanner.Feed(text.substr(at, piece));
  result.Sound = scanner.Finish();
  result.Line = scanner.LineNumber();
  return result;
}

void ExpectBadLine(const std::string& text, int64_t line) {
  const Result result = Scan(text);
  EXPECT_FALSE(result.Sound) << text;
  EXPECT_EQ(result.Line, line) << text;
}

TEST(SmdScan, CountsAWholeFileHoweverItIsCut) {
  const std::string text =
      "version 1\nnodes\n  0 \"root\" -1\n1 \"left arm\" 0\n2 bare 1\n3 \"end \" 0\nend\n"
      "skeleton\ntime 0\n0 1 2 3 4 5 6\n 1 0 0 0 0 0 0 extra\ntime 1\n0 0 0 0 0 0 0\nend\n"
      "triangles\n" +
      Triangle("wood.bmp") + Triangle("metal.bmp") + Triangle("WOOD.bmp") + Triangle("wood.bmp") + "end\n";
  SmdSummary expected{2, 4, 4, {{"wood.bmp", 2}, {"metal.bmp", 1}, {"WOOD.bmp", 1}}};
  for (const size_t piece : {size_t{1}, size_t{7}, std::string::npos}) {
    EXPECT_EQ(Scan(text, piece).Summary, expected);
    EXPECT_TRUE(Scan(text, piece).Sound);
  }
  std::string windows = text;
  for (size_t at = 0; (at = windows.find('\n', at)) != std::string::npos; at += 2) windows.insert(at, "\r");
  EXPECT_EQ(Scan(windows, 5).Summary, expected);
}

TEST(SmdScan, TakesSectionsInAnyOrderAndNumber) {
  const Result result = Scan("triangles\n" + Triangle("a") + "end\nnodes\n0 a -1\nendless\n0 outside\ntriangles\n" +
                             Triangle("a") + "end\nnodes\n1 b 0\n");
  EXPECT_TRUE(result.Sound);
  EXPECT_EQ(result.Summary, (SmdSummary{0, 2, 2, {{"a", 2}}}));
  EXPECT_EQ(Scan("no section at all\n0 1 2\n").Summary, SmdSummary());
  EXPECT_TRUE(Scan("").Sound);
}

TEST(SmdScan, EndsTheTrianglesAtAMaterialNamedEnd) {
  const Result result = Scan("triangles\n" + Triangle("a") + Triangle("endwall") + Triangle("b") + "end\n");
  EXPECT_TRUE(result.Sound);
  EXPECT_EQ(result.Summary.TriangleCount, 1);
}

TEST(SmdScan, LooksForAPairForEachOfTheFirstFiveLinks) {
  const auto scan = [](const std::string& tail) { return Scan("triangles\nm\n0 1 2 3 4 5 6 7 8" + tail + "\n").Sound; };
  for (const char* good : {"", " ", " 0", " 1 0 1", " 7 0 1 0 1 0 1 0 1 0 1", " -3", " x", " 1 0 1 and more"}) {
    EXPECT_TRUE(scan(good)) << good;
  }
  for (const char* bad : {" 1", " 2 0 1 0", " 7 0 1 0 1 0 1 0 1 0", " 99999999999 0 1"}) EXPECT_FALSE(scan(bad)) << bad;
}

TEST(SmdScan, StopsAtALineThatIsShort) {
  ExpectBadLine("nodes\n0 \"a\" -1\n1\n", 3);
  ExpectBadLine("nodes\n0 \"a\"\n", 2);
  ExpectBadLine("nodes\n0 \"open name\n", 2);
  ExpectBadLine("skeleton\ntime 0\n0 0 0 0 0 0\n", 3);
  ExpectBadLine("skeleton\n0\t0\t0\t0\t0\t0\t0\n", 2);  // tabs keep no tokens apart here
  ExpectBadLine("triangles\nm\n0 1 2 3 4 5 6 7\n", 3);
  ExpectBadLine("triangles\n" + Triangle("m") + "\nend\n", 6);
}

TEST(SmdScan, KeepsNamesAndLinesOfAnyLength) {
  const std::string name(100'000, 'n');
  const Result result = Scan("triangles\n" + Triangle(name) + Triangle(name + "x"), 4096);
  EXPECT_TRUE(result.Sound);
  EXPECT_THAT(result.Summary.Materials, ElementsAre(SmdMaterialCount{name, 1}, SmdMaterialCount{name + "x", 1}));
}

TEST(SmdScan, DropsTheLastCharacterOfALineWithoutAnEnd) {
  EXPECT_EQ(Scan("triangles\nwood").Summary.Materials.at(0).Name, "woo");
  ExpectBadLine("triangles\nm\n0 1 2 3 4 5 6 7 8", 3);
}

TEST(SmdInfo, TellsTheFiguresInTheInspectorsWords) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("a.smd"),
                   "nodes\n0 root -1\nend\ntriangles\n" + Triangle("wood.bmp") + "metal\nshort\n");
  const SmdInfo info = InspectSmd(folder.Path("a.smd"));
  EXPECT_EQ(info.Text,
            "Bones:\t1\r\nTriangles:\t2\r\nMaterial \"wood.bmp\"\tfaces: 1\r\nMaterial \"metal\"\tfaces: 1\r\n");
  EXPECT_EQ(info.BadLine, 10);
  EXPECT_EQ(InspectSmd("").Text, "No Reference SMD File Specified\r\n");
  for (const std::string& bad : {folder.Path("none.smd"), folder.Path()}) {
    EXPECT_EQ(InspectSmd(bad).Text, "Unable to open " + bad + "\r\n");
    EXPECT_NE(InspectSmd(bad).Error, "");
  }
}

}  // namespace
}  // namespace tarnwick::smd
