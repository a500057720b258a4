// The tool of these tests is a shell script.
#ifndef _WIN32

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "command_line.h"
#include "process/run.h"
#include "support/scratch_folder.h"
#include "tools/tool_file.h"

namespace tarnwick::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A game with a studiomdl that prints its script's text, and that writes the model that the script names on its last
/// line unless that line says otherwise.
class CompileVerb : public tests::VerbTest {
 protected:
  CompileVerb() {
    tests::WriteShellProgram(m_sdk + "/studiomdl.exe",
                             "printf 'args %s\\r\\n' \"$*\"\n"
                             "cat \"$3\"\n"
                             "grep -q nothing \"$3\" || { mkdir -p \"$2/models\"; echo x > \"$2/models/box.mdl\"; }\n"
                             "exit 7\n");
    tests::WriteText(m_game + "/gameinfo.txt", "");
  }

  std::string Script(const std::string& name, const std::string& text) {
    tests::WriteText(m_folder.Path(name), "$modelname box.mdl\n" + text);
    return m_folder.Path(name);
  }

  int Run(const std::vector<std::string>& arguments) {
    return RunVerb({"compile", "--sdk", m_sdk, "--game", m_game}, arguments);
  }

  using Json = nlohmann::json;
  /// What --json printed.
  std::vector<Json> Lines() const {
    std::vector<Json> lines;
    std::istringstream text(m_out);
    for (std::string line; std::getline(text, line);) lines.push_back(Json::parse(line, nullptr, false));
    return lines;
  }

  tests::ScratchFolder m_folder;
  std::string m_sdk = m_folder.Path("sdk bin");
  std::string m_game = m_folder.Path("my game");
};

TEST_F(CompileVerb, PrintsTheCommandLineAndTheToolsOwnLines) {
  const std::string qc = Script("a.qc", "all is well");
  EXPECT_EQ(Run({qc, "--perf", "--flip-triangles"}), ExitSuccess);
  const std::string switches = " -perf -f";
  EXPECT_EQ(m_out, m_sdk + "/studiomdl.exe -game \"" + m_game + "\" \"" + qc + "\"" + switches + "\nargs -game " +
                       m_game + " " + qc + switches + "\n$modelname box.mdl\nall is well\n");
  EXPECT_THAT(m_err, StartsWith("1 file, 1 file, 2 bytes in ")) << "what was asked for, and what was written";
}

TEST_F(CompileVerb, FailsOnAnErrorLineOrWithoutANewerModel) {
  EXPECT_EQ(Run({Script("a.qc", "ERROR: no bones\n")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("a.qc: Error: ERROR: no bones\n"));
  // The model of the first run is there, but the second does not write it.
  EXPECT_EQ(Run({Script("b.qc", "nothing\n")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("b.qc: Error: studiomdl wrote no " + m_game +
                               "/models/box.mdl; the file there is an older one\n"));
  EXPECT_EQ(Run({m_folder.Path("none.qc")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("none.qc: Error: there is no script " + m_folder.Path("none.qc") + "\n"));
  tests::WriteText(m_folder.Path("c.qc"), "all is well\n");
  EXPECT_EQ(Run({m_folder.Path("c.qc")}), ExitSuccess);
  EXPECT_THAT(m_err, HasSubstr("Warning: the script names no model"));
}

TEST_F(CompileVerb, CompilesAProjectFromAnotherFolder) {
  const std::string path = m_folder.Path("crate.sc");
  tests::WriteText(path,
                   "\"Model Compiler/Model File\" \"box.mdl\"\n\"Model Compiler/Reference SMD\" \"crate.smd\"\n"
                   "\"Model Compiler/Phy SMD Check\" \"1\"\n\"Model Compiler/Model Options/StudioMDLOptions\" \"8\"\n");
  tests::WriteText(m_folder.Path("crate.smd"), "");
  EXPECT_EQ(Run({"--materials", "props", "--flip-triangles", path}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out, HasSubstr('"' + m_folder.Path("crate.qc") + "\" -perf -f\n"));
  EXPECT_THAT(m_out, HasSubstr("$cdmaterials \"models/props\"\n"));
  EXPECT_THAT(m_out, HasSubstr("$collisionmodel \"" + m_folder.Path("crate.smd") + "\""));
}

TEST_F(CompileVerb, RunsSeveralFilesAndSumsUp) {
  EXPECT_EQ(Run({"--quiet", Script("a.qc", "WARNING: odd\n"), Script("b.qc", "fine\n")}), ExitSuccess);
  EXPECT_EQ(m_out, "");
  EXPECT_EQ(m_err, m_folder.Path("a.qc") + ": WARNING: odd\n") << "in the tool's own words";
  EXPECT_EQ(Run({"--json", Script("a.qc", "Error: bad\n"), Script("b.qc", "fine\n")}), ExitFailure);
  EXPECT_THAT(m_err, EndsWith(", 1 failed:\n  1 x Error: bad\n"));
  EXPECT_THAT(m_err, HasSubstr(m_folder.Path("b.qc") + " -> " + m_game + "/models/box.mdl\n"));
  const std::string model = m_game + "/models/box.mdl";
  const auto json = Lines();
  ASSERT_EQ(json.size(), 2u);
  const std::string a = m_folder.Path("a.qc"), command = m_sdk + "/studiomdl.exe -game \"" + m_game + "\" \"";
  EXPECT_EQ(json[0], (Json{{"input", a},
                           {"outcome", "failed"},
                           {"command", command + a + '"'},
                           {"script", a},
                           {"model", model},
                           {"written", true},
                           {"files", {model}},
                           {"errors", {"Error: bad"}},
                           {"warnings", Json::array()},
                           {"more_errors", 0},
                           {"more_warnings", 0}}));
  EXPECT_EQ(json[1]["outcome"], "ok");
}

TEST_F(CompileVerb, WhoReadsItsJsonGetsNothingElse) {
  const process::CapturedRun run = process::RunAndKeep(
      {tests::ProgramFile(), {"compile", "-q", "--json", "--sdk", m_sdk, "--game", m_game, Script("a.qc", "fine\n")}},
      {}, {});
  m_out = run.Output;
  ASSERT_EQ(Lines().size(), 1u) << run.Output;
  EXPECT_EQ(Lines()[0]["outcome"], "ok");
}

TEST_F(CompileVerb, CountsWhatItDoesNotPrintAndNamesAnUnknownModel) {
  std::string errors, warnings;
  for (int i = 0; i < 101; ++i) errors += "ERROR: e\n";
  for (int i = 0; i < 102; ++i) warnings += "WARNING: w\n";
  const std::string a = Script("a.qc", errors + warnings);
  EXPECT_EQ(Run({"-q", a}), ExitFailure);
  EXPECT_THAT(m_err, EndsWith(a + ": 1 more error\n" + a + ": 2 more warnings\n"));
  EXPECT_EQ(Run({"--json", a}), ExitFailure);
  ASSERT_EQ(Lines().size(), 1u);
  EXPECT_EQ(Lines()[0]["more_errors"], 1);
  EXPECT_EQ(Lines()[0]["more_warnings"], 2);
  tests::WriteText(m_folder.Path("b.qc"), "a script without a name or a line's end");
  EXPECT_EQ(Run({m_folder.Path("b.qc"), m_folder.Path("b.qc")}), ExitSuccess);
  EXPECT_THAT(m_err, HasSubstr(m_folder.Path("b.qc") + " -> unknown\n"));
  EXPECT_THAT(m_out, EndsWith("a line's end\n")) << "what is said next begins a line";
}

TEST_F(CompileVerb, UsesOurOwnToolForAMissingOneAndTellsAProjectThatCannotBeRead) {
  EXPECT_EQ(Run({m_folder.Path("none.sc")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("none.sc"));
  fs::remove(m_sdk + "/studiomdl.exe");
  EXPECT_EQ(Run({Script("a.qc", "$body box \"gone.smd\"\n")}), ExitFailure);
  EXPECT_THAT(m_err, AllOf(HasSubstr("studiomdl: our own"), HasSubstr("gone.smd")));
  EXPECT_EQ(Run({"--json", Script("a.qc", "$body box \"gone.smd\"\n"), m_folder.Path("none.sc")}), ExitFailure);
  ASSERT_EQ(Lines().size(), 2u);
  EXPECT_EQ(Lines()[0]["written"], false);
  EXPECT_EQ(Lines()[1]["files"], Json::array());
}

}  // namespace
}  // namespace tarnwick::cli

#endif
