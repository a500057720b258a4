// The tool of these tests is a shell script.
#ifndef _WIN32

#include "jobs/compile_models.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/recording_host.h"
#include "support/scratch_folder.h"

namespace tarnwick::jobs {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

/// A game, and a studiomdl that is the shell script `m_tool`: $2 is the game, $3 the script.
class CompileModelsJob : public testing::Test {
 protected:
  CompileModelsJob() {
    m_job.SdkDirectory = m_folder.Path("sdk");
    m_job.GameDirectory = m_folder.Path("game");
    tests::WriteText(m_folder.Path("game/gameinfo.txt"), "");
    tests::WriteText(m_folder.Path("a.qc"), "$modelname \"props\\Box.mdl\"\n");
    m_job.Inputs = {m_folder.Path("a.qc")};
  }

  void Tool(const std::string& script) { tests::WriteShellProgram(m_folder.Path("sdk/studiomdl.exe"), script); }
  /// Has the tool write the model's files that are named by their endings, with the model's name in lower case.
  static std::string Writing(const std::string& endings) {
    return "mkdir -p \"$2/models/props\"\nfor e in " + endings + "; do echo x >\"$2/models/props/box.$e\"; done\n";
  }

  ItemResult RunOne() {
    m_host.Events.clear();
    const JobResult result = jobs::Run(m_job, m_host, m_stop.get_token());
    EXPECT_EQ(result.Items.size(), 1u);
    return result.Items.at(0);
  }

  std::vector<std::string> Names(const ItemResult& result) {
    std::vector<std::string> names;
    for (const core::WrittenFile& file : result.Files) names.push_back(fs::path(file.Path).filename());
    return names;
  }

  tests::ScratchFolder m_folder;
  CompileModels m_job;
  tests::RecordingHost m_host;
  std::stop_source m_stop;
};

TEST_F(CompileModelsJob, NamesTheFilesThatTheRunWroteAndNoOlderOnes) {
  tests::WriteText(m_folder.Path("game/models/props/box.phy"), "older");
  Tool(Writing("mdl vvd dx90.vtx") + "exit 7\n");
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Succeeded) << "such tools end with any code";
  EXPECT_THAT(Names(result), ElementsAre("box.mdl", "box.vvd", "box.dx90.vtx"));
  EXPECT_EQ(result.Target, m_folder.Path("game/models/props/Box.mdl"));
  EXPECT_EQ(result.Bytes(), 6u);
  EXPECT_THAT(result.CommandLine, HasSubstr("studiomdl.exe -game "));
  EXPECT_EQ(m_host.All<Line>().front().Text, result.CommandLine + "\r\n");
}

TEST_F(CompileModelsJob, FailsWhereTheModelIsTheOldOne) {
  Tool(Writing("mdl"));
  EXPECT_TRUE(RunOne().Succeeded());
  Tool("echo all is well\n");
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Failed);
  EXPECT_THAT(result.Files, testing::IsEmpty());
  EXPECT_THAT(result.First(core::Severity::Error)->Text, HasSubstr("the file there is an older one"));
  Tool("echo 'ERROR: no bones'\n");
  EXPECT_EQ(RunOne().Count(core::Severity::Error), 1u) << "the tool has said why";
}

TEST_F(CompileModelsJob, AnErrorLineFailsAModelThatWasWritten) {
  Tool(Writing("mdl") + "printf 'WARNING: thin\\nERROR: gone'\n");
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Failed);
  EXPECT_EQ(result.First(core::Severity::Error)->Text, "ERROR: gone") << "a line without an end counts too";
  EXPECT_EQ(result.First(core::Severity::Warning)->Text, "WARNING: thin");
  EXPECT_EQ(result.First(core::Severity::Error)->Kind, core::TroubleKind::Tool);
  EXPECT_THAT(Names(result), ElementsAre("box.mdl"));
}

TEST_F(CompileModelsJob, KeepsAHundredOfAToolsErrorsAndCountsTheRest) {
  Tool("for i in $(seq 250); do echo \"ERROR: $i\"; done\nfor i in $(seq 101); do echo \"WARNING: $i\"; done\n");
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Count(core::Severity::Error), 250u);
  EXPECT_EQ(result.MoreErrors, 150u);
  EXPECT_EQ(result.Count(core::Severity::Warning), 101u);
  EXPECT_EQ(result.MoreWarnings, 1u);
  EXPECT_EQ(result.Troubles.size(), 200u);
  EXPECT_EQ(result.Troubles.at(99).Text, "ERROR: 100");
  EXPECT_EQ(m_host.All<Line>().size(), 352u) << "each line is told all the same";
}

TEST_F(CompileModelsJob, WarnsBeforeTheRunAndOfAScriptThatNamesNoModel) {
  Tool("echo compiled\n");
  fs::remove(m_folder.Path("game/gameinfo.txt"));
  tests::WriteText(m_folder.Path("a.qc"), "// nothing\n");
  m_job.Warnings = {"a mesh is not there"};
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Succeeded);
  ASSERT_EQ(result.Troubles.size(), 3u);
  EXPECT_EQ(result.Troubles[0].Text, "a mesh is not there");
  EXPECT_THAT(result.Troubles[1].Text, HasSubstr("gameinfo.txt"));
  EXPECT_THAT(result.Troubles[2].Text, HasSubstr("names no model"));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("Warning: a mesh is not there\r\nWarning: there is no gameinfo"));
  EXPECT_THAT(result.Shown, HasSubstr("compiled\n\r\nWarning: a mesh is not there\r\n")) << "for a page";
  m_job.Inputs = {m_folder.Path("none.qc")};
  EXPECT_EQ(RunOne().First(core::Severity::Error)->Text, "there is no script " + m_folder.Path("none.qc"));
}

TEST_F(CompileModelsJob, WritesTheScriptOfAProjectWithItsSwitches) {
  Tool("cat \"$3\"\necho \"$*\"\n" + Writing("mdl"));
  tests::WriteText(m_folder.Path("crate.SC"),
                   "\"Model Compiler/Model File\" \"props/box.mdl\"\n\"Model Compiler/Reference SMD\" \"crate.smd\"\n"
                   "\"Model Compiler/Phy SMD Check\" \"1\"\n\"Model Compiler/Model Options/StudioMDLOptions\" \"8\"\n");
  m_job.Inputs = {m_folder.Path("crate.SC")};
  m_job.Materials = "crates";
  m_job.Switches = 1;
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Succeeded);
  EXPECT_EQ(result.Source, m_folder.Path("crate.qc"));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("crate.smd is not there"));
  EXPECT_THAT(m_host.Text(LineSource::Tool), HasSubstr("$cdmaterials \"models/crates\""));
  EXPECT_THAT(m_host.Text(LineSource::Tool), HasSubstr("crate.qc -fullcollide -perf\n"));
  tests::WriteText(m_folder.Path("crate.SC"), "\"Model Compiler/Model File\" \"props/box.mdl\"\n");
  const ItemResult failed = RunOne();
  EXPECT_EQ(failed.Judged, Verdict::Failed);
  EXPECT_EQ(failed.CommandLine, "") << "nothing was run";
  EXPECT_EQ(failed.Count(core::Severity::Error), 1u) << "the reason, once";
}

TEST_F(CompileModelsJob, TellsACrashAndAToolThatCannotBeRun) {
  Tool(Writing("mdl") + "kill -SEGV $$\n");
  EXPECT_THAT(RunOne().First(core::Severity::Error)->Text, HasSubstr("studiomdl crashed"));
  fs::permissions(m_folder.Path("sdk/studiomdl.exe"), fs::perms::owner_read);
  const ItemResult result = RunOne();
  EXPECT_EQ(result.Judged, Verdict::Failed);
  EXPECT_THAT(result.First(core::Severity::Error)->Caption, testing::Not(testing::IsEmpty())) << "a box";
  fs::remove(m_folder.Path("sdk/studiomdl.exe"));
  m_host.Events.clear();
  const JobResult own = jobs::Run(m_job, m_host, m_stop.get_token());
  EXPECT_FALSE(ObstacleOf(m_job)) << "our own tool stands in";
  EXPECT_THAT(own.Items.at(0).CommandLine, HasSubstr("/sdk/studiomdl.exe"));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("studiomdl: our own"));
}

TEST_F(CompileModelsJob, IsStoppedWithItsTool) {
  Tool("echo begun\nsleep 60 & wait\n" + Writing("mdl"));
  m_host.OnEvent = [this](const Event& event) {
    const Line* line = std::get_if<Line>(&event);
    if (line != nullptr && line->Text == "begun\n") m_stop.request_stop();
  };
  m_job.Inputs.push_back(m_job.Inputs[0]);
  const JobResult result = jobs::Run(m_job, m_host, m_stop.get_token());
  EXPECT_EQ(result.Items.at(0).Judged, Verdict::Stopped);
  EXPECT_EQ(result.Items.at(1).Judged, Verdict::NotBegun);
  EXPECT_FALSE(fs::exists(m_folder.Path("game/models/props/box.mdl")));
}

}  // namespace
}  // namespace tarnwick::jobs

#endif
