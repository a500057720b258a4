#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "cli/invocation.h"
#include "core/program_directory.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// What a call of the program printed, and its exit code.
struct CommandResult {
  int ExitCode = 0;
  std::string Out;
  std::string Err;
};

/// The program's own file, for another process.
inline std::string ProgramFile() {
#ifdef _WIN32
  return core::ProgramDirectory() + "/tarnwick-cli.exe";
#else
  return core::ProgramDirectory() + "/tarnwick-cli";
#endif
}

/// Calls the program with these arguments, as a user does whose settings lie in the folder `settings`.
inline CommandResult RunCommandWith(const std::string& settings, const std::vector<std::string>& arguments) {
#ifdef _WIN32
  _putenv_s("XDG_CONFIG_HOME", settings.c_str());
#else
  setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
#endif
  std::vector<const char*> pointers{"tarnwick-cli"};
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  std::ostringstream out;
  std::ostringstream err;
  const int exitCode = cli::RunProgram(static_cast<int>(pointers.size()), pointers.data(), out, err);
  return {exitCode, out.str(), err.str()};
}

/// The same as a user whose settings are empty.
inline CommandResult RunCommand(const std::vector<std::string>& arguments) {
  return RunCommandWith(ScratchFolder().Path(), arguments);
}

/// Tests of one verb: keep what its last call printed.
class VerbTest : public testing::Test {
 protected:
  /// Calls the program with `verb`, which may hold options too, in front of `arguments`; gives the exit code.
  int RunVerb(std::vector<std::string> verb, const std::vector<std::string>& arguments) {
    verb.insert(verb.end(), arguments.begin(), arguments.end());
    CommandResult result = RunCommand(verb);
    m_out = std::move(result.Out);
    m_err = std::move(result.Err);
    return result.ExitCode;
  }

  std::string m_out;
  std::string m_err;
};

}  // namespace tarnwick::tests
