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

/// As a file on a full disk: nothing can be written.
class FullDisk : public std::streambuf {
 protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
};

TEST(Program, FailsWhereItsOutputCannotBeWritten) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("a.smd"), "nodes\n0 root -1\nend\n");
  const std::string project = folder.Path("a.sc");
  tests::RunCommand({"project", "set", "--new", project, "Model File", "a.mdl"});
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--version"},
                                                {"--help"},
                                                {"decompile", "--help"},
                                                {"smd", "info", folder.Path("a.smd")},
                                                {"project", "keys"},
                                                {"project", "show", project},
                                                {"project", "get", "--json", project, "Model File"}}) {
    std::vector<const char*> pointers{"tarnwick-cli"};
    for (const std::string& word : words) pointers.push_back(word.c_str());
    FullDisk disk;
    std::ostream out(&disk);
    std::ostringstream err;
    EXPECT_EQ(RunProgram(static_cast<int>(pointers.size()), pointers.data(), out, err), ExitFailure) << words.back();
    EXPECT_THAT(err.str(), HasSubstr("Error: the output could not be written")) << words.back();
  }
}

}  // namespace
}  // namespace tarnwick::cli
