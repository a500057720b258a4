#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "cli/invocation.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// What a call of the program printed, and its exit code.
struct CommandResult {
  int ExitCode = 0;
  std::string Out;
  std::string Err;
};

/// Calls the program with these arguments, as a user does whose settings are empty.
inline CommandResult RunCommand(const std::vector<std::string>& arguments) {
  const ScratchFolder settings;
#ifdef _WIN32
  _putenv_s("XDG_CONFIG_HOME", settings.Path().c_str());
#else
  setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
#endif
  std::vector<const char*> pointers{"tarnwick-cli"};
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  std::ostringstream out;
  std::ostringstream err;
  const int exitCode = cli::RunProgram(static_cast<int>(pointers.size()), pointers.data(), out, err);
  return {exitCode, out.str(), err.str()};
}

}  // namespace tarnwick::tests
