#include <gmock/gmock.h>

#include "both_hosts.h"
#include "jobs/compile_models.h"
#include "support/shell_programs.h"

namespace tarnwick {
namespace {

TEST(ModelDoors, CompileTheSameModelsToTheSameFiles) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  tests::ScratchFolder folder;
  const std::string game = folder.Path("game");
  tests::WriteShellProgram(
      folder.Path("sdk/studiomdl.exe"),
      "cat \"$3\"\ngrep -q ERROR \"$3\" && exit 1\nmkdir -p \"$2/models\"\n"
      "echo 'WARNING: thin'\nfor e in mdl vvd dx90.vtx; do cp \"$3\" \"$2/models/box.$e\"; done\n");
  tests::WriteText(folder.Path("a.qc"), "$modelname box.mdl\n");
  tests::WriteText(folder.Path("b.qc"), "$modelname b.mdl\nERROR: no bones\n");
  tests::WriteText(folder.Path("c.sc"), "\"Model Compiler/Model File\" \"box.mdl\"\n");
  const jobs::CompileModels job{.Inputs = {folder.Path("a.qc"), folder.Path("b.qc"), folder.Path("c.sc")},
                                .SdkDirectory = folder.Path("sdk"),
                                .GameDirectory = game};
  tests::WriteText(game + "/gameinfo.txt", "");
  const tests::DoorRun console = tests::RunInConsole(job, game);
  tests::WriteText(game + "/gameinfo.txt", "");
  const tests::DoorRun window = tests::RunInWindow(job, game);
  EXPECT_EQ(console.Events, window.Events);
  EXPECT_EQ(console.Questions, window.Questions);
  EXPECT_EQ(console.Files, window.Files);
  const jobs::JobResult& result = std::get<jobs::Finished>(window.Events.back()).Result;
  EXPECT_EQ(result.Count(jobs::Verdict::Succeeded), 1u);
  EXPECT_EQ(result.Count(jobs::Verdict::Failed), 2u);
  EXPECT_EQ(result.Items.at(0).Files.size(), 3u);
  EXPECT_EQ(console.Files.count("models/box.vvd"), 1u);
}

}  // namespace
}  // namespace tarnwick
