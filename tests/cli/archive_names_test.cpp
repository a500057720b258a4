#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "core/file_image.h"
#include "support/archive_builder.h"
#include "support/model_builder.h"
#ifdef TARNWICK_HAS_IMAGES
#include "support/vtf_builder.h"
#endif

namespace tarnwick::cli {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::ScratchFolder;
using tests::WriteText;

/// Verbs with names of files in an archive that has a model, its material and its texture, and in a game that has the
/// same.
class ArchiveNames : public tests::VerbTest {
 protected:
  ArchiveNames() {
    const ScratchFolder loose;
    tests::ModelBuilder{}.Write(loose.Path("models/props"), "cube");
#ifdef TARNWICK_HAS_IMAGES
    WriteText(loose.Path("materials/models/props/skin.vmt"), "UnlitGeneric { $basetexture models/props/skin }");
    WriteText(loose.Path("materials/models/props/skin.vtf"), tests::VtfBuilder().Build());
#endif
    tests::VpkBuilder vpk;
    for (const std::string& name : loose.Files()) {
      const auto image = core::FileImage::Read(loose.Path(name));
      const auto bytes = image->Bytes();
      vpk.Files.push_back({.Name = name, .Bytes = {reinterpret_cast<const char*>(bytes.data()), bytes.size()}});
    }
    WriteText(m_vpk, vpk.Build().Directory);
    WriteText(m_folder.Path("mod/gameinfo.txt"), "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
  }

  ScratchFolder m_folder;
  ScratchFolder m_output;
  const std::string m_vpk = m_folder.Path("mod/pak01_dir.vpk");
  const std::string m_game = m_folder.Path("mod");
};

TEST_F(ArchiveNames, DecompileTakesThem) {
  EXPECT_EQ(RunVerb({"decompile"}, {"--json", "-o", m_output.Path(), m_vpk + ":models/props/cube.mdl"}), ExitSuccess)
      << m_err;
  const auto json = nlohmann::json::parse(m_out);
  EXPECT_EQ(json["model"], m_vpk + ":models/props/cube.mdl");
  EXPECT_THAT(m_output.Files(), ElementsAre("cube.smd", "ravelback.qc"));
  EXPECT_EQ(RunVerb({"decompile", "-q"}, {"-r", "-o", m_output.Path("tree"), m_vpk}), ExitSuccess) << m_err;
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("tree/models/props/cube/cube.smd")));
  EXPECT_EQ(m_err, "");
  EXPECT_EQ(RunVerb({"decompile"}, {"-o", m_output.Path("game"), "--game", m_game, "game:models/props/cube.mdl"}),
            ExitSuccess);
  EXPECT_THAT(m_err, AllOf(HasSubstr("Loaded model "), HasSubstr("pak01_dir.vpk:models/props/cube.mdl")));

  EXPECT_EQ(RunVerb({"decompile"}, {"-o", m_output.Path("no"), m_vpk + ":models/none.mdl"}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr(m_vpk + ":models/none.mdl: the archive has no such file"));
  EXPECT_EQ(RunVerb({"decompile"}, {"-o", m_output.Path("no"), "game:models/props/cube.mdl"}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("no game directory is known"));
  EXPECT_EQ(RunVerb({"decompile"}, {"-o", m_output.Path("no"), m_vpk}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("those below it were not looked into"));
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("no")));
}

TEST_F(ArchiveNames, VerifyTakesThem) {
  RunVerb({"verify"}, {m_vpk + ":models/props/cube.mdl"});
  EXPECT_THAT(m_out, testing::StartsWith(m_vpk + ":models/props/cube.mdl: differs: header: flags"))
      << "it was compared";
  EXPECT_EQ(RunVerb({"verify"}, {"-r", "--game", m_folder.Path("none"), "game:models"}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("gameinfo.txt"));
}

#ifdef TARNWICK_HAS_IMAGES
TEST_F(ArchiveNames, MaterialsComeWithTheSources) {
  EXPECT_EQ(RunVerb({"decompile"}, {"--json", "--materials", "--texture-format", "png", "-o", m_output.Path(),
                                    m_vpk + ":models/props/cube.mdl"}),
            ExitSuccess)
      << m_err;
  EXPECT_THAT(m_output.Files(), AllOf(Contains("materials/models/props/skin.vmt"),
                                      Contains("materials/models/props/skin.png"), testing::SizeIs(4)));
  EXPECT_EQ(nlohmann::json::parse(m_out)["files"].size(), 4u);
  EXPECT_EQ(RunVerb({"decompile"}, {"--materials", "--texture-format", "gif", m_vpk}), ExitUsage);
}

TEST_F(ArchiveNames, VtfTakesThem) {
  const std::string name = m_vpk + ":materials/models/props/skin.vtf";
  EXPECT_EQ(RunVerb({"vtf", "info"}, {"--json", name}), ExitSuccess) << m_err;
  EXPECT_EQ(nlohmann::json::parse(m_out)["file"], name);
  EXPECT_EQ(nlohmann::json::parse(m_out)["width"], 4);
  EXPECT_EQ(
      RunVerb({"vtf", "info"}, {"--game", m_game, "game:materials/none.vtf", "game:materials/models/props/skin.vtf"}),
      ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("game:materials/none.vtf: no place of the game has it"));
  EXPECT_THAT(m_out, HasSubstr("width: 4"));
  EXPECT_EQ(RunVerb({"vtf"}, {"-o", m_output.Path("x.png"), name}), ExitSuccess) << m_err;
  EXPECT_EQ(RunVerb({"vtf"}, {"-r", "-o", m_output.Path(), m_vpk + ":materials"}), ExitSuccess) << m_err;
  EXPECT_THAT(m_output.Files(), ElementsAre("models/props/skin.tga", "x.png"));
}
#endif

#ifndef _WIN32
TEST_F(ArchiveNames, ViewShowsACopyThatGoesWithTheViewer) {
  // Tells what it was given and what lies there while it runs.
  tests::WriteShellProgram(m_folder.Path("sdk/hlmv.exe"), "echo \"$3\" >" + m_folder.Path("said") +
                                                              "; ls \"$(dirname \"$3\")\" >>" + m_folder.Path("said"));
  EXPECT_EQ(RunVerb({"view"}, {"--sdk", m_folder.Path("sdk"), "--game", m_game, m_vpk + ":models/props/cube.mdl"}),
            ExitSuccess)
      << m_err;
  const std::string said = tests::ReadText(m_folder.Path("said"));
  const std::string path = said.substr(0, said.find('\n'));
  EXPECT_THAT(path, testing::EndsWith("/models/props/cube.mdl"));
  EXPECT_THAT(said, testing::EndsWith("cube.dx90.vtx\ncube.mdl\ncube.vvd\n"));
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(RunVerb({"view"}, {"--json", "--sdk", m_folder.Path("sdk"), "--game", m_game, "game:models/none.mdl"}),
            ExitFailure);
  EXPECT_THAT(nlohmann::json::parse(m_out)["error"].get<std::string>(), HasSubstr("no place of the game has it"));
}
#endif

}  // namespace
}  // namespace tarnwick::cli
