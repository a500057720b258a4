#include "core/paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/file_image.h"
#include "core/output_file.h"
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

#ifdef _WIN32
TEST(Paths, ReachFilesOfAnyLengthAndAlphabet) {
  const tests::ScratchFolder folder;
  const std::string path = folder.Path() + "/" + std::string(120, 'a') + "/\u0436\u00E9" + std::string(120, 'b') +
                           "/../" + std::string(120, 'c') + "/\u4E2D.smd";
  ASSERT_GT(path.size(), 300U);
  std::filesystem::create_directories(NativePath(path).parent_path());
  auto written = OutputFile::Create(path);
  ASSERT_TRUE(written && written->Write("text") && written->Commit());
  EXPECT_TRUE(FileExists(path));
  const auto read = FileImage::Read(path);
  EXPECT_TRUE(read && read->Bytes().size() == 4);
  EXPECT_TRUE(PathText(NativePath(path)).ends_with("\\" + std::string(120, 'c') + "\\\u4E2D.smd"))
      << PathText(NativePath(path));
  EXPECT_FALSE(PathText(NativePath(path)).starts_with("\\\\?"));
  EXPECT_EQ(PathText(NativePath("//server/share/" + std::string(300, 'd'))).substr(0, 14), "\\\\server\\share");
}

TEST(Paths, KnowAFileInTheCurrentFolderOfADrive) {
  EXPECT_EQ(LastComponent("c:hair.mdl"), "hair.mdl");
  EXPECT_EQ(DirectoryWithSeparator("c:hair.mdl"), "c:");
  EXPECT_EQ(LastComponent("c:\\a:b"), "a:b");
}

// Windows finds a file under any case by itself.
#else
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
