#include "process/minder_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "core/program_directory.h"
#include "process/minder_protocol.h"

namespace tarnwick::process {

std::optional<std::string> FindMinder() {
#ifdef __linux__
  std::string path = core::ProgramDirectory() + "/tarnwick-minder";
  if (access(path.c_str(), X_OK) == 0) return path;
#endif
  return std::nullopt;
}

Command MindedCommand(const std::string& minder, const Command& command, uint64_t memory,
                      std::span<const std::string_view> spared) {
  std::string names;
  for (const std::string_view name : spared) names += std::string(name) + ",";
  Command minded{minder, {std::to_string(memory), names, command.Program}};
  minded.Arguments.insert(minded.Arguments.end(), command.Arguments.begin(), command.Arguments.end());
  return minded;
}

std::optional<SystemError> MinderLink::Open(PipeEnd& minderEnd) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()) != 0) return ErrorOf(errno);
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  m_socket = PipeEnd(ends[0]);
  minderEnd = PipeEnd(ends[1]);
  return std::nullopt;
}

bool MinderLink::Listen(int milliseconds) {
  if (m_lost || !m_socket.IsOpen()) return false;
  const int socket = static_cast<int>(m_socket.Handle());
  pollfd wait{socket, POLLIN, 0};
  int found = poll(&wait, 1, milliseconds);
  while (found < 0 && errno == EINTR) found = poll(&wait, 1, milliseconds);
  if (found <= 0) return false;
  MinderMessage message{};
  if (recv(socket, &message, sizeof message, MSG_DONTWAIT) != sizeof message) {
    m_lost = true;
    return false;
  }
  if (message.Word == MinderWord::Started) m_startError = 0;
  if (message.Word == MinderWord::NotStarted) m_startError = message.Value;
  if (message.Word == MinderWord::Ended) m_status = message.Value;
  if (message.Word == MinderWord::AllGone) m_allGone = true;
  return true;
}

std::optional<SystemError> MinderLink::WaitForStart() {
  constexpr int Forever = -1;
  while (!m_startError && Listen(Forever)) {
  }
  if (m_startError == 0) return std::nullopt;
  return ErrorOf(m_startError.value_or(ECHILD));
}

bool MinderLink::Terminate() {
  return send(static_cast<int>(m_socket.Handle()), &MinderTerminate, 1, MSG_NOSIGNAL | MSG_DONTWAIT) == 1;
}

bool MinderLink::Kill() {
  constexpr int LongestWait = 1000;  // milliseconds
  m_allGone = false;
  if (send(static_cast<int>(m_socket.Handle()), &MinderKill, 1, MSG_NOSIGNAL | MSG_DONTWAIT) != 1) return false;
  while (!m_allGone && Listen(LongestWait)) {
  }
  return !m_lost;
}

bool MinderLink::HasEnded() {
  while (Listen(0)) {
  }
  return m_status || m_lost;
}

}  // namespace tarnwick::process
