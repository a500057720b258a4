#pragma once

#include <functional>
#include <ostream>

namespace CLI {
class App;
}

namespace tarnwick::cli {

/// Exit codes of every verb.
inline constexpr int ExitSuccess = 0;
inline constexpr int ExitFailure = 1;  // some work failed
inline constexpr int ExitUsage = 2;    // the command line is wrong

/// One call of the program: where it prints, and what is to be run once the command line is understood.
struct Invocation {
  std::ostream& Out;  // results
  std::ostream& Err;  // the log, progress, warnings, errors
  std::function<int()> Run;
};

/// Adds a verb's subcommand with its options to `program`. When the subcommand is chosen its callback sets
/// `invocation.Run`, which does the work and gives the exit code.
using AddVerb = void (*)(CLI::App& program, Invocation& invocation);

/// Understands the command line and does what it says. Gives the exit code; nothing is thrown.
int RunProgram(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err);

}  // namespace tarnwick::cli
