#include "core/folder_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/paths.h"
#include "support/scratch_folder.h"

namespace tarnwick::core {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// What a folder holds, sorted: folders with a slash behind their names, files with their sizes.
std::vector<std::string> Listed(const std::string& folder) {
  std::vector<std::string> listed;
  FolderReader entries(NativePath(folder));
  while (entries.Next()) {
    EXPECT_NE(entries.IsFolder(), entries.IsFile()) << entries.Name();
    listed.push_back(entries.Name() + (entries.IsFolder() ? "/" : " " + std::to_string(entries.Size())));
    EXPECT_EQ(PathText(entries.Path().filename()), entries.Name());
  }
  EXPECT_FALSE(entries.Error()) << entries.Error().message();
  std::sort(listed.begin(), listed.end());
  return listed;
}

std::vector<std::string> Below(const std::string& folder, bool recursive, std::string_view ending = "") {
  std::error_code error;
  const auto wants = [&](std::string_view name) { return name.ends_with(ending); };
  std::vector<std::string> names;
  for (const FileBelow& file : FilesBelow(NativePath(folder), recursive, wants, error)) {
    EXPECT_TRUE(tests::WithSlashes(file.Path).ends_with('/' + tests::WithSlashes(file.Below))) << file.Path;
    names.push_back(tests::WithSlashes(file.Below));
  }
  EXPECT_FALSE(error) << error.message();
  std::sort(names.begin(), names.end());
  return names;
}

TEST(FolderReader, ReadsFoldersOfAnyLengthAndAlphabet) {
  const tests::ScratchFolder folder;
  std::string deep = folder.Path("top");
  for (const char letter : {'a', 'b', 'c'}) {
    tests::WriteText(deep + "/\u0436 \u4E2D.mdl", std::string(3000, 'x'));
    tests::WriteText(deep + "/a.txt", "");
    deep += '/' + std::string(120, letter);
    fs::create_directories(NativePath(deep));
    // Nothing is in it yet.
    EXPECT_THAT(Listed(deep), IsEmpty());
  }
  tests::WriteText(deep + "/last.mdl", "12345");
  EXPECT_THAT(Listed(deep), ElementsAre("last.mdl 5"));
  const std::string middle = deep.substr(0, deep.rfind('/'));
  ASSERT_GT(middle.size(), 260U);
  EXPECT_THAT(Listed(middle), ElementsAre("a.txt 0", std::string(120, 'c') + "/", "\u0436 \u4E2D.mdl 3000"));
  EXPECT_THAT(Below(middle, true, ".mdl"), ElementsAre(std::string(120, 'c') + "/last.mdl", "\u0436 \u4E2D.mdl"));
  EXPECT_THAT(Below(middle, false), ElementsAre("a.txt", "\u0436 \u4E2D.mdl"));
  EXPECT_EQ(Below(folder.Path("top"), true).size(), 7U) << "from a short path into those that are long";

  RemoveFolder(NativePath(folder.Path("top")));
  EXPECT_FALSE(fs::exists(folder.Path("top")));
}

TEST(FolderReader, FindsAllBelowManyFoldersWhicheverThreadReadsThem) {
  const tests::ScratchFolder folder;
  std::vector<std::string> written;
  for (int i = 0; i < 300; ++i) {
    const std::string below = std::to_string(i % 40) + "/" + std::to_string(i % 7) + "/" + std::to_string(i) + ".mdl";
    tests::WriteText(folder.Path("all/" + below), "");
    tests::WriteText(folder.Path("all/" + below + ".txt"), "");
    written.push_back(below);
  }
  std::sort(written.begin(), written.end());
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Below(folder.Path("all"), true, ".mdl"), written);
}

TEST(FolderReader, TellsWhyAFolderIsNotRead) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("file"), "");
  FolderReader none(NativePath(folder.Path("none")));
  EXPECT_FALSE(none.Next());
  EXPECT_EQ(none.Error(), std::errc::no_such_file_or_directory) << none.Error().message();
  FolderReader file(NativePath(folder.Path("file")));
  EXPECT_FALSE(file.Next());
  EXPECT_TRUE(file.Error());
  std::error_code error;
  EXPECT_TRUE(FilesBelow(
                  NativePath(folder.Path("none")), true, [](auto) { return true; }, error)
                  .empty());
  EXPECT_TRUE(error);
}

#ifndef _WIN32
TEST(FolderReader, TakesALinkForWhatItLeadsToAndDoesNotWalkBelowIt) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("all/in/a.mdl"), "123");
  tests::WriteText(folder.Path("all/back\\slash/b.mdl"), "");
  tests::WriteText(folder.Path("kept"), "kept");
  fs::create_directory_symlink(folder.Path("all"), folder.Path("all/in/again"));
  fs::create_symlink("a.mdl", folder.Path("all/in/link.mdl"));
  fs::create_symlink(folder.Path("kept"), folder.Path("all/kept.mdl"));
  EXPECT_THAT(Listed(folder.Path("all/in")), ElementsAre("a.mdl 3", "again/", "link.mdl 3"));
  EXPECT_THAT(Below(folder.Path("all"), true, ".mdl"),
              ElementsAre("back\\slash/b.mdl", "in/a.mdl", "in/link.mdl", "kept.mdl"));
  RemoveFolder(folder.Path("all"));
  EXPECT_THAT(folder.Files(), ElementsAre("kept"));
}
#endif

}  // namespace
}  // namespace tarnwick::core
