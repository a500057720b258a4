#pragma once

// What a minder and its starter say to each other, over one socket. The starter's words are single bytes.

namespace tarnwick::process {

/// The minder's end of the socket.
inline constexpr int MinderSocket = 3;

inline constexpr char MinderTerminate = 'T';  // ask all to end
inline constexpr char MinderKill = 'K';       // end all; answered by AllGone

/// What a minder tells.
enum class MinderWord : int {
  NotStarted,  // with the system's error; the minder ends
  Started,     // the program runs
  Ended,       // it has ended, with its wait status
  AllGone,     // after MinderKill: nothing of what it started runs any more
};

/// One message of a minder.
struct MinderMessage {
  MinderWord Word;
  int Value;
};

}  // namespace tarnwick::process
