#include "cli/completions_verb.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "cli/completion_scripts.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples =
    "Examples:\n"
    "  tarnwick-cli completions bash > ~/.local/share/bash-completion/completions/tarnwick-cli\n"
    "  tarnwick-cli completions fish > ~/.config/fish/completions/tarnwick-cli.fish";

}  // namespace

void AddCompletionsVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("completions", "Print a shell's script that completes this program's words");
  verb->footer(Examples);
  auto shell = std::make_shared<std::string>();
  verb->add_option("SHELL", *shell, "bash, zsh or fish")->required()->check(CLI::IsMember({"bash", "zsh", "fish"}));
  verb->callback([shell, &program, &invocation] {
    invocation.Run = [shell, &program, &invocation] {
      const std::vector<CompletedCommand> commands = CompletedCommands(program);
      invocation.Out << (*shell == "bash"  ? BashCompletion(commands)
                         : *shell == "zsh" ? ZshCompletion(commands)
                                           : FishCompletion(commands));
      return ExitSuccess;
    };
  });
}

}  // namespace tarnwick::cli
