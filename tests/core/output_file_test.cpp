#include "core/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace tarnwick::core {
namespace {

namespace fs = std::filesystem;
using tests::ReadText;
using tests::WriteText;

#ifndef _WIN32  // there, neither such permissions nor, without a right of its own, links exist
TEST(OutputFile, KeepsThePermissionsOfTheFileThatItReplaces) {
  tests::ScratchFolder folder;
  WriteText(folder.Path("a"), "old");
  fs::permissions(folder.Path("a"), fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_exec);
  auto file = OutputFile::Create(folder.Path("a"));
  ASSERT_TRUE(file && file->Write("new") && file->Commit());
  EXPECT_EQ(ReadText(folder.Path("a")), "new");
  EXPECT_EQ(fs::status(folder.Path("a")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_exec);
}

TEST(OutputFile, ReplacesTheFileBehindALinkAndKeepsTheLink) {
  tests::ScratchFolder folder;
  WriteText(folder.Path("real/a"), "old");
  fs::create_symlink("real/a", folder.Path("link"));
  auto file = OutputFile::Create(folder.Path("link"));
  ASSERT_TRUE(file && file->Write("new") && file->Commit());
  EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
  EXPECT_EQ(ReadText(folder.Path("real/a")), "new");
  EXPECT_EQ(folder.Files(), (std::vector<std::string>{"link", "real/a"}));
}
#endif

TEST(OutputFile, LeavesTheOlderFileUntilItIsCommitted) {
  tests::ScratchFolder folder;
  WriteText(folder.Path("a"), "old");
  {
    auto file = OutputFile::Create(folder.Path("a"));
    ASSERT_TRUE(file && file->Write("half"));
    EXPECT_EQ(ReadText(folder.Path("a")), "old");
  }
  EXPECT_EQ(ReadText(folder.Path("a")), "old");
  EXPECT_EQ(folder.Files(), std::vector<std::string>{"a"});
  EXPECT_FALSE(OutputFile::Create(folder.Path("missing/a")));
}

}  // namespace
}  // namespace tarnwick::core
