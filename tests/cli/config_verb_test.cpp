#include "cli/config_verb.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "support/scratch_folder.h"
#ifdef TARNWICK_HAS_IMAGES
#include "support/tga_builder.h"
#endif

namespace tarnwick::cli {

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class ConfigVerb : public tests::VerbTest {
 protected:
  int Run(const std::vector<std::string>& arguments) {
    return RunVerb({"config", "--file", m_folder.Path("s.conf")}, arguments);
  }

  tests::ScratchFolder m_folder;
};

TEST_F(ConfigVerb, SetsGetsAndLists) {
  EXPECT_EQ(Run({"get", "surfaceprop"}), ExitSuccess);
  EXPECT_EQ(m_out, "metal\n");
  EXPECT_EQ(Run({"set", "tarnwick/gamedirectory", "/games/räv, 2"}), ExitSuccess);
  EXPECT_EQ(Run({"set", "TabSelect", "-1"}), ExitSuccess);
  EXPECT_EQ(Run({"get", "GameDirectory"}), ExitSuccess);
  EXPECT_EQ(m_out, "/games/räv, 2\n");
  EXPECT_EQ(Run({"list", "--stored"}), ExitSuccess);
  EXPECT_EQ(m_out, "Tarnwick/GameDirectory=/games/räv, 2\nTarnwick/TabSelect=-1\n");
  EXPECT_EQ(Run({"list"}), ExitSuccess);
  EXPECT_THAT(m_out, AllOf(HasSubstr("Tarnwick/Shader=VertexLitGeneric\n"), HasSubstr("Ravelback/CheckBoxSettings=1\n"),
                           Not(HasSubstr("OutputDirectory=\n"))));
  EXPECT_EQ(Run({"list", "--json", "--stored"}), ExitSuccess);
  EXPECT_EQ(nlohmann::json::parse(m_out),
            nlohmann::json::parse(
                R"([{"section": "Tarnwick", "name": "GameDirectory", "stored": true, "value": "/games/räv, 2"},)"
                R"( {"section": "Tarnwick", "name": "TabSelect", "stored": true, "value": -1}])"));
  EXPECT_EQ(Run({"list", "--json"}), ExitSuccess);
  EXPECT_THAT(nlohmann::json::parse(m_out),
              testing::Contains(nlohmann::json{
                  {"section", "Tarnwick"}, {"name", "Shader"}, {"stored", false}, {"value", "VertexLitGeneric"}}));
}

#ifndef _WIN32
TEST_F(ConfigVerb, WhatIsStoredIsWhatOtherVerbsWorkWith) {
  const std::string sdk = m_folder.Path("my sdk");
  const std::string settings = m_folder.Path("settings");
  const auto run = [&](const std::vector<std::string>& words) { return tests::RunCommandWith(settings, words); };
  for (const char* tool : {"studiomdl.exe", "vtf2tga.exe"}) tests::WriteShellProgram(sdk + "/" + tool, "exit 1\n");
  tests::WriteText(m_folder.Path("game/gameinfo.txt"), "");
  tests::WriteText(m_folder.Path("a.qc"), "$modelname a.mdl\n");
  tests::WriteText(m_folder.Path("a.vtf"), "VTF");
  ASSERT_EQ(run({"config", "set", "SDKDirectory", sdk}).ExitCode, ExitSuccess);
  ASSERT_EQ(run({"config", "set", "GameDirectory", m_folder.Path("game")}).ExitCode, ExitSuccess);
  tests::WriteShellProgram(sdk + "/hlmv.exe", "exit 0\n");
  EXPECT_EQ(run({"view", "a.mdl"}).Out,
            sdk + "/hlmv.exe -game \"" + m_folder.Path("game") + "\" \"" + m_folder.Path("game/models/a.mdl\"\n"));
  EXPECT_THAT(run({"compile", m_folder.Path("a.qc")}).Out,
              HasSubstr(sdk + "/studiomdl.exe -game \"" + m_folder.Path("game") + '"'));
#ifdef TARNWICK_HAS_IMAGES
  EXPECT_THAT(run({"vtf", "-v", m_folder.Path("a.vtf"), "-o", m_folder.Path("a.tga")}).Err,
              HasSubstr(sdk + "/vtf2tga.exe"));
  tests::WriteText(m_folder.Path("a.ppm"), "P6 4 4 255\n" + std::string(48, 'x'));
  EXPECT_EQ(run({"material", m_folder.Path("a.ppm")}).ExitCode, ExitSuccess) << "into the game that is stored";
  std::filesystem::remove_all(m_folder.Path("game/materialsrc"));
  ASSERT_EQ(run({"config", "set", "Uncommon Image Formats", "0"}).ExitCode, ExitSuccess);
  EXPECT_THAT(run({"material", m_folder.Path("a.ppm")}).Err, HasSubstr("are not read, as the settings say"));
#endif
}
#endif

#ifdef __linux__
TEST_F(ConfigVerb, WindowsToolsRunUnderTheWineThatIsStoredOrNamed) {
  const std::string settings = m_folder.Path("settings");
  const std::string sdk = m_folder.Path("sdk");
  const std::string program =
      std::string("MZ") + std::string(58, '\0') + "\x40" + std::string(3, '\0') + "PE" + std::string(300, '\0');
  for (const char* tool : {"studiomdl.exe", "vtf2tga.exe", "vtex.exe"}) tests::WriteText(sdk + "/" + tool, program);
  for (const char* name : {"stored", "named"}) {
    tests::WriteShellProgram(m_folder.Path(name), std::string("echo \"") + name + " runs $1\"\n");
  }
  tests::WriteText(m_folder.Path("game/gameinfo.txt"), "");
  tests::WriteText(m_folder.Path("a.qc"), "$modelname a.mdl\n");
  tests::WriteText(m_folder.Path("a.vtf"), "VTF");
  const auto ran = [&](std::vector<std::string> words) {
    words.insert(words.end(), {"--sdk", sdk});
    const auto result = tests::RunCommandWith(settings, words);
    return result.Out + result.Err;
  };
  ASSERT_EQ(tests::RunCommandWith(settings, {"config", "set", "Wine Program", m_folder.Path("stored")}).ExitCode,
            ExitSuccess);
  const std::vector<std::string> compile{"compile", m_folder.Path("a.qc"), "--game", m_folder.Path("game")};
  EXPECT_THAT(ran(compile), HasSubstr("stored runs " + sdk + "/studiomdl.exe\n"));
  std::vector<std::string> named = compile;
  named.insert(named.end(), {"--wine", m_folder.Path("named")});
  EXPECT_THAT(ran(named), HasSubstr("named runs " + sdk + "/studiomdl.exe\n"));
#ifdef TARNWICK_HAS_IMAGES
  EXPECT_THAT(ran({"vtf", "-v", m_folder.Path("a.vtf"), "-o", m_folder.Path("a.tga")}),
              HasSubstr("stored runs " + sdk + "/vtf2tga.exe\n"));
  tests::WriteText(m_folder.Path("a.tga"), tests::TgaOf({1, 1, {{1, 2, 3, 255}}}));
  EXPECT_THAT(ran({"material", m_folder.Path("a.tga"), "-d", "props", "--game", m_folder.Path("game")}),
              HasSubstr("stored runs " + sdk + "/vtex.exe\n"));
#endif
}
#endif

TEST_F(ConfigVerb, RefusesWhatIsNoSettingOrNoNumber) {
  EXPECT_EQ(Run({"set", "TabSelect", "2nd"}), ExitUsage);
  EXPECT_THAT(m_err, HasSubstr("Tarnwick/TabSelect is a whole number, not \"2nd\""));
  EXPECT_EQ(Run({"get", "Nothing"}), ExitUsage);
  EXPECT_THAT(m_err, HasSubstr("there is no setting Nothing"));
  EXPECT_EQ(Run({"set", "TabSelect"}), ExitUsage);
  EXPECT_TRUE(m_folder.Files().empty());
  tests::WriteText(m_folder.Path("s.conf") + "/in the way", "");
  EXPECT_EQ(Run({"set", "TabSelect", "2"}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("cannot be saved"));
}

}  // namespace

}  // namespace tarnwick::cli
