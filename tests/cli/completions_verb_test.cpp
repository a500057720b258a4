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
  EXPECT_EQ(Completed(script, "tarnwick-cli decompile --texture-format p"), "png");
  EXPECT_EQ(Completed(script, "tarnwick-cli completions \"\""), "bash zsh fish");
}
#endif

TEST(CompletionsVerb, OtherShellsGetTheWordsWithTheirDescriptions) {
  const std::string zsh = RunCommand({"completions", "zsh"}).Out;
  EXPECT_THAT(zsh, HasSubstr("#compdef tarnwick-cli\n"));
  EXPECT_THAT(zsh, HasSubstr("'replace:Replace a name by another throughout SMD files, in place'"));
  EXPECT_THAT(zsh, HasSubstr("'smd replace') command='smd replace' ;;\n"));
  EXPECT_THAT(zsh, HasSubstr("    '')\n      verbs=( 'decompile:Turn "));
  EXPECT_THAT(zsh, HasSubstr("      valued=( '-o' '--output' '--texture-format' '--game' '-j' '--jobs') ;;\n"))
      << "flags take no value";
  EXPECT_THAT(zsh, HasSubstr("    'decompile --texture-format') compadd -- tga png; return ;;\n"));
  // A colon in a description would part it once more; an option's stands behind its word.
  EXPECT_THAT(zsh, HasSubstr("'--texture-format:The format of these images, tga or png'"));

  const std::string fish = RunCommand({"completions", "fish"}).Out;
  const std::string start = "\ncomplete -c tarnwick-cli -n ";
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_seen_subcommand_from decompile' -l texture-format -x -a 'tga png' -d "));
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_use_subcommand' -f -a 'decompile' -d 'Turn "));
  EXPECT_THAT(fish, HasSubstr("'Compile model projects and QC scripts with the SDK\\'s studiomdl'"));
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_seen_subcommand_from decompile' -l output -r -d "));
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_seen_subcommand_from decompile' -s q -d "));
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_seen_subcommand_from smd; and not __fish_seen_subcommand_from info; "
                                      "and not __fish_seen_subcommand_from replace' -f -a 'info' -d "));
  EXPECT_THAT(fish, HasSubstr(start + "'__fish_seen_subcommand_from replace; and __fish_seen_subcommand_from smd' "
                                      "-l yes -d "));
  EXPECT_EQ(RunCommand({"completions", "powershell"}).ExitCode, ExitUsage);
}

}  // namespace
}  // namespace tarnwick::cli
