#ifndef _WIN32

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "tools/child_process.h"
#include "tools/marked_processes_posix.h"
#include "tools/program_start_posix.h"

extern char** environ;

namespace tarnwick::tools {

namespace {

SystemError LastError(int code) {
  return {code, std::generic_category().message(code)};
}

int Descriptor(const PipeEnd& end) {
  return static_cast<int>(end.Handle());
}

/// This process's environment with `additions` ("NAME=value") in the place of variables of the same name.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> variables = additions;
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    const std::string_view text(*variable);
    const std::string_view name = text.substr(0, text.find('=') + 1);
    bool replaced = false;
    for (const std::string& addition : additions) replaced = replaced || std::string_view(addition).starts_with(name);
    if (!replaced) variables.emplace_back(text);
  }
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// The attributes and file actions of a start; freed together.
class SpawnPlan {
 public:
  SpawnPlan() {
    posix_spawn_file_actions_init(&m_actions);
    posix_spawnattr_init(&m_attributes);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&m_actions);
    posix_spawnattr_destroy(&m_attributes);
  }

  void TakeAs(int descriptor, int target) { posix_spawn_file_actions_adddup2(&m_actions, descriptor, target); }
  void OpenAs(const char* path, int flags, int target) {
    posix_spawn_file_actions_addopen(&m_actions, target, path, flags, 0);
  }

  /// Starts `start`. `groupFlag` says whether the child leads a process group or a session of its own.
  std::optional<SystemError> Run(ProgramStart& start, const std::vector<std::string>& additions, short groupFlag,
                                 pid_t& child) {
    // Whatever else this process has open must not keep a pipe open in the child.
    posix_spawn_file_actions_addclosefrom_np(&m_actions, 3);
    sigset_t none;
    sigemptyset(&none);
    sigset_t usual;
    sigemptyset(&usual);
    for (const int number : {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGHUP}) sigaddset(&usual, number);
    posix_spawnattr_setsigmask(&m_attributes, &none);
    posix_spawnattr_setsigdefault(&m_attributes, &usual);
    posix_spawnattr_setpgroup(&m_attributes, 0);
    posix_spawnattr_setflags(&m_attributes,
                             static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | groupFlag));
    std::vector<std::string> variables = EnvironmentWith(additions);
    std::vector<char*> words = Pointers(start.Words);
    std::vector<char*> environment = Pointers(variables);
    const int error = posix_spawn(&child, words[0], &m_actions, &m_attributes, words.data(), environment.data());
    if (error != 0) return LastError(error);
    return std::nullopt;
  }

 private:
  posix_spawn_file_actions_t m_actions{};
  posix_spawnattr_t m_attributes{};
};

std::vector<std::string> WineAdditions(const ProgramStart& start) {
  if (!start.ThroughWine) return {};
  return {"WINEDEBUG=-all"};
}

}  // namespace

std::optional<SystemError> PipeEnd::Close() {
  if (!IsOpen()) return std::nullopt;
  const int descriptor = Descriptor(*this);
  m_handle = None;
  if (close(descriptor) != 0 && errno != EINTR) return LastError(errno);
  return std::nullopt;
}

// A child gets its two ends as standard input and output, so both ends of every pipe can close themselves on exec from
// the start; nothing that another thread starts meanwhile can then hold them.
std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return LastError(errno);
  read = PipeEnd(ends[0]);
  write = PipeEnd(ends[1]);
  return std::nullopt;
}

std::optional<SystemError> StopInheriting(PipeEnd& end) {
  if (fcntl(Descriptor(end), F_SETFD, FD_CLOEXEC) != 0) return LastError(errno);
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

struct ChildProcess::State {
  pid_t Child = -1;
  std::string Mark;
  bool ThroughWine = false;

  void Signal(int number) const {
    if (Child <= 0) return;
    // The child is not collected yet, so its number, and that of its group, cannot be another's. Wine's servers may
    // stand in the group, and other Windows programs hang on them.
    kill(ThroughWine ? Child : -Child, number);
    SignalMarkedProcesses(Mark, number);
  }
};

ChildProcess::ChildProcess() : m_state(std::make_unique<State>()) {}
ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&&) noexcept = default;

ChildProcess::~ChildProcess() {
  // A child that runs on is collected when it ends, so that it does not stay in the process table.
  if (m_state && m_state->Child > 0 && !Collect()) {
    std::thread([child = m_state->Child] { waitpid(child, nullptr, 0); }).detach();
  }
}

std::optional<SystemError> ChildProcess::Start(const std::string& commandLine, const PipeEnd& input,
                                               const PipeEnd& output, const StartSettings& settings) {
  ProgramStart start;
  if (auto error = PrepareStart(commandLine, settings, start)) return error;
  std::vector<std::string> additions = WineAdditions(start);
  m_state->ThroughWine = start.ThroughWine;
  m_state->Mark = NewProcessMark();
  additions.push_back(m_state->Mark);
  SpawnPlan plan;
  plan.TakeAs(Descriptor(input), STDIN_FILENO);
  plan.TakeAs(Descriptor(output), STDOUT_FILENO);
  plan.TakeAs(Descriptor(output), STDERR_FILENO);
  return plan.Run(start, additions, POSIX_SPAWN_SETPGROUP, m_state->Child);
}

bool ChildProcess::HasEnded() {
  siginfo_t info{};
  // WNOWAIT leaves the child uncollected, which keeps the group's number ours until `Collect`.
  return m_state->Child <= 0 ||
         (waitid(P_PID, static_cast<id_t>(m_state->Child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
          info.si_pid != 0);
}

void ChildProcess::Terminate() {
  m_state->Signal(SIGTERM);
}

void ChildProcess::Kill() {
  m_state->Signal(SIGKILL);
}

std::optional<ProcessEnd> ChildProcess::Collect() {
  int status = 0;
  if (m_state->Child <= 0 || waitpid(m_state->Child, &status, WNOHANG) != m_state->Child) return std::nullopt;
  m_state->Child = -1;
  if (WIFSIGNALED(status)) return ProcessEnd{128 + WTERMSIG(status), WTERMSIG(status)};
  return ProcessEnd{WEXITSTATUS(status), 0};
}

std::optional<SystemError> LaunchDetached(const std::string& program, const std::string& parameters,
                                          const StartSettings& settings) {
  ProgramStart start;
  if (auto error = PrepareStart(program, parameters, settings, start)) return error;
  SpawnPlan plan;
  plan.OpenAs("/dev/null", O_RDONLY, STDIN_FILENO);
  plan.OpenAs("/dev/null", O_WRONLY, STDOUT_FILENO);
  plan.OpenAs("/dev/null", O_WRONLY, STDERR_FILENO);
  pid_t child = -1;
  if (auto error = plan.Run(start, WineAdditions(start), POSIX_SPAWN_SETSID, child)) return error;
  std::thread([child] { waitpid(child, nullptr, 0); }).detach();
  return std::nullopt;
}

}  // namespace tarnwick::tools

#endif
