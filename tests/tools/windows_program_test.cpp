// How a Windows program is run on another system: through Wine, or a clear word why not.
#ifndef _WIN32

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "support/scratch_folder.h"
#include "tools/probe_run.h"
#include "tools/program_start.h"
#include "tools/wine_posix.h"

namespace tarnwick::tools {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A folder with a 64-bit Windows program, in name only, and a stand-in for Wine that prints its arguments.
class StandInWine : public ::testing::Test {
 protected:
  StandInWine() {
    std::string head(0x88, '\0');
    head.replace(0, 2, "MZ");
    head[0x3C] = static_cast<char>(0x80);
    head.replace(0x80, 2, "PE");
    head.replace(0x84, 2, "\x64\x86");
    tests::WriteText(m_tool, head);
    tests::WriteShellProgram(m_wine, "printf '%s\\n' \"$WINEDEBUG\"\nprintf '[%s]\\n' \"$@\"\n");
  }

  tests::ScratchFolder m_folder;
  std::string m_tool = m_folder.Path("the tool.exe");
  std::string m_wine = m_folder.Path("my wine");
};

TEST_F(StandInWine, GetsTheProgramAndPathsInItsOwnForm) {
  ToolRunOptions options = QuietOptions();
  options.Start.WineProgram = m_wine;
  EXPECT_EQ(RunCommand({m_tool, {"-game", R"(/tmp/my game\)", "/nologo", R"(models\props/x)"}}, options).Text,
            "-all\n[" + m_tool + "]\n[-game]\n[Z:\\tmp\\my game\\]\n[/nologo]\n[models\\props/x]\n");
}

TEST_F(StandInWine, ThatIsMissingIsToldInOneMessage) {
  ToolRunOptions options = QuietOptions();
  options.Start.WineProgram = m_folder.Path("no wine");
  const ProbeRun run = RunCommand({m_tool}, options);
  ASSERT_TRUE(run.Outcome.Failure);
  EXPECT_EQ(run.Outcome.Failure->Text(), "CreateProcess failed with error 8: " + m_tool +
                                             " is a Windows program, and the Wine that is configured for it, " +
                                             m_folder.Path("no wine") + ", is not there or cannot be run.");
}

TEST_F(StandInWine, WithModulesForOneWidthOnlyNamesThePackageForTheOther) {
  const std::string wine = m_folder.Path("opt/bin/wine");
  fs::create_directories(m_folder.Path("opt/bin"));
  fs::create_directories(m_folder.Path("opt/lib/wine/x86_64-windows"));
  fs::copy_file(m_wine, wine);
  EXPECT_EQ(ChooseWine(ProgramKind::Windows64, "t.exe", wine).Program, wine);
  const WineChoice choice = ChooseWine(ProgramKind::Windows32, "t.exe", wine);
  EXPECT_EQ(choice.Program, "");
  EXPECT_THAT(choice.Problem, HasSubstr("t.exe is a 32-bit Windows program, and " + wine + " runs 64-bit"));
  EXPECT_THAT(choice.Problem, HasSubstr("wine32"));
  fs::create_directories(m_folder.Path("opt/lib/wine/i386-windows"));
  EXPECT_EQ(ChooseWine(ProgramKind::Windows32, "t.exe", wine).Program, wine);
}

#ifdef WINDOWS_PROBE
/// Runs of a real Windows program; skipped where there is no Wine.
class RealWine : public ::testing::Test {
 protected:
  void SetUp() override {
    // Not the user's own Windows folder, and one for all tests, since it takes its time to set up.
    setenv("WINEPREFIX", (fs::path(WINDOWS_PROBE).parent_path() / "wineprefix").c_str(), 1);
    if (ChooseWine(ProgramKind::Windows64, WINDOWS_PROBE, "").Program.empty()) GTEST_SKIP() << "no Wine here";
    Run({"exit", "0"});  // the first start sets the folder up, with words of Wine's own
  }
  static ProbeRun Run(const std::vector<std::string>& arguments, const ToolRunOptions& options = QuietOptions()) {
    return RunCommand({WINDOWS_PROBE, arguments}, options);
  }
};

TEST_F(RealWine, PassesArgumentsInputAndBothStreams) {
  EXPECT_EQ(Run({"arguments", "-game", R"(my game\)", "", R"(a"b)", "/tmp"}).Text,
            "[-game]\n[my game\\]\n[]\n[a\"b]\n[Z:\\tmp]\n");
  EXPECT_EQ(Run({"input"}).Text, "20 20 00 00 end\n");
  EXPECT_EQ(Run({"streams"}).Text, "out0 err0 out1 err1 out2 err2 ");
  EXPECT_EQ(Run({"exit", "3"}).Outcome.End->ExitCode, 3);
}

TEST_F(RealWine, StopsTheProgramAndWhatItStarted) {
  std::stop_source stop;
  ToolRunOptions options = QuietOptions();
  options.Stop = stop.get_token();
  std::string text;
  options.OnText = [&](std::string_view piece) {
    text += piece;
    // Both processes have printed their line.
    if (text.find("process ", text.find("process ") + 1) != std::string::npos) stop.request_stop();
  };
  const auto start = std::chrono::steady_clock::now();
  const ProbeRun run = Run({"parent", "60000"}, options);
  EXPECT_TRUE(run.Outcome.Stopped);
  EXPECT_FALSE(run.Outcome.OutputAbandoned);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(50));
}
#endif

}  // namespace
}  // namespace tarnwick::tools

#endif
