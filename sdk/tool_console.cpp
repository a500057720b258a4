#include "sdk/tool_console.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <vector>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "core/command_line.h"
#include "core/paths.h"

namespace tarnwick::sdk {

namespace {

bool SomebodyWatches() {
#ifdef _WIN32
  return _isatty(_fileno(stdin)) != 0 && _isatty(_fileno(stdout)) != 0;
#else
  return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
#endif
}

}  // namespace

int RunTool(int argumentCount, const char* const* arguments, ToolProgram program) {
  const core::CommandLine line(argumentCount, arguments);
  const std::vector<std::string> words = line.Arguments();
  // Both streams may go to the same reader: what is printed must not overtake what was printed before it.
  std::cerr.tie(&std::cout);
  int code = ToolFailure;
  try {
    code = program(words, std::cout, std::cerr);
  } catch (const std::exception& error) {  // memory ran out, at the latest
    std::cerr << "Error: " << error.what() << "\n";
  }
  const bool pause =
      std::none_of(words.begin(), words.end(), [](const std::string& word) { return IsSwitch(word, "-nopause"); });
  if (pause && SomebodyWatches()) {
    std::cout << "Press Enter to go on." << std::flush;
    std::cin.get();
  }
  std::cout.flush();
  return std::cout ? code : ToolFailure;
}

bool IsSwitch(std::string_view argument, std::string_view name) {
  if (argument.starts_with("--")) argument.remove_prefix(1);
  return core::EqualIgnoringCase(argument, name);
}

bool LooksLikeSwitch(std::string_view argument) {
  return argument.size() > 1 && argument[0] == '-';
}

bool IsHelpSwitch(std::string_view argument) {
  return IsSwitch(argument, "-h") || IsSwitch(argument, "-help") || IsSwitch(argument, "-?") || argument == "/?";
}

}  // namespace tarnwick::sdk
