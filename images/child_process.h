#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tarnwick::images {

/// How a child process ended.
struct ChildResult {
  enum class End {
    NotStarted,  // Reason says why
    Exited,      // of itself, whatever its code
    Killed,      // Reason says by what
    TimedOut,    // it was killed for running too long
    TooMuch,     // it was killed for printing more than allowed
  };
  End Ending = End::NotStarted;
  std::string Reason;
  std::string Output;  // what it printed on its standard output
};

/// Runs `program` with `arguments` and waits for its end. It gets no input, its error output is dropped, and it
/// inherits no open files. It is killed when it prints more than `mostOutput` bytes or runs longer than `seconds`.
/// May be called from several threads at once.
ChildResult RunChild(const std::string& program, const std::vector<std::string>& arguments, size_t mostOutput,
                     int seconds);

}  // namespace tarnwick::images
