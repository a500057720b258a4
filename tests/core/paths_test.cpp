#include "core/paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace tarnwick::core {
namespace {

TEST(Paths, TakeBothSlashes) {
  EXPECT_EQ(LastComponent("a\\b/c.mdl"), "c.mdl");
  EXPECT_EQ(LastComponent("a/b\\c.mdl"), "c.mdl");
  EXPECT_EQ(LastComponent("c.mdl"), "c.mdl");
  EXPECT_EQ(LastComponent("a/"), "");
  EXPECT_EQ(DirectoryWithSeparator("a\\b/c.mdl"), "a\\b/");
  EXPECT_EQ(DirectoryWithSeparator("c.mdl"), "");
}

// Windows finds a file under any case by itself.
#ifndef _WIN32
TEST(Paths, FindOneFileThatDiffersInCaseOnly) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("Hair.VVD"), "");
  tests::WriteText(folder.Path("two.vvd"), "");
  tests::WriteText(folder.Path("TWO.vvd"), "");
  std::filesystem::create_directory(folder.Path("dir.vvd"));
  EXPECT_EQ(FindIgnoringCase(folder.Path("hair.vvd")), folder.Path("Hair.VVD"));
  EXPECT_EQ(FindIgnoringCase(folder.Path("two.vvd")), folder.Path("two.vvd"));
  EXPECT_FALSE(FindIgnoringCase(folder.Path("Two.vvd"))) << "two files differ in case only";
  EXPECT_FALSE(FindIgnoringCase(folder.Path("DIR.vvd"))) << "a folder is no file";
  EXPECT_FALSE(FindIgnoringCase(folder.Path("none/hair.vvd")));
}
#endif

}  // namespace
}  // namespace tarnwick::core
