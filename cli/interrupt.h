#pragma once

#include <atomic>
#include <csignal>

namespace tarnwick::cli {

/// While an object of this class lives, Ctrl-C and a request to end set a flag and do not end the program, so that a
/// tool that runs can be ended with all that it started. One object at a time.
class InterruptFlag {
 public:
  InterruptFlag();
  InterruptFlag(const InterruptFlag&) = delete;
  InterruptFlag& operator=(const InterruptFlag&) = delete;
  ~InterruptFlag();

  const std::atomic<bool>& Flag() const;
  bool IsSet() const { return Flag().load(); }

 private:
  using Handler = void (*)(int);
  Handler m_oldInterrupt;
  Handler m_oldTerminate;
};

}  // namespace tarnwick::cli
