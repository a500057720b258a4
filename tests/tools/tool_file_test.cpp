#include "tools/tool_file.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace tarnwick::tools {
namespace {

using tests::ScratchFolder;
using tests::WriteText;

/// The head of a portable executable for `machine`.
std::string PeHead(uint16_t machine) {
  std::string head(0x88, '\0');
  head.replace(0, 2, "MZ");
  head[0x3C] = static_cast<char>(0x80);
  head.replace(0x80, 2, "PE");
  head[0x84] = static_cast<char>(machine & 0xFF);
  head[0x85] = static_cast<char>(machine >> 8);
  return head;
}

TEST(ToolFile, TellsAProgramsKindByItsHeaderAndNotItsName) {
  const ScratchFolder folder;
  const auto kindOf = [&](const std::string& content) {
    WriteText(folder.Path("tool.exe"), content);
    return ReadProgramKind(folder.Path("tool.exe"));
  };
  EXPECT_EQ(kindOf(PeHead(0x014C)), ProgramKind::Windows32);
  EXPECT_EQ(kindOf(PeHead(0x8664)), ProgramKind::Windows64);
  EXPECT_EQ(kindOf(PeHead(0xAA64)), ProgramKind::OtherWindows);
  EXPECT_EQ(kindOf("MZ, and no more"), ProgramKind::Dos);
  EXPECT_EQ(kindOf(PeHead(0x8664).substr(0, 0x85)), ProgramKind::Dos);
  EXPECT_EQ(kindOf("\x7F"
                   "ELF"),
            ProgramKind::Native);
  EXPECT_EQ(kindOf(""), ProgramKind::Native);
  EXPECT_EQ(ReadProgramKind(folder.Path("missing.exe")), ProgramKind::Native);
}

TEST(ToolFile, AToolExistsIfTheFileSystemHasAnEntryForIt) {
  const ScratchFolder folder;
  WriteText(folder.Path("sub/vtex.exe"), "");
  EXPECT_TRUE(ToolExists(folder.Path("sub/vtex.exe")));
  EXPECT_TRUE(ToolExists(folder.Path("sub")));
  EXPECT_FALSE(FindToolFile(folder.Path("sub")));
  EXPECT_FALSE(ToolExists(folder.Path("sub/studiomdl.exe")));
}

#ifndef _WIN32
TEST(ToolFile, FindsNativeProgramsAndOtherSpellingsWithTheExactNameFirst) {
  const ScratchFolder folder;
  WriteText(folder.Path("vtex"), "");
  WriteText(folder.Path("StudioMDL.exe"), "");
  EXPECT_EQ(FindToolFile(folder.Path("vtex.exe")), folder.Path("vtex"));
  EXPECT_EQ(FindToolFile(folder.Path("studiomdl.exe")), folder.Path("StudioMDL.exe"));
  EXPECT_EQ(FindToolFile(folder.Path("studiomdl")), folder.Path("StudioMDL.exe"));
  EXPECT_TRUE(ToolExists(folder.Path("vtex.exe")));
  WriteText(folder.Path("vtex.exe"), "");
  EXPECT_EQ(FindToolFile(folder.Path("vtex.exe")), folder.Path("vtex.exe"));
}
#endif

}  // namespace
}  // namespace tarnwick::tools
