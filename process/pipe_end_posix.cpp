#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "process/pipe_end.h"

namespace tarnwick::process {

namespace {

int Descriptor(const PipeEnd& end) {
  return static_cast<int>(end.Handle());
}

}  // namespace

SystemError ErrorOf(int code) {
  return {code, std::generic_category().message(code)};
}

std::optional<SystemError> PipeEnd::Close() {
  if (!IsOpen()) return std::nullopt;
  const int descriptor = Descriptor(*this);
  m_handle = None;
  if (close(descriptor) != 0 && errno != EINTR) return ErrorOf(errno);
  return std::nullopt;
}

// A child gets its two ends as standard input and output, so both ends of every pipe can close themselves on exec from
// the start; nothing that another thread starts meanwhile can then hold them.
std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return ErrorOf(errno);
  read = PipeEnd(ends[0]);
  write = PipeEnd(ends[1]);
  return std::nullopt;
}

std::optional<SystemError> StopInheriting(PipeEnd& end) {
  if (fcntl(Descriptor(end), F_SETFD, FD_CLOEXEC) != 0) return ErrorOf(errno);
  return std::nullopt;
}

void WriteToPipe(PipeEnd& end, const char* bytes, size_t size) {
  // A child that is gone already must not end this process by SIGPIPE, and the process's own handling of that signal
  // is not this room's to change: hold the signal back in this thread, and take it if the write raised it.
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  sigset_t pending;
  sigpending(&pending);
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
  while (write(Descriptor(end), bytes, size) < 0 && errno == EINTR) {
  }
  if (sigismember(&pending, SIGPIPE) == 0) {
    const timespec atOnce{};
    while (sigtimedwait(&pipeSignal, nullptr, &atOnce) < 0 && errno == EINTR) {
    }
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

PipeRead ReadFromPipe(PipeEnd& end, char* target, size_t size, std::chrono::milliseconds wait) {
  pollfd waiting{Descriptor(end), POLLIN, 0};
  const int ready = poll(&waiting, 1, static_cast<int>(wait.count()));
  if (ready == 0 || (ready < 0 && errno == EINTR)) return {PipeRead::Kind::Nothing, 0};
  if (ready < 0) return {PipeRead::Kind::End, 0};
  const ssize_t got = read(Descriptor(end), target, size);
  if (got > 0) return {PipeRead::Kind::Bytes, static_cast<size_t>(got)};
  if (got < 0 && errno == EINTR) return {PipeRead::Kind::Nothing, 0};
  return {PipeRead::Kind::End, 0};
}

}  // namespace tarnwick::process
