#include <gmock/gmock.h>

#include "both_hosts.h"
#include "jobs/decompile_tree.h"
#include "support/model_builder.h"

namespace tarnwick {
namespace {

TEST(DecompileDoors, TellTheSameAndWriteTheSame) {
  tests::ScratchFolder folder;
  for (const char* name : {"a", "b", "c"}) tests::ModelBuilder{}.Write(folder.Path("models"), name);
  std::filesystem::remove(folder.Path("models/b.vvd"));
  const std::string out = folder.Path("out");
  const jobs::DecompileTree job{.Inputs = {folder.Path("models"), folder.Path("none.mdl")}, .OutputDirectory = out};
  const tests::DoorRun console = tests::RunInConsole(job, out);
  const tests::DoorRun window = tests::RunInWindow(job, out);
  EXPECT_EQ(console.Events, window.Events);
  EXPECT_EQ(console.Files, window.Files);
  EXPECT_TRUE(console == window);
  ASSERT_TRUE(std::holds_alternative<jobs::Finished>(window.Events.back()));
  const jobs::JobResult& result = std::get<jobs::Finished>(window.Events.back()).Result;
  EXPECT_EQ(result.Count(jobs::Verdict::Succeeded), 2u);
  EXPECT_EQ(result.Count(jobs::Verdict::Failed), 2u);
  EXPECT_EQ(console.Files.size(), 5u) << "two of each model, the script alone of the one without vertices";
}

TEST(DecompileDoors, TellTheSameOfASingleModelThatFails) {
  tests::ScratchFolder folder;
  const std::string model = tests::ModelBuilder{}.Write(folder.Path("models"));
  std::filesystem::remove(folder.Path("models/cube.dx90.vtx"));
  std::filesystem::create_directory(folder.Path("out"));
  const jobs::DecompileTree job{.Inputs = {model}, .OutputDirectory = folder.Path("out"), .Options = 0};
  const tests::DoorRun console = tests::RunInConsole(job, folder.Path("out"));
  std::filesystem::create_directory(folder.Path("out"));
  EXPECT_TRUE(console == tests::RunInWindow(job, folder.Path("out")));
  EXPECT_FALSE(std::get<jobs::Finished>(console.Events.back()).Result.Succeeded());
}

}  // namespace
}  // namespace tarnwick
