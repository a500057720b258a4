#include "smd/material_replacement.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <random>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "smd/text_replacer.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::smd {
namespace {

namespace fs = std::filesystem;
using core::BoxIcon;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::ReadText;
using tests::RecordedBox;
using tests::WriteText;

std::string ReplaceInPieces(const std::string& text, const std::string& from, const std::string& to, size_t piece) {
  std::string result;
  TextReplacer replacer(from, to, [&](std::string_view bytes) { result += bytes; });
  for (size_t at = 0; at < text.size(); at += piece) replacer.Feed(std::string_view(text).substr(at, piece));
  replacer.Finish();
  return result;
}

std::string ReplacePlainly(const std::string& text, const std::string& from, const std::string& to) {
  std::string result;
  for (size_t at = 0; at < text.size();) {
    const bool here = text.compare(at, from.size(), from) == 0;
    result += here ? to : text.substr(at, 1);
    at += here ? from.size() : 1;
  }
  return result;
}

TEST(TextReplacer, GivesWhatAWalkByCharacterGivesHoweverTheTextIsCut) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string text(random() % 60, 'a');
    for (char& c : text) c = static_cast<char>('a' + random() % 2);  // two letters: many near misses and overlaps
    std::string from(1 + random() % 6, 'a');
    for (char& c : from) c = static_cast<char>('a' + random() % 2);
    const std::string to = round % 2 == 0 ? "" : "x" + from + "y";
    for (const size_t piece : {1u, 2u, 3u, 5u, 8u, 60u}) {
      ASSERT_EQ(ReplaceInPieces(text, from, to, piece), ReplacePlainly(text, from, to)) << text << ' ' << from;
    }
  }
}

class MaterialReplacementFile : public testing::Test {
 protected:
  std::optional<uint64_t> Replace(const std::string& from, const std::string& to) {
    return ReplaceMaterial({path, from, to}, report);
  }

  tests::ScratchFolder folder;
  std::string path = folder.Path("a.smd");
  tests::RecordingReport report;
};

TEST_F(MaterialReplacementFile, ReplacesEveryOccurrenceInPlaceAndKeepsThePermissions) {
  WriteText(path, "wood\r\nwoodwork woo\nWood wood");
#ifdef _WIN32
  const fs::perms permissions = fs::status(path).permissions();
#else
  const fs::perms permissions = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_write;
#endif
  fs::permissions(path, permissions);
  EXPECT_EQ(Replace("wood", "plywood"), 3u);
  EXPECT_EQ(ReadText(path), tests::WithLineFeeds("plywood\r\nplywoodwork woo\nWood plywood"));
  EXPECT_EQ(fs::status(path).permissions(), permissions);
  EXPECT_THAT(folder.Files(), ElementsAre("a.smd"));
  EXPECT_THAT(report.Boxes, IsEmpty());
}

TEST_F(MaterialReplacementFile, DoesNotTouchAFileWithoutTheName) {
  WriteText(path, "wood");
  const auto before = fs::last_write_time(path) - std::chrono::hours(1);
  fs::last_write_time(path, before);
  EXPECT_EQ(Replace("WOOD", "metal"), 0u);
  EXPECT_EQ(fs::last_write_time(path), before);
}

TEST_F(MaterialReplacementFile, ReplacesInAFileLargerThanAPiece) {
  std::string text;
  for (int i = 0; i < 40'000; ++i) text += "a long_material_name " + std::to_string(i) + "\n";
  WriteText(path, text);
  EXPECT_EQ(Replace("long_material_name", "b"), 40'000u);
  EXPECT_EQ(ReadText(path), ReplacePlainly(text, "long_material_name", "b"));
}

TEST_F(MaterialReplacementFile, AsksForPathThenOldThenNewName) {
  const auto expectMissing = [&](const MaterialReplacement& replacement, const char* text) {
    report.Boxes.clear();
    EXPECT_FALSE(CheckReplacement(replacement, report));
    EXPECT_THAT(report.Boxes, ElementsAre(RecordedBox{BoxIcon::Exclamation, text, "SMD ERROR"}));
  };
  expectMissing({"", "", ""}, "No Reference SMD File Specified");
  expectMissing({"a", "", ""}, "No Old Material Specified");
  expectMissing({"a", "b", ""}, "No New Material Specified");
  EXPECT_TRUE(CheckReplacement({"a", "b", "c"}, report));
  EXPECT_EQ(ReplacementQuestion({"a", "b", "c"}), "Replace \"b\" with \"c\" in \r\n\"a\" ?");
}

TEST_F(MaterialReplacementFile, SaysWhichFileItCouldNotHandle) {
  EXPECT_EQ(Replace("a", "b"), std::nullopt);
  EXPECT_THAT(report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop, "Unable to read" + path, "SMD ERROR"}));
  EXPECT_THAT(report.Troubles.back().Details, HasSubstr("o such file"));
  report.Boxes.clear();
  WriteText(path, "");
  EXPECT_EQ(Replace("a", "b"), std::nullopt);
  EXPECT_THAT(report.Boxes, ElementsAre(RecordedBox{BoxIcon::None, "Bad size for SMD file " + path, "Tarnwick"}));
}

#ifndef _WIN32
TEST_F(MaterialReplacementFile, SaysThatTheFolderTakesNoNewFile) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
  WriteText(path, "a\n");
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_EQ(Replace("a", "b"), std::nullopt);
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_all);
  EXPECT_THAT(report.Troubles.back().Details, HasSubstr("the folder " + folder.Path() + " cannot be written to: "));
}
#endif

}  // namespace
}  // namespace tarnwick::smd
