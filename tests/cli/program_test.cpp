#include <gmock/gmock.h>

#include "command_line.h"

namespace tarnwick::cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using tests::RunCommand;

TEST(Program, ShowsWhatThereIsWhereAVerbIsMissingOrUnknown) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"fold"}, {"project", "fold"}}) {
    const auto result = RunCommand(words);
    EXPECT_EQ(result.ExitCode, ExitUsage);
    EXPECT_THAT(result.Err, HasSubstr("Subcommands:"));
    EXPECT_THAT(result.Err, EndsWith("Error: there is no \"fold\" here\n"));
  }
  EXPECT_EQ(RunCommand({}).ExitCode, ExitUsage);
  EXPECT_EQ(RunCommand({"--version"}).ExitCode, ExitSuccess);
}

TEST(Program, KeepsArgumentsInSquareBracketsWhole) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.sc");
  ASSERT_EQ(RunCommand({"project", "set", "--new", path, "Skin0/Skin Name", "[a,b]"}).ExitCode, ExitSuccess);
  EXPECT_EQ(RunCommand({"project", "get", path, "Skin0/Skin Name"}).Out, "[a,b]\n");
  EXPECT_THAT(RunCommand({"smd", "info", "[none]"}).Err, HasSubstr("[none]"));
  EXPECT_THAT(RunCommand({"smd", "replace", "[none]", "a", "b", "-y"}).Err, HasSubstr("Unable to read[none]"));
}

}  // namespace
}  // namespace tarnwick::cli
