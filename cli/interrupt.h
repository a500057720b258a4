#pragma once

#include <atomic>
#include <memory>
#include <stop_token>

namespace tarnwick::cli {

/// While an object of this class lives, Ctrl-C, a request to end, and the end of the terminal stop what goes on and do
/// not end the program, so that a tool that runs is ended with all that it started and no half file stays. A signal
/// that the program was started to ignore stays ignored. One object at a time.
class InterruptFlag {
 public:
  InterruptFlag();
  InterruptFlag(const InterruptFlag&) = delete;
  InterruptFlag& operator=(const InterruptFlag&) = delete;
  ~InterruptFlag();

  const std::atomic<bool>& Flag() const;
  bool IsSet() const { return Flag().load(); }
  /// Stopped by the same signals.
  std::stop_token Token() const;

 private:
  struct Watch;
  std::unique_ptr<Watch> m_watch;
};

}  // namespace tarnwick::cli
