#include "archives/content_files.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <span>

#include "archive_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::archives {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using tests::WriteText;

/// A game with an archive, an addon that lies elsewhere, and a loose model.
class ContentFilesTest : public testing::Test {
 protected:
  ContentFilesTest() {
    WriteText(m_folder.Path("mod/gameinfo.txt"), "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
    tests::VpkBuilder vpk{.Files = {{.Name = "models/crate.mdl", .Bytes = "game mdl"},
                                    {.Name = "models/crate.vvd", .Bytes = "game vvd"},
                                    {.Name = "models/props/box.phy", .Bytes = "game phy"},
                                    {.Name = "models/shared.ani", .Bytes = "game ani"}}};
    WriteText(m_folder.Path("mod/pak01_dir.vpk"), vpk.Build().Directory);
    WriteText(m_folder.Path("addon.gma"),
              tests::GmaBuilder{.Files = {{.Name = "models/crate.mdl", .Bytes = "addon mdl"},
                                          {.Name = "models/Crate.VVD", .Bytes = "addon vvd"},
                                          {.Name = "models/sub/b.mdl", .Bytes = "b"},
                                          {.Name = "MODELS/crate.MDL", .Bytes = "later"}}}
                  .Build());
    WriteText(m_folder.Path("loose.mdl"), "loose");
    WriteText(m_folder.Path("Loose.vvd"), "loose vvd");
  }

  std::string Text(const ContentFiles& files, const std::string& name) const {
    std::string reason;
    const auto image = files.Read(name, &reason);
    return image ? std::string(reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size()) : reason;
  }

  tests::ScratchFolder m_folder;
  tests::RecordingReport m_report;
};

TEST_F(ContentFilesTest, ReadsEveryKindOfName) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  const std::string addon = m_folder.Path("addon.gma");
  EXPECT_EQ(Text(files, m_folder.Path("loose.mdl")), "loose");
  EXPECT_EQ(Text(files, addon + ":Models\\CRATE.mdl"), "addon mdl");
  EXPECT_EQ(Text(files, m_folder.Path("mod/pak01.vpk") + ":models/crate.mdl"), "game mdl");
  EXPECT_EQ(Text(files, "game:models/crate.mdl"), "game mdl");
  EXPECT_EQ(Text(files, addon + ":models/none.mdl"), "the archive has no such file");
  EXPECT_EQ(Text(files, "game:none.mdl"), "no place of the game has it");
  EXPECT_THAT(Text(files, m_folder.Path("none.vpk") + ":a"), HasSubstr("none.vpk: "));
  EXPECT_EQ(Text(ContentFiles("", m_report), "game:a"), "no game directory is known");
}

TEST_F(ContentFilesTest, ReadsAnArchiveAnewWhenItWasWrittenAnew) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  const std::string path = m_folder.Path("new.vpk");
  WriteText(path, tests::VpkBuilder{.Files = {{.Name = "a.txt", .Bytes = "first"}}}.Build().Directory);
  EXPECT_EQ(Text(files, path + ":a.txt"), "first");
  WriteText(path,
            tests::VpkBuilder{.Files = {{.Name = "a.txt", .Bytes = "the second"}, {.Name = "b.txt", .Bytes = "b"}}}
                .Build()
                .Directory);
  EXPECT_EQ(Text(files, path + ":a.txt"), "the second");
  EXPECT_EQ(Text(files, path + ":b.txt"), "b");
#ifndef _WIN32  // there its name may stay until the last who has it open is done
  std::filesystem::remove(path);
  EXPECT_THAT(Text(files, path + ":a.txt"), HasSubstr("new.vpk: "));
#endif
}

TEST_F(ContentFilesTest, CompanionsComeFromTheSameArchiveFirst) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  const ContentFiles noGame("", m_report);
  const std::string addon = m_folder.Path("addon.gma");
  EXPECT_THAT(files.FindCompanion(addon + ":models/crate.vvd"), Optional(addon + ":models/Crate.VVD"));
  EXPECT_EQ(Text(files, *files.FindCompanion(addon + ":models/shared.ani")), "game ani");
  EXPECT_FALSE(noGame.FindCompanion(addon + ":models/shared.ani"));
  EXPECT_FALSE(files.FindCompanion(addon + ":models/none.ani"));
  EXPECT_EQ(Text(files, *files.FindCompanion("game:models/crate.vvd")), "game vvd");
#ifdef _WIN32  // where any spelling opens it
  EXPECT_TRUE(files.FindCompanion(m_folder.Path("loose.vvd")));
#else
  EXPECT_THAT(files.FindCompanion(m_folder.Path("loose.vvd")), Optional(m_folder.Path("Loose.vvd")));
#endif
  EXPECT_FALSE(files.FindCompanion(m_folder.Path("none.vvd")));
}

TEST_F(ContentFilesTest, LooseFilesOfAGameHaveTheirCompanionsThroughTheSearchPaths) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  WriteText(m_folder.Path("mod/models/Props/box.mdl"), "box");
  WriteText(m_folder.Path("mod/models/Props/box.vvd"), "beside");
  std::string reason;
  const auto path = files.Resolve("game:models/props/box.mdl", reason);
  ASSERT_TRUE(path) << reason;
  EXPECT_THAT(*path, testing::EndsWith("box.mdl"));
  EXPECT_EQ(Text(files, *files.FindCompanion(m_folder.Path("mod/models/Props/box.vvd"))), "beside");
  EXPECT_EQ(Text(files, *files.FindCompanion(m_folder.Path("mod/models/Props/box.phy"))), "game phy");
  EXPECT_FALSE(files.FindCompanion(m_folder.Path("mod/models/Props/shared.ani")));  // of models/, not of models/props/
  // A model that no `game:` name has led to is a file like any other.
  EXPECT_FALSE(files.FindElsewhere(m_folder.Path("mod/models/shared.ani")));
}

TEST_F(ContentFilesTest, ReadsTheStartOfFilesWithoutTheRest) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  for (const std::string& name : {std::string("game:models/crate.mdl"),
                                  m_folder.Path("addon.gma") + ":models/crate.mdl", m_folder.Path("loose.mdl")}) {
    std::array<char, 4> start{};
    EXPECT_TRUE(files.ReadStart(name, std::as_writable_bytes(std::span(start)))) << name;
    EXPECT_EQ(std::string(start.data(), 4), Text(files, name).substr(0, 4));
    std::array<char, 10> longer{};
    EXPECT_FALSE(files.ReadStart(name, std::as_writable_bytes(std::span(longer)))) << name;
  }
}

TEST_F(ContentFilesTest, ReadsWholeFilesOnlyIfTheirStartIsWanted) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  for (const std::string& name : {std::string("game:models/crate.mdl"),
                                  m_folder.Path("addon.gma") + ":models/crate.mdl", m_folder.Path("loose.mdl")}) {
    const std::string text = Text(files, name);
    for (const bool wanted : {true, false}) {
      std::string asked, reason = "as it was";
      const auto wants = [&](std::span<const std::byte> start) {
        asked.assign(reinterpret_cast<const char*>(start.data()), start.size());
        return wanted;
      };
      const auto file = files.ReadIf(name, 4, wants, &reason);
      EXPECT_EQ(asked, text.substr(0, 4)) << name;
      ASSERT_EQ(file.has_value(), wanted) << name;
      EXPECT_EQ(reason, "as it was");
      const auto bytes = file ? file->Bytes() : std::span<const std::byte>();
      EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()), wanted ? text : "");
      EXPECT_TRUE(files.ReadIf(name, text.size() + 1, wants, &reason)) << "too short to be asked of";
    }
  }
  std::string reason;
  const auto never = [](std::span<const std::byte>) { return false; };
  EXPECT_FALSE(files.ReadIf(m_folder.Path("none.mdl"), 4, never, &reason));
  EXPECT_NE(reason, "");
}

TEST_F(ContentFilesTest, ListsFoldersInsideArchivesAndGames) {
  const ContentFiles files(m_folder.Path("mod"), m_report);
  const std::string addon = m_folder.Path("addon.gma");
  std::string reason;
  EXPECT_THAT(files.FilesIn(addon, ".mdl", true, reason),
              Optional(ElementsAre(ListedFile{addon + ":models/crate.mdl", "models/crate.mdl"},
                                   ListedFile{addon + ":models/sub/b.mdl", "models/sub/b.mdl"})));
  EXPECT_THAT(files.FilesIn(addon + ":Models/", ".MDL", false, reason),
              Optional(ElementsAre(ListedFile{addon + ":models/crate.mdl", "crate.mdl"})));
  EXPECT_THAT(files.FilesIn(addon + ":models/s*/*", ".mdl", false, reason),
              Optional(ElementsAre(ListedFile{addon + ":models/sub/b.mdl", "sub/b.mdl"})));
  EXPECT_THAT(files.FilesIn("game:models", ".vvd", true, reason),
              Optional(ElementsAre(ListedFile{"game:models/crate.vvd", "crate.vvd"})));
  EXPECT_THAT(files.FilesIn("game:*.ani", "", false, reason),
              Optional(ElementsAre(ListedFile{"game:models/shared.ani", "models/shared.ani"})));
  EXPECT_THAT(files.FilesIn(addon + ":models/none", ".mdl", true, reason), Optional(ElementsAre()));
  EXPECT_FALSE(files.FilesIn(addon + ":models/none.mdl", ".mdl", true, reason));
  EXPECT_FALSE(files.FilesIn(addon + ":models/crate.mdl", ".mdl", true, reason));
  EXPECT_FALSE(files.FilesIn(m_folder.Path("mod"), ".mdl", true, reason));
  EXPECT_EQ(reason, "");
  EXPECT_FALSE(files.FilesIn(m_folder.Path("none.vpk"), ".mdl", true, reason));
  EXPECT_NE(reason, "");
}

}  // namespace
}  // namespace tarnwick::archives
