#include <gmock/gmock.h>

#include "archives/archive_name.h"
#include "archives/name_pattern.h"
#include "archives/safe_name.h"
#include "support/scratch_folder.h"

namespace tarnwick::archives {
namespace {

using testing::HasSubstr;
using Where = ContentName::Place;

TEST(ArchiveName, TellsPathsArchivesAndGames) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("pak01_dir.vpk"), "");
  tests::WriteText(folder.Path("ADDON.GMA"), "");
  tests::WriteText(folder.Path("plain.mdl"), "");
  struct Case {
    std::string Name;
    Where Place;
    std::string Path;
    std::string Inside;
  };
  const std::string vpk = folder.Path("pak01_dir.vpk");
  const Case cases[] = {
      {folder.Path("plain.mdl"), Where::Disk, folder.Path("plain.mdl"), ""},
      {folder.Path("none.mdl"), Where::Disk, folder.Path("none.mdl"), ""},
      {vpk, Where::Disk, vpk, ""},
      {vpk + ":models/a.mdl", Where::Archive, vpk, "models/a.mdl"},
      {vpk + ":", Where::Archive, vpk, ""},
      {vpk + ":a:b", Where::Archive, vpk, "a:b"},
      {folder.Path("pak01.vpk") + ":a", Where::Archive, vpk, "a"},
      {folder.Path("ADDON.GMA") + ":Models\\a.mdl", Where::Archive, folder.Path("ADDON.GMA"), "Models\\a.mdl"},
      {folder.Path("none.vpk") + ":a", Where::Archive, folder.Path("none.vpk"), "a"},
      {folder.Path("none.vpk") + ":x/y.gma:a", Where::Archive, folder.Path("none.vpk"), "x/y.gma:a"},
      {"game:models/a.mdl", Where::Game, "", "models/a.mdl"},
      {"GAME:a", Where::Game, "", "a"},
      {"games:a", Where::Disk, "games:a", ""},
  };
  for (const Case& expected : cases) {
    const ContentName name = ReadContentName(expected.Name);
    EXPECT_EQ(name.Where, expected.Place) << expected.Name;
    EXPECT_EQ(name.Path, expected.Path) << expected.Name;
    EXPECT_EQ(name.Inside, expected.Inside) << expected.Name;
  }
}

#ifndef _WIN32
TEST(ArchiveName, TakesAPartForItsArchive) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("pak01_dir.vpk"), "");
  for (const char* name : {"pak01_003.vpk", "alone_000.vpk", "set_1.vpk"}) tests::WriteText(folder.Path(name), "");
  EXPECT_EQ(DirectoryFileOf(folder.Path("pak01_003.vpk")), folder.Path("pak01_dir.vpk"));
  EXPECT_EQ(DirectoryFileOf(folder.Path("pak01_120.vpk")), folder.Path("pak01_dir.vpk"));
  EXPECT_EQ(DirectoryFileOf(folder.Path("alone_000.vpk")), folder.Path("alone_000.vpk"));
  EXPECT_EQ(DirectoryFileOf(folder.Path("set_1.vpk")), folder.Path("set_1.vpk"));
}

TEST(ArchiveName, LeavesRealFilesTheirNames) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("pak01_dir.vpk"), "");
  const std::string name = folder.Path("pak01_dir.vpk:models/a.mdl");
  tests::WriteText(name, "loose");
  EXPECT_EQ(ReadContentName(name).Where, Where::Disk);
}
#endif

TEST(NamePattern, MatchesPartsAndPaths) {
  struct Case {
    const char* Pattern;
    const char* Name;
    bool Matches;
  };
  const Case cases[] = {
      {"*.mdl", "models/props/crate.mdl", true},
      {"*.MDL", "models\\props\\Crate.mdl", true},
      {"crate*", "models/crate/other.mdl", false},
      {"models/*.mdl", "models/a.mdl", true},
      {"models/*.mdl", "models/props/a.mdl", false},
      {"models/**.mdl", "models/props/deep/a.mdl", true},
      {"**/crate?.mdl", "models/props/crate1.mdl", true},
      {"**/crate?.mdl", "models/props/crate.mdl", false},
      {"models/**/crate*.v*", "models/a/b/crate_01.vvd", true},
      {"models/**/x/*.mdl", "models/a/x/b/x/c.mdl", true},
      {"models/props", "models/props/crate.mdl", true},
      {"models/props/", "Models/Props/crate.mdl", true},
      {"models", "models/props/crate.mdl", true},
      {"models", "models2/crate.mdl", false},
      {"props/", "models/props/crate.mdl", false},
      {"/models\\props", "models/props/a", true},
      {"*", "a/b", true},
      {"**", "a/b", true},
      {"a?b", "a/b", false},
      {"*a*b*c", "xaxbxc", true},
      {"*a*b*c", "xaxbx", false},
      {"crate.mdl", "crate.mdl.bak", false},
  };
  for (const Case& c : cases) EXPECT_EQ(MatchesPattern(c.Name, c.Pattern), c.Matches) << c.Pattern << ' ' << c.Name;
}

TEST(NamePattern, EndsSoonOnManyStars) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "**a*a";
  EXPECT_FALSE(MatchesPattern(std::string(2000, 'a') + "/b", pattern + "c"));
}

TEST(SafeName, RefusesWhateverLeadsElsewhere) {
  struct Case {
    std::string Name;
    const char* Reason;  // "" if it is safe
  };
  const Case cases[] = {
      {"models/props/crate.mdl", ""},
      {"a..b/.hidden/...", ""},
      {"caf\xC3\xA9/\xFF.txt", ""},
      {"../x", "\"..\""},
      {"a/../../x", "\"..\""},
      {"a\\..\\x", "\"..\""},
      {"a/..", "\"..\""},
      {"./x", "\".\""},
      {"/etc/passwd", "at the root"},
      {"\\\\server\\share", "at the root"},
      {"C:/x", "colon"},
      {"C:x", "colon"},
      {"a/b:stream", "colon"},
      {"a//b", "empty part"},
      {"a/", "empty part"},
      {"", "empty part"},
      {"a\x1B[2J", "control byte"},
      {std::string("a\0b", 3), "control byte"},
      {"a\x7F", "control byte"},
  };
  for (const Case& c : cases) {
    for (const NameRules rules : {NameRules::Posix, NameRules::Windows}) {
      if (c.Reason[0] == '\0' && c.Name.ends_with('.')) continue;
      const std::string reason = UnsafeReason(c.Name, rules);
      EXPECT_EQ(reason.empty(), c.Reason[0] == '\0') << c.Name;
      EXPECT_THAT(reason, HasSubstr(c.Reason)) << c.Name;
    }
  }
  for (const char* name : {"con", "a/NUL.txt", "lpt1", "COM\u00B9.x", "aux .c", "a.", "b /c", "d?", "e|f"}) {
    EXPECT_EQ(UnsafeReason(name, NameRules::Posix), "") << name;
    EXPECT_NE(UnsafeReason(name, NameRules::Windows), "") << name;
  }
  EXPECT_EQ(UnsafeReason("console/com10.txt", NameRules::Windows), "");
  EXPECT_EQ(PrintableName("a\x1B[2J\n"), "a\\x1b[2J\\x0a");
}

}  // namespace
}  // namespace tarnwick::archives
