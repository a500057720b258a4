#include "archives/game_files.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "archive_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "support/told_texts.h"

namespace tarnwick::archives {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::ScratchFolder;
using tests::VpkBuilder;
using tests::WriteText;

std::string GameInfo(const std::string& paths) {
  return "\"GameInfo\"\n{\n game \"A mod\" // its name\n FileSystem\n {\n  SteamAppId 1\n  SearchPaths\n  {\n" + paths +
         "  }\n }\n}\n";
}

TEST(GameInfo, TellsTheSearchPaths) {
  std::string reason;
#ifdef _WIN32
  const std::string drive = "C:", above = "C:\\games\\";
#else
  const std::string drive, above = "/games/";
#endif
  const std::string mod = drive + "/games/mod", content = drive + "/opt/content";
  const auto paths = ReadSearchPaths(GameInfo("game+mod mod/custom/*\n"
                                              "GAME |gameinfo_path|.\n"
                                              "gamebin |gameinfo_path|bin\n"
                                              "game_lv hl2/hl2_lv.vpk\n"
                                              "platform+Mod \"|gameinfo_path|sub/\"\n"
                                              "game hl2/x360.vpk [$X360]\n"
                                              "game hl2/pc.vpk [!$X360]\n"
                                              "Game |All_Source_Engine_Paths|hl2/hl2_misc.vpk\n"
                                              "game { nested 1 }\n"
                                              "game " +
                                              content + "\n"),
                                     mod, reason);
  ASSERT_TRUE(paths) << reason;
  using Kind = SearchPath::Kind;
  EXPECT_THAT(*paths,
              ElementsAre(SearchPath{Kind::AllBelow, above + "mod/custom"}, SearchPath{Kind::Place, mod},
                          SearchPath{Kind::Place, mod + core::PathSeparator + "sub"},
                          SearchPath{Kind::Place, above + "hl2/pc.vpk"},
                          SearchPath{Kind::Place, above + "hl2/hl2_misc.vpk"}, SearchPath{Kind::Place, content}));
  EXPECT_FALSE(ReadSearchPaths("GameInfo { FileSystem { } }", "/games/mod", reason));
  EXPECT_THAT(reason, HasSubstr("no list"));
  EXPECT_FALSE(ReadSearchPaths("GameInfo { FileSystem", "/games/mod", reason));
  EXPECT_THAT(reason, HasSubstr("line 1"));
}

void WriteVpk(const std::string& path, std::vector<tests::PackedFile> files) {
  WriteText(path, VpkBuilder{.Files = std::move(files)}.Build().Directory);
}

std::string Text(const GameFiles& game, const std::string& name) {
  std::string reason;
  const auto image = game.Read(name, reason);
  return image ? std::string(reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size()) : reason;
}

/// A game "mod" beside the content "base" that it is built on.
class GameFilesTest : public testing::Test {
 protected:
  GameFilesTest() {
    WriteText(m_folder.Path("mod/gameinfo.txt"), GameInfo("game+mod mod/custom/*\n"
                                                          "game |gameinfo_path|.\n"
                                                          "game base/base_misc.vpk\n"
                                                          "game base\n"
                                                          "game nowhere\n"));
    WriteVpk(m_folder.Path("mod/custom/b.vpk"),
             {{.Name = "order.txt", .Bytes = "custom b"}, {.Name = "only_b.txt", .Bytes = "b"}});
    WriteText(m_folder.Path("mod/custom/a/order.txt"), "custom a");
    WriteText(m_folder.Path("mod/custom/a/x.txt"), "custom a");
    WriteVpk(m_folder.Path("mod/pak01_dir.vpk"),
             {{.Name = "x.txt", .Bytes = "pak01"}, {.Name = "y.txt", .Bytes = "pak01"}});
    WriteVpk(m_folder.Path("mod/pak02_dir.vpk"),
             {{.Name = "y.txt", .Bytes = "pak02"}, {.Name = "z.txt", .Bytes = "pak02"}});
    WriteText(m_folder.Path("mod/z.txt"), "loose");
    WriteText(m_folder.Path("mod/Materials/Models/Wood.vmt"), "loose");
    WriteVpk(m_folder.Path("base/base_misc_dir.vpk"), {{.Name = "materials/models/wood.vmt", .Bytes = "archive"},
                                                       {.Name = "materials/models/stone.vmt", .Bytes = "archive"},
                                                       {.Name = "materials/deep/er/a.vmt", .Bytes = "archive"}});
    WriteText(m_folder.Path("base/base.txt"), "base");
  }

  std::unique_ptr<GameFiles> Open() {
    std::string reason;
    auto game = GameFiles::Open(m_folder.Path("mod"), m_report, reason);
    EXPECT_TRUE(game) << reason;
    return game;
  }

  ScratchFolder m_folder;
  tests::RecordingReport m_report;
};

TEST_F(GameFilesTest, TheFirstPlaceWins) {
  const auto game = Open();
  EXPECT_EQ(game->Places().size(), 7u);
  EXPECT_EQ(Text(*game, "order.txt"), "custom a");
  EXPECT_EQ(Text(*game, "only_b.txt"), "b");
  EXPECT_EQ(Text(*game, "x.txt"), "custom a");
  EXPECT_EQ(Text(*game, "y.txt"), "pak01");
  EXPECT_EQ(Text(*game, "z.txt"), "pak02");
  EXPECT_EQ(Text(*game, "base.txt"), "base");
  EXPECT_EQ(Text(*game, "none.txt"), "no place of the game has it");
  EXPECT_THAT(m_report.Troubles, IsEmpty());
}

TEST_F(GameFilesTest, CaseAndSlashPlayNoPart) {
  const auto game = Open();
  for (const char* name :
       {"materials/models/wood.vmt", "MATERIALS\\models\\WOOD.vmt", "/Materials//Models/./Wood.VMT"}) {
    EXPECT_EQ(Text(*game, name), "loose") << name;
  }
  EXPECT_THAT(game->Find("materials\\models\\Stone.vmt")->Name,
              testing::EndsWith("base_misc_dir.vpk:materials/models/stone.vmt"));
  for (const char* name : {"", "materials", "materials/models/", "../base/base.txt", "materials/../z.txt"}) {
    EXPECT_FALSE(game->Find(name)) << name;
  }
}

TEST_F(GameFilesTest, ListsFoldersOverAllPlaces) {
  const auto game = Open();
  GameFolder folder = game->List("");
  EXPECT_THAT(folder.Folders, ElementsAre("custom", "Materials"));
  EXPECT_THAT(folder.Files, ElementsAre("base.txt", "base_misc_dir.vpk", "gameinfo.txt", "only_b.txt", "order.txt",
                                        "pak01_dir.vpk", "pak02_dir.vpk", "x.txt", "y.txt", "z.txt"));
  folder = game->List("materials");
  EXPECT_THAT(folder.Folders, ElementsAre("deep", "Models"));
  EXPECT_THAT(game->List("materials/deep").Folders, ElementsAre("er"));
  EXPECT_THAT(game->List("MATERIALS/models").Files, ElementsAre("stone.vmt", "Wood.vmt"));
  EXPECT_THAT(game->FilesIn("materials", true),
              ElementsAre("materials/deep/er/a.vmt", "materials/models/stone.vmt", "materials/Models/Wood.vmt"));
  EXPECT_THAT(game->FilesIn("materials", false), IsEmpty());
}

#ifndef _WIN32  // which lets not everybody make links
TEST_F(GameFilesTest, LinksThatLeadBackAreNotFollowedForEver) {
  WriteText(m_folder.Path("mod/models/deep/a.mdl"), "");
  for (const char* link : {"one", "two"}) {  // two of them: every level would double what there is to do
    std::filesystem::create_directory_symlink("..", m_folder.Path(std::string("mod/models/deep/") + link));
  }
  EXPECT_THAT(Open()->FilesIn("models", true), ElementsAre("models/deep/a.mdl"));
}
#endif

TEST_F(GameFilesTest, FindsNewFilesOnceRefreshed) {
  const auto game = Open();
  EXPECT_FALSE(game->Find("new/file.txt"));
  WriteText(m_folder.Path("mod/new/file.txt"), "new");
  WriteVpk(m_folder.Path("mod/pak02_dir.vpk"), {{.Name = "added.txt", .Bytes = "added"}});
  EXPECT_EQ(Text(*game, "added.txt"), "no place of the game has it");
  game->Refresh();
  EXPECT_EQ(Text(*game, "New/File.txt"), "new");
  EXPECT_EQ(Text(*game, "added.txt"), "added");
  EXPECT_EQ(Text(*game, "z.txt"), "loose");
}

#ifndef _WIN32
TEST_F(GameFilesTest, LooksIntoAllSpellingsOfAFolder) {
  WriteText(m_folder.Path("mod/materials/models/brick.vmt"), "small");
  const auto game = Open();
  EXPECT_EQ(Text(*game, "MATERIALS/models/brick.vmt"), "small");
  EXPECT_EQ(Text(*game, "materials/models/wood.vmt"), "loose");
}
#endif

TEST_F(GameFilesTest, TellsOfArchivesThatCannotBeOpened) {
  WriteText(m_folder.Path("mod/pak03_dir.vpk"), "no archive");
  const auto game = Open();
  EXPECT_THAT(tests::TextsOf(m_report, core::Severity::Warning),
              ElementsAre(HasSubstr("pak03_dir.vpk: it is no VPK directory file")));
  EXPECT_EQ(Text(*game, "z.txt"), "pak02");
}

TEST_F(GameFilesTest, TellsWhyThereIsNoGame) {
  std::string reason;
  EXPECT_FALSE(GameFiles::Open(m_folder.Path("none"), m_report, reason));
  EXPECT_THAT(reason, HasSubstr("gameinfo.txt: "));
  WriteText(m_folder.Path("mod/gameinfo.txt"), "GameInfo { }");
  EXPECT_FALSE(GameFiles::Open(m_folder.Path("mod"), m_report, reason));
  EXPECT_THAT(reason, HasSubstr("no list"));
}

}  // namespace
}  // namespace tarnwick::archives
