#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "process/command.h"
#include "process/pipe_end.h"

namespace tarnwick::process {

/// The minder's file beside the running program; nothing where there is none, as on systems other than Linux.
std::optional<std::string> FindMinder();

/// The call by which the minder at `minder` starts `command`. `memory` is 0 for no limit.
Command MindedCommand(const std::string& minder, const Command& command, uint64_t memory,
                      std::span<const std::string_view> spared);

/// The starter's side of a minder.
class MinderLink {
 public:
  /// Makes the socket; gives the end that the minder gets as its MinderSocket.
  std::optional<SystemError> Open(PipeEnd& minderEnd);
  bool IsOpen() const { return m_socket.IsOpen(); }
  /// Waits until the minder has told whether its program runs; the system's error if it does not.
  std::optional<SystemError> WaitForStart();
  /// Asks everything to end. False if the minder is gone.
  bool Terminate();
  /// Ends everything, and waits, within reason, until it has ended. False if the minder is gone.
  bool Kill();
  /// Whether the program has ended, or its minder, which should not.
  bool HasEnded();
  /// The wait status of the program; nothing if its minder ended first.
  std::optional<int> Status() const { return m_status; }
  /// Lets go of the minder, which ends as soon as its program has.
  void Close() { m_socket.Close(); }

 private:
  /// Takes what the minder has told, waiting for it up to so many milliseconds. False if nothing came.
  bool Listen(int milliseconds);

  PipeEnd m_socket;
  std::optional<int> m_status;
  std::optional<int> m_startError;  // 0 once the program runs
  bool m_allGone = false;
  bool m_lost = false;  // the minder is gone
};

}  // namespace tarnwick::process
