#include "core/folder_names.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "core/paths.h"
#include "support/scratch_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace tarnwick::core {
namespace {

namespace fs = std::filesystem;

/// Lets the folder look as if it had not been changed for a long time.
void Age(const std::string& folder) {
#ifdef _WIN32  // where the library sets no times of folders
  const HANDLE handle = CreateFileW(NativePath(folder).c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  const FILETIME longAgo{0, 0x01D00000};  // the end of 2014
  EXPECT_TRUE(SetFileTime(handle, nullptr, nullptr, &longAgo));
  CloseHandle(handle);
#else
  fs::last_write_time(folder, fs::last_write_time(folder) - std::chrono::hours(1));
#endif
}

TEST(FolderNames, FindsInLargeAndSmallFoldersWhatOneSearchFinds) {
  for (const int count : {3, 300}) {
    const tests::ScratchFolder folder;
    for (int i = 0; i < count; ++i) tests::WriteText(folder.Path("in/Model" + std::to_string(i) + ".VVD"), "");
    tests::WriteText(folder.Path("in/two.a"), "");
    tests::WriteText(folder.Path("in/Two.A"), "");
    fs::create_directories(folder.Path("in/Folder.phy"));
    Age(folder.Path("in"));
    FolderNames names;
    for (int round = 0; round < 3; ++round) {
      for (const char* name :
           {"model1.vvd", "Model2.VVD", "model1.phy", "TWO.A", "two.a", "folder.phy", "none/a.vvd"}) {
        const std::string path = folder.Path("in/") + name;
        EXPECT_EQ(names.Find(path), FindIgnoringCase(path)) << name << ", round " << round;
      }
    }
  }
}

TEST(FolderNames, FindsWhatWasWrittenSinceAndNotWhatIsGone) {
  const tests::ScratchFolder folder;
  for (int i = 0; i < 300; ++i) tests::WriteText(folder.Path("in/" + std::to_string(i) + ".mdl"), "");
  tests::WriteText(folder.Path("in/Old.PHY"), "");
  Age(folder.Path("in"));
  FolderNames names;
  for (int round = 0; round < 3; ++round) {
    EXPECT_FALSE(names.Find(folder.Path("in/new.phy")));
    EXPECT_TRUE(names.Find(folder.Path("in/old.phy")));
  }
  tests::WriteText(folder.Path("in/New.PHY"), "");
  fs::remove(folder.Path("in/Old.PHY"));
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(names.Find(folder.Path("in/new.phy")));
    EXPECT_FALSE(names.Find(folder.Path("in/old.phy")));
  }
}

}  // namespace
}  // namespace tarnwick::core
