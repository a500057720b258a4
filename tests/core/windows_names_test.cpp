#include "core/windows_names.h"

#include <gtest/gtest.h>

#include "core/output_file.h"
#include "support/scratch_folder.h"

namespace tarnwick::core {
namespace {

TEST(WindowsNames, AreDevicesWhateverFollows) {
  for (const char* name : {"con", "Nul.smd", "AUX .tar.gz", "com1", "lpt9.vta", "COM\u00B2.qc", "conout$"}) {
    EXPECT_TRUE(IsDeviceName(name)) << name;
  }
  for (const char* name : {"", "console", "com", "com10", "lpta", "a.con", "_con"}) {
    EXPECT_FALSE(IsDeviceName(name)) << name;
  }
}

TEST(WindowsNames, TellWhatIsWrongWithThem) {
  EXPECT_EQ(WindowsNameTrouble("con.smd"), "its name is that of a device");
  EXPECT_EQ(WindowsNameTrouble("hair:1.smd"), "its name has a character that Windows reserves");
  EXPECT_EQ(WindowsNameTrouble("hair."), "its name ends in a dot or a blank");
  EXPECT_EQ(WindowsNameTrouble("ha\tir"), "its name has a control byte");
  EXPECT_EQ(WindowsNameTrouble("hair .smd"), "");
}

#ifdef _WIN32
TEST(WindowsNames, AreRefusedBeforeAnythingIsWritten) {
  const tests::ScratchFolder folder;
  for (const char* name : {"con.smd", "hair:stream", "hair."}) {
    std::string reason;
    EXPECT_FALSE(OutputFile::Create(folder.Path(name), &reason)) << name;
    EXPECT_EQ(reason, WindowsNameTrouble(name));
  }
  EXPECT_TRUE(folder.Files().empty());
}
#endif

}  // namespace
}  // namespace tarnwick::core
