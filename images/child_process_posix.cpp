#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <optional>
#include <thread>
#include <utility>

#include "core/paths.h"
#include "images/child_process.h"
#include "images/sanitized.h"

extern char** environ;

namespace tarnwick::images {

namespace {

/// A file descriptor that is closed with its object.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : m_number(number) {}
  Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  ~Descriptor() { Close(); }
  void Close() {
    if (m_number >= 0) close(std::exchange(m_number, -1));
  }
  int Number() const { return m_number; }

 private:
  int m_number;
};

/// What posix_spawn is told to do with the standard descriptors of the child.
class SpawnActions {
 public:
  explicit SpawnActions(int output) {
    posix_spawn_file_actions_init(&m_actions);
    posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
#if !TARNWICK_SANITIZED  // a sanitizer's report is worth seeing
    posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
#endif
  }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() {
    posix_spawn_file_actions_destroy(&m_actions);
  }
  const posix_spawn_file_actions_t* Get() const {
    return &m_actions;
  }

 private:
  posix_spawn_file_actions_t m_actions;
};

std::string SignalReason(int signal) {
  if (signal == SIGXCPU) return "it took too long";
  if (signal == SIGXFSZ) return "its result grew too large";
  return std::string("it was ended by the system: ") + strsignal(signal);
}

/// Reads until the child closes its end. Why reading had to stop, if it did.
std::optional<ChildResult::End> ReadAll(int descriptor, size_t mostOutput, int seconds, std::string& output) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::seconds(seconds);
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return ChildResult::End::TimedOut;
    pollfd waiting{descriptor, POLLIN, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(left));
    if (ready < 0 && errno != EINTR) return ChildResult::End::Killed;
    if (ready <= 0) continue;
    char block[65536];
    const ssize_t size = read(descriptor, block, sizeof block);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return std::nullopt;
    output.append(block, static_cast<size_t>(size));
    if (output.size() > mostOutput) return ChildResult::End::TooMuch;
  }
}

/// The status with which the child ended. One that has closed its output has nothing more to do for us: if it does not
/// end within a few seconds it is killed.
int WaitFor(pid_t child) {
  constexpr auto Grace = std::chrono::seconds(5);
  const auto deadline = std::chrono::steady_clock::now() + Grace;
  int status = 0;
  for (;;) {
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child || (ended < 0 && errno != EINTR)) return status;
    if (std::chrono::steady_clock::now() > deadline) kill(child, SIGKILL);
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

}  // namespace

ChildResult RunChild(const std::string& program, const std::vector<std::string>& arguments, size_t mostOutput,
                     int seconds) {
  ChildResult result;
  const std::string path = core::PathText(core::NativePath(program));
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    result.Reason = std::strerror(errno);
    return result;
  }
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);

  std::vector<char*> argumentPointers{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) argumentPointers.push_back(const_cast<char*>(argument.c_str()));
  argumentPointers.push_back(nullptr);

  const SpawnActions actions(writing.Number());
  pid_t child = 0;
  const int error = posix_spawn(&child, path.c_str(), actions.Get(), nullptr, argumentPointers.data(), environ);
  writing.Close();
  if (error != 0) {
    result.Reason = std::strerror(error);
    return result;
  }

  const auto stopped = ReadAll(reading.Number(), mostOutput, seconds, result.Output);
  if (stopped) kill(child, SIGKILL);
  const int status = WaitFor(child);
  if (stopped) {
    result.Ending = *stopped;
    result.Reason = *stopped == ChildResult::End::TimedOut ? "it took too long" : "it answered too much";
  } else if (WIFSIGNALED(status)) {
    result.Ending = ChildResult::End::Killed;
    result.Reason = SignalReason(WTERMSIG(status));
  } else {
    result.Ending = ChildResult::End::Exited;
  }
  return result;
}

}  // namespace tarnwick::images
