#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarnwick::cli {

/// One word that may stand behind a command: a verb under it or an option.
struct CompletedWord {
  std::string Text;                  // with its dashes
  std::string Description;           // one line
  bool TakesValue = false;           // an option that wants a word behind it
  std::vector<std::string> Choices;  // of which that word must be one; empty: any
};

/// A command of the program with what may follow it.
struct CompletedCommand {
  std::string Path;                  // the verbs that lead to it, with a blank between: "", "decompile", "smd info"
  std::vector<CompletedWord> Verbs;  // where there are none, the words of which the first argument must be one
  std::vector<CompletedWord> Options;
};

/// The program and all its verbs, each before those under it.
std::vector<CompletedCommand> CompletedCommands(const CLI::App& program);

/// A script that makes the shell complete verbs, options and what options can be, and file names everywhere else.
std::string BashCompletion(const std::vector<CompletedCommand>& commands);
std::string ZshCompletion(const std::vector<CompletedCommand>& commands);
std::string FishCompletion(const std::vector<CompletedCommand>& commands);

}  // namespace tarnwick::cli
