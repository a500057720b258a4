#include "archives/file_table.h"

#include <gmock/gmock.h>

#include <map>
#include <random>

#include "archive_builder.h"
#include "archives/checksum.h"
#include "archives/folded_text.h"

namespace tarnwick::archives {
namespace {

using testing::ElementsAre;

FileTable TableOf(const std::vector<std::string>& names) {
  FileTable table;
  for (const std::string& name : names) EXPECT_TRUE(table.Add(name, {}));
  return table;
}

TEST(FoldedText, FoldsEightBytesAsOneByOne) {
  std::mt19937 random(1);
  for (int i = 0; i < 20'000; ++i) {
    std::string a(random() % 20, '\0');
    for (char& c : a) c = static_cast<char>(random());
    std::string b = a;
    if (!b.empty()) {  // often another spelling, sometimes another name
      char& c = b[random() % b.size()];
      c = i % 3 == 0 ? static_cast<char>(random()) : static_cast<char>(c ^ 0x20);
    }
    for (char& c : a) c = c == '/' && random() % 2 == 0 ? '\\' : c;
    const bool equal = FoldedText(a) == FoldedText(b);
    EXPECT_EQ(EqualFolded(a, b), equal);
    EXPECT_EQ(CompareFolded(a, b) == 0, equal);
    EXPECT_EQ(HashFolded(a) == HashFolded(b), equal);
  }
}

TEST(Checksum, IsThatOfZlibWhereverItIsCut) {
  const std::string text = "The quick brown fox jumps over the lazy dog";
  const auto bytes = std::as_bytes(std::span(text));
  EXPECT_EQ(Crc32(bytes), 0x414FA339u);
  EXPECT_EQ(Crc32(bytes), tests::PlainCrc(text));
  EXPECT_EQ(Crc32(bytes.subspan(10), Crc32(bytes.first(10))), 0x414FA339u);
  EXPECT_EQ(CrcText(0x0AF0u), "00000af0");
}

TEST(FileTable, FindsWhatAMapFinds) {
  std::mt19937 random(5);
  FileTable table;
  std::map<std::string, uint32_t> plain;
  for (uint32_t i = 0; i < 30'000; ++i) {
    const std::string name = "Folder" + std::to_string(random() % 200) + "\\sub/File" + std::to_string(random() % 100);
    ASSERT_TRUE(table.Add(name, {.Offset = i}));
    plain.emplace(FoldedText(name), i);
  }
  for (uint32_t i = 0; i < 200; ++i) {
    for (uint32_t j = 0; j < 110; ++j) {
      const std::string name = "fOLDER" + std::to_string(i) + "/sub\\fILE" + std::to_string(j);
      const auto found = plain.find(FoldedText(name));
      const auto number = table.Find(name);
      ASSERT_EQ(number.has_value(), found != plain.end()) << name;
      EXPECT_TRUE(!number || *number == found->second) << name;
    }
  }
  size_t first = 0;
  for (uint32_t i = 0; i < table.Count(); ++i) first += table.IsFirst(i) ? size_t{1} : size_t{0};
  EXPECT_EQ(first, plain.size());
}

TEST(FileTable, ListsFoldersWhateverTheirSpelling) {
  const FileTable table =
      TableOf({"models/b.mdl", "Models/A.mdl", "models/props/c.mdl", "models2/d.mdl", "e.txt", "models\\props\\f.mdl"});
  EXPECT_THAT(table.FilesIn("MODELS", false), ElementsAre(0, 1));
  EXPECT_THAT(table.FilesIn("models", true), ElementsAre(0, 1, 2, 5));
  EXPECT_THAT(table.FilesIn("models/PROPS", true), ElementsAre(2, 5));
  EXPECT_THAT(table.FilesIn("", false), ElementsAre(4));
  EXPECT_THAT(table.FilesIn("", true), ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT(table.FilesIn("model", true), ElementsAre());
  EXPECT_THAT(table.SortedByName(), ElementsAre(4, 1, 0, 2, 5, 3));
}

TEST(FileTable, FindsNamesWhosePartsHoldSlashes) {
  FileTable table;
  const uint32_t folder = *table.AddFolder("models");
  ASSERT_TRUE(table.Add(folder, "props\\crate", "mdl", {}));
  ASSERT_TRUE(table.Add(folder, "a", "b/c", {}));
  ASSERT_TRUE(table.Add("models/props/crate.MDL", {}));
  EXPECT_EQ(table.Find("models/props/crate.mdl"), 0u);
  EXPECT_EQ(table.Find("models/a.b/c"), 1u);
  EXPECT_FALSE(table.IsFirst(2));
}

TEST(FileTable, TakesOrdinaryMemoryAFile) {
  FileTable table;
  constexpr uint32_t Count = 200'000;
  for (uint32_t i = 0; i < Count; ++i) {
    ASSERT_TRUE(
        table.Add("models/props_folder" + std::to_string(i / 40) + "/some_model" + std::to_string(i) + ".mdl", {}));
  }
  table.Shrink();
  EXPECT_LT(table.MemoryBytes(), Count * size_t{110});
}

TEST(FileTable, RefusesNamesThatAreTooLong) {
  FileTable table;
  EXPECT_FALSE(table.Add(std::string(LongestName + 1, 'x'), {}));
  EXPECT_FALSE(table.Add(std::string(LongestName + 1, 'x') + "/y", {}));
  EXPECT_TRUE(table.Add(std::string(LongestName, 'x') + '/' + std::string(LongestName, 'y'), {}));
}

}  // namespace
}  // namespace tarnwick::archives
