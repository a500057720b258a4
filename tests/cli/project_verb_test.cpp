#include <gmock/gmock.h>

#include <iostream>
#include <sstream>

#include "command_line.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using testing::HasSubstr;
using tests::ReadText;
using tests::RunCommand;
using tests::WriteText;

TEST(ProjectVerb, BuildsAProjectAndItsScript) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("crate.sc");
  EXPECT_EQ(RunCommand({"project", "set", path, "Model File", "a.mdl"}).ExitCode, ExitFailure);
  auto result = RunCommand({"project", "set", "--new", path, "Model File", "a.mdl", "Reference SMD",
                            folder.Path("crate.smd"), "Phy SMD Check", "1", "Model Options/Prop Type", "1",
                            "Animation0/Name", "spin", "Animation0/Command0", "fade \"1\""});
  EXPECT_EQ(result.ExitCode, ExitSuccess) << result.Err;
  EXPECT_EQ(RunCommand({"project", "get", path, "Animation0/Name", "Animation0/Command0"}).Out, "spin\nfade \"1\"\n");
  EXPECT_THAT(RunCommand({"project", "show", "--json", path}).Out, HasSubstr("\"Animation0/FPS\": \"30.00\""));
  result = RunCommand({"qc", "-m", "props", path});
  EXPECT_EQ(result.Out, folder.Path("crate.qc") + "\n");
  EXPECT_EQ(result.Err, "");
  EXPECT_THAT(ReadText(folder.Path("crate.qc")), HasSubstr("     fade \"1\"\n"));

  const std::string before = ReadText(path);
  result = RunCommand({"project", "set", path, "Model File", "b.mdl", "Animation7/Name", "x"});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_THAT(result.Err, HasSubstr(path));
  EXPECT_EQ(ReadText(path), before);
  EXPECT_EQ(RunCommand({"project", "set", path, "Model File"}).ExitCode, ExitUsage);
  EXPECT_EQ(RunCommand({"project", "remove", path, "Animation0"}).ExitCode, ExitSuccess);
  EXPECT_THAT(RunCommand({"qc", path}).Err, HasSubstr("No Sequences Specified"));
}

TEST(ProjectVerb, DoesNotSaveOverWhatItCouldNotLoad) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("old.sc");
  const std::string text = "\"Model Compiler/Model File\" \"a.mdl\"\n\n\"Model Compiler/Skin0/Skin Name\" \"s\"\n";
  WriteText(path, text);
  for (const std::vector<std::string>& change :
       {std::vector<std::string>{"set", path, "Model File", "b.mdl"}, {"remove", path, "Skin0"}}) {
    std::vector<std::string> words{"project"};
    words.insert(words.end(), change.begin(), change.end());
    EXPECT_EQ(RunCommand(words).ExitCode, ExitFailure);
    EXPECT_EQ(ReadText(path), text);
  }
  EXPECT_EQ(RunCommand({"project", "set", "--force", path, "Model File", "b.mdl"}).ExitCode, ExitSuccess);
  EXPECT_EQ(RunCommand({"project", "get", path, "Model File"}).Out, "b.mdl\n");
}

TEST(ProjectVerb, NamesOnlyKeysThatCanBeSet) {
  tests::ScratchFolder folder;
  std::istringstream keys(RunCommand({"project", "keys"}).Out);
  std::vector<std::string> words{"project", "set", "--new", folder.Path("a.sc")};
  for (std::string line; std::getline(keys, line);) {
    std::string key = line.substr(0, line.find(": "));
    for (size_t at = key.find('<'); at != std::string::npos; at = key.find('<')) key.replace(at, 3, "0");
    words.insert(words.end(), {key, "1"});
  }
  EXPECT_EQ(words.size(), 4u + 2 * 35);
  EXPECT_EQ(RunCommand(words).Err, "");
}

TEST(SmdVerb, ShowsFiguresAndReplaces) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.smd");
  WriteText(path, "nodes\n0 root -1\nend\ntriangles\nwood\nshort\n");
  auto result = RunCommand({"smd", "info", "--json", path});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_THAT(result.Out, HasSubstr(R"("materials":[{"name":"wood","faces":1}],"badLine":6})"));
  EXPECT_THAT(result.Err, HasSubstr("line 6"));
  result = RunCommand({"smd", "replace", path, "wood", "oak", "--yes"});
  EXPECT_EQ(result.Out, path + ": 1 replaced\n");
  EXPECT_THAT(ReadText(path), HasSubstr("\noak\n"));
}

/// What `smd replace` does with what the user answers to its question.
tests::CommandResult ReplaceWith(const std::string& path, const std::string& answer) {
  std::istringstream input(answer);
  std::streambuf* const console = std::cin.rdbuf(input.rdbuf());
  std::cin.clear();
  const auto result = RunCommand({"smd", "replace", path, "wood", "oak"});
  std::cin.rdbuf(console);
  std::cin.clear();
  return result;
}

TEST(SmdVerb, AsksBeforeItReplaces) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.smd");
  WriteText(path, "triangles\nwood\n");
  for (const char* answer : {"n\n", "\n", "", "maybe\n", "yn\n"}) {
    const auto result = ReplaceWith(path, answer);
    EXPECT_EQ(result.ExitCode, ExitFailure) << answer;
    EXPECT_EQ(result.Out, "");
    EXPECT_THAT(result.Err, testing::AllOf(testing::StartsWith("Replace \"wood\" with \"oak\" in "), HasSubstr(path),
                                           HasSubstr(" [y/N] "), HasSubstr("Nothing was changed\n")));
    EXPECT_EQ(ReadText(path), "triangles\nwood\n") << answer;
  }
  for (const char* answer : {"y\n", "Y\n", "yes\n", "y"}) {
    WriteText(path, "triangles\nwood\n");
    EXPECT_EQ(ReplaceWith(path, answer).ExitCode, ExitSuccess) << answer;
    EXPECT_EQ(ReadText(path), "triangles\noak\n") << answer;
  }
}

}  // namespace
}  // namespace tarnwick::cli
