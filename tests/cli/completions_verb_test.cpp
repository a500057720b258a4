#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <string>

#include "command_line.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using testing::HasSubstr;
using tests::RunCommand;
using tests::WriteText;

#ifndef _WIN32
// What bash offers behind `words`, the last of which is the one being typed.
std::string Completed(const std::string& script, const std::string& words) {
  const std::string command = "bash -c 'source \"" + script + "\"; COMP_WORDS=(" + words +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tarnwick_cli; echo -n \"${COMPREPLY[*]}\"'";
  FILE* shell = popen(command.c_str(), "r");
  if (shell == nullptr) return "no shell";
  std::array<char, 4096> text{};
  const size_t size = fread(text.data(), 1, text.size(), shell);
  return pclose(shell) == 0 ? std::string(text.data(), size) : "the shell failed";
}

TEST(CompletionsVerb, BashCompletesVerbsOptionsAndVerbsBelowVerbs) {
  const tests::ScratchFolder folder;
  const std::string script = folder.Path("tarnwick-cli");
  WriteText(script, RunCommand({"completions", "bash"}).Out);
  EXPECT_EQ(Completed(script, "tarnwick-cli dec"), "decompile");
  EXPECT_EQ(Completed(script, "tarnwick-cli smd re"), "replace");
  EXPECT_EQ(Completed(script, "tarnwick-cli decompile a.mdl --outp"), "--output");
  EXPECT_EQ(Completed(script, "tarnwick-cli decompile --output --pl"), "") << "the value of an option";
  EXPECT_EQ(Completed(script, "tarnwick-cli decompile a"), "") << "bash's own file names";
}
#endif

TEST(CompletionsVerb, OtherShellsGetTheWordsWithTheirDescriptions) {
  const std::string zsh = RunCommand({"completions", "zsh"}).Out;
  EXPECT_THAT(zsh, HasSubstr("#compdef tarnwick-cli\n"));
  EXPECT_THAT(zsh, HasSubstr("'replace:Replace a name by another throughout SMD files, in place'"));
  EXPECT_THAT(RunCommand({"completions", "fish"}).Out,
              HasSubstr("complete -c tarnwick-cli -n '__fish_seen_subcommand_from decompile' -l output -r -d "));
  EXPECT_EQ(RunCommand({"completions", "powershell"}).ExitCode, ExitUsage);
}

}  // namespace
}  // namespace tarnwick::cli
