#include "sdk/studiomdl_program.h"

#include <gmock/gmock.h>

#include "core/paths.h"
#include "support/scratch_folder.h"
#include "tool_run.h"
#include "tools/output_lines.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::sdk;
using namespace tarnwick::tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class StudiomdlProgram : public testing::Test {
 protected:
  StudiomdlProgram() {
    WriteText(m_folder.Path("game/gameinfo.txt"), "");
    WriteText(m_folder.Path("game/modelsrc/tri.smd"),
              "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\nskin\n"
              "0 0 0 0 0 0 1 0 0\n0 1 0 0 0 0 1 1 0\n0 0 1 0 0 0 1 0 1\nend\n");
    Script("$body b \"tri.smd\"\n$hboxset \"hits\"\n$hbox 0 \"root\" 0 0 0 1 1 1\n$sequence idle \"tri.smd\"\n");
  }
  void Script(const std::string& statements) {
    WriteText(m_folder.Path("game/modelsrc/x.qc"), "$modelname \"props/x.mdl\"\n" + statements);
  }
  ToolRun Run(std::vector<std::string> arguments) {
    arguments.push_back(m_folder.Path("game/modelsrc/x.qc"));
    return CallTool(Studiomdl, arguments);
  }

  ScratchFolder m_folder;
};

TEST_F(StudiomdlProgram, CompilesAScriptAndTellsNothingThatLooksWrong) {
  const ToolRun run = Run({"-game", m_folder.Path("game"), "-nop4", "-perf"});
  EXPECT_EQ(run.Code, ToolSuccess) << run.Err;
  EXPECT_THAT(run.Out,
              AllOf(StartsWith("Working on \"x.qc\"\n-perf has no meaning here"), HasSubstr("Completed \"x.qc\"")));
  EXPECT_TRUE(core::FileExists(m_folder.Path("game/models/props/x.mdl")));
  for (std::string_view rest = run.Out; !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
    EXPECT_EQ(tools::ClassifyLine(rest.substr(0, rest.find('\n'))), tools::LineKind::Plain) << rest;
  }
}

TEST_F(StudiomdlProgram, PrintsPartsOfTheModelAndIsQuietElse) {
  const ToolRun run = Run({"-quiet", "-printbones", "-definebone", "-h"});  // the game above the script
  EXPECT_EQ(run.Code, ToolSuccess) << run.Err;
  EXPECT_THAT(run.Out, AllOf(StartsWith("bone 0: \"root\" parent -1"), HasSubstr("$definebone \"root\" \"\""),
                             HasSubstr("$hboxset \"hits\"\n$hbox 0 \"root\"")));
}

TEST_F(StudiomdlProgram, TellsErrorsByTheirPlaceAndWritesNothing) {
  Script("$body b \"nix.smd\"\n");
  const ToolRun run = Run({});
  EXPECT_EQ(run.Code, ToolFailure);
  EXPECT_THAT(run.Err, AllOf(HasSubstr("x.qc:2:"), HasSubstr("nix.smd"), HasSubstr("ERROR: Aborted")));
  EXPECT_EQ(tools::ClassifyLine(run.Err.substr(0, run.Err.find('\n'))), tools::LineKind::Error);
  EXPECT_THAT(run.Out, Not(HasSubstr("Completed")));
  EXPECT_FALSE(core::FileExists(m_folder.Path("game/models/props/x.mdl")));
}

TEST_F(StudiomdlProgram, NeedsAGame) {
  std::filesystem::remove(m_folder.Path("game/gameinfo.txt"));
  const ToolRun run = Run({});
  EXPECT_EQ(run.Code, ToolWrongUsage);
  EXPECT_THAT(run.Err, HasSubstr("no game directory"));
}

}  // namespace
