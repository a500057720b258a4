#include "core/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#endif

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
#else
TEST(OutputFile, LeavesAReadOnlyOrLockedFileAsItIsAndTellsWhy) {
  tests::ScratchFolder folder;
  for (const char* name : {"read-only", "locked"}) WriteText(folder.Path(name), "old");
  const fs::perms before = fs::status(folder.Path("read-only")).permissions();
  fs::permissions(folder.Path("read-only"), fs::perms::owner_write, fs::perm_options::remove);
  std::string reason;
  EXPECT_FALSE(OutputFile::Create(folder.Path("read-only"), &reason));
  EXPECT_EQ(reason, "Permission denied");
  fs::permissions(folder.Path("read-only"), before);

  const HANDLE lock = CreateFileW(fs::path(folder.Path("locked")).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(lock, INVALID_HANDLE_VALUE);
  auto file = OutputFile::Create(folder.Path("locked"), &reason);
  EXPECT_FALSE(file && file->Write("new") && file->Commit());
  if (file) reason = file->Error();
  EXPECT_FALSE(reason.empty());
  CloseHandle(lock);
  for (const char* name : {"read-only", "locked"}) EXPECT_EQ(ReadText(folder.Path(name)), "old") << name;
  EXPECT_EQ(folder.Files(), (std::vector<std::string>{"locked", "read-only"})) << "nothing half-written stays";
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
