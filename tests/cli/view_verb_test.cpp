#include <gmock/gmock.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "core/program_directory.h"
#include "process/run.h"
#include "support/archive_builder.h"

namespace tarnwick::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(ViewVerb, NamesTheViewerThatDidNotStartAndWhyOnBothOutputs) {
  const ScratchFolder folder;
  std::filesystem::create_directories(folder.Path("game/models"));
  WriteText(folder.Path("game/models/box.mdl"), "");
  WriteText(folder.Path("sdk/hlmv.exe"), "");
  std::filesystem::permissions(folder.Path("sdk/hlmv.exe"), std::filesystem::perms::owner_read);
  const CommandResult result =
      RunCommand({"view", "--json", "--sdk", folder.Path("sdk"), "--game", folder.Path("game"), "box.mdl"});
  EXPECT_EQ(result.ExitCode, 1);
  const std::string told = "Error starting " + folder.Path("sdk");
  EXPECT_THAT(result.Err, AllOf(StartsWith(told), HasSubstr(": ")));
  EXPECT_THAT(nlohmann::json::parse(result.Out)["error"].get<std::string>(), AllOf(StartsWith(told), HasSubstr(": ")));
}

#ifndef _WIN32
/// The program as it is installed, in a folder of its own.
class InstalledProgram : public testing::Test {
 protected:
  InstalledProgram() {
    std::filesystem::create_directories(m_folder.Path("bin/sdk"));
    std::filesystem::copy_file(core::ProgramDirectory() + "/tarnwick-cli", m_folder.Path("bin/tarnwick-cli"));
    WriteText(m_folder.Path("game/models/box.mdl"), "");
  }
  process::CapturedRun View(const std::string& sdk, const std::string& model) const {
    return process::RunAndKeep({m_folder.Path("bin/tarnwick-cli"),
                                {"view", "--json", "--sdk", m_folder.Path(sdk), "--game", m_folder.Path("game"),
                                 "--wine", m_folder.Path("no wine"), model}},
                               {}, {});
  }

  ScratchFolder m_folder;
};

TEST_F(InstalledProgram, ShowsModelsInItsOwnViewerWhereNoOtherCanRun) {
  const std::string own = m_folder.Path("bin/sdk/hlmv.exe");
  EXPECT_THAT(View("none", "box.mdl").Output, HasSubstr("\"outcome\":\"failed\"")) << "there is neither";
  // Whoever reads the pipe waits until the viewer has said what it was started with.
  const std::string pipe = m_folder.Path("said");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  WriteShellProgram(own, "echo \"$3\" >" + pipe);
  WriteText(m_folder.Path("windows/hlmv.exe"),
            std::string("MZ") + std::string(58, '\0') + "\x40" + std::string(3, '\0') + "PE" + std::string(300, '\0'));
  const std::string model = m_folder.Path("game/models/box.mdl");
  const std::string archive = m_folder.Path("pak_dir.vpk") + ":models/box.mdl";
  WriteText(m_folder.Path("pak_dir.vpk"),
            VpkBuilder{.Files = {{.Name = "models/box.mdl", .Bytes = "x"}}}.Build().Directory);
  for (const auto& [sdk, named, shown] : std::vector<std::array<std::string, 3>>{
           {"none", "box.mdl", model}, {"windows", model, model}, {"none", archive, archive}}) {
    const process::CapturedRun run = View(sdk, named);
    const auto json = nlohmann::json::parse(run.Output, nullptr, false);
    ASSERT_TRUE(json.is_object()) << run.Output;
    ASSERT_EQ(json.value("outcome", ""), "ok") << run.Output;
    EXPECT_EQ(json.value("program", ""), own);
    EXPECT_EQ(ReadText(pipe), shown + "\n");
  }
  for (const std::string& missing : {m_folder.Path("none.mdl"), m_folder.Path("none_dir.vpk") + ":models/box.mdl"}) {
    const process::CapturedRun run = View("none", missing);
    EXPECT_THAT(run.Output, AllOf(HasSubstr("\"outcome\":\"failed\""),
                                  testing::EndsWith("Error: there is no model " + missing + "\n")));
  }
}

TEST_F(InstalledProgram, SaysWhatToDoAboutAViewerThatIsMissing) {
  EXPECT_THAT(View("none", "box.mdl").Output, HasSubstr("\nName the folder of the SDK's tools with --sdk"));
  WriteText(m_folder.Path("broken/hlmv.exe"), "no program");
  EXPECT_THAT(View("broken", "box.mdl").Output, testing::Not(HasSubstr("--sdk"))) << "it is there";
}

TEST_F(InstalledProgram, WhoReadsItsJsonOfACopyGetsNothingElse) {
  VpkBuilder vpk{.Files = {{.Name = "models/box.mdl", .Bytes = "x"}}};
  WriteText(m_folder.Path("pak_dir.vpk"), vpk.Build().Directory);
  WriteShellProgram(m_folder.Path("sdk/hlmv.exe"), "echo loading\n");
  const process::CapturedRun run = View("sdk", m_folder.Path("pak_dir.vpk") + ":models/box.mdl");
  EXPECT_EQ(nlohmann::json::parse(run.Output, nullptr, false).value("outcome", ""), "ok") << run.Output;
}

TEST(ViewVerb, TellsWhatItStartsAndWhatTheViewerWillNotFind) {
  const ScratchFolder folder;
  WriteShellProgram(folder.Path("sdk/hlmv.exe"), "exit 0\n");
  WriteText(folder.Path("game/models/box.mdl"), "");
  const std::string program = folder.Path("sdk/hlmv.exe"), game = folder.Path("game");
  const auto view = [&](std::vector<std::string> words) {
    words.insert(words.begin(), {"view", "--sdk", folder.Path("sdk")});
    return RunCommand(words);
  };
  const CommandResult plain = view({"--game", game, "box.mdl"});
  EXPECT_EQ(plain.ExitCode, 0);
  EXPECT_EQ(plain.Out, program + " -game \"" + game + "\" \"" + game + "/models/box.mdl\"\n");
  EXPECT_EQ(plain.Err, "");
  EXPECT_EQ(nlohmann::json::parse(view({"--json", "--game", game, "box.mdl"}).Out),
            (nlohmann::json{{"model", "box.mdl"},
                            {"outcome", "ok"},
                            {"program", program},
                            {"parameters", "-game \"" + game + "\" \"" + game + "/models/box.mdl\""},
                            {"arguments", {"-game", game, game + "/models/box.mdl"}},
                            {"warnings", nlohmann::json::array()}}));
  EXPECT_EQ(view({"--game", game, "none.mdl"}).Err, "Warning: there is no model " + game + "/models/none.mdl\n");
  EXPECT_EQ(view({"box.mdl"}).Err, "Warning: no game directory is set\n");
}

#ifdef TARNWICK_HAS_IMAGES
TEST_F(InstalledProgram, SaysThatItsOwnToolIsMissing) {
  const process::CapturedRun run =
      process::RunAndKeep({m_folder.Path("bin/tarnwick-cli"), {"vtf", "info", m_folder.Path("a.vtf")}}, {}, {});
  EXPECT_THAT(run.Output, HasSubstr("vtf2tga.exe is not in " + m_folder.Path("bin") + "/sdk\n"));
}
#endif
#endif

}  // namespace

}  // namespace tarnwick::tests
