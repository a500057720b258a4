#include <fcntl.h>
#include <spawn.h>
#ifdef __linux__
#include <sys/resource.h>
#endif
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "process/child_process.h"
#include "process/marked_processes_posix.h"
#include "process/minder_posix.h"
#include "process/minder_protocol.h"

// Declared by some C libraries alone.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace tarnwick::process {

namespace {

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
  pointers.reserve(texts.size() + 1);
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

  void TakeAs(int descriptor, int target) {
    posix_spawn_file_actions_adddup2(&m_actions, descriptor, target);
    if (target >= m_firstClosed) m_firstClosed = target + 1;
  }
  void OpenAs(const char* path, int flags, int target) {
    posix_spawn_file_actions_addopen(&m_actions, target, path, flags, 0);
  }

  /// Starts the program. `groupFlag` says whether the child leads a process group or a session of its own.
  std::optional<SystemError> Run(const Command& command, std::vector<std::string> environment, short groupFlag,
                                 pid_t& child) {
    // Whatever else this process has open must not keep a pipe open in the child.
    posix_spawn_file_actions_addclosefrom_np(&m_actions, m_firstClosed);
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
    std::vector<std::string> words{command.Program};
    words.insert(words.end(), command.Arguments.begin(), command.Arguments.end());
    const std::vector<char*> arguments = Pointers(words);
    const std::vector<char*> variables = Pointers(environment);
    const int error = posix_spawn(&child, arguments[0], &m_actions, &m_attributes, arguments.data(), variables.data());
    if (error != 0) return ErrorOf(error);
    return std::nullopt;
  }

 private:
  posix_spawn_file_actions_t m_actions{};
  posix_spawnattr_t m_attributes{};
  int m_firstClosed = STDERR_FILENO + 1;
};

/// Bounds the memory of a child that has just started.
void LimitMemory([[maybe_unused]] pid_t child, [[maybe_unused]] uint64_t bytes) {
#ifdef __linux__
  const rlimit limit{bytes, bytes};
  prlimit(child, RLIMIT_DATA, &limit, nullptr);
#endif
}

}  // namespace

std::string CrashCause(const ProcessEnd& end) {
  return end.Signal != 0 ? "signal " + std::to_string(end.Signal) : "";
}

struct ChildProcess::State {
  pid_t Child = -1;
  std::string Mark;
  std::span<const std::string_view> Shared;
  MinderLink Minder;  // open if `Child` is the minder of the program

  void Signal(int number) {
    if (Child <= 0) return;
    if (Minder.IsOpen()) {
      // A minder finds more than a mark does, which it bears itself.
      if (!(number == SIGKILL ? Minder.Kill() : Minder.Terminate())) SignalMarkedProcesses(Mark, number, Shared);
      return;
    }
    // The child is not collected yet, so its number, and that of its group, cannot be another's. What serves others
    // too may stand in the group.
    kill(Shared.empty() ? -Child : Child, number);
    SignalMarkedProcesses(Mark, number, Shared);
  }

  /// Starts the minder by `command`, which tells it what to start.
  std::optional<SystemError> StartMinded(const Command& command, SpawnPlan& plan,
                                         const std::vector<std::string>& environment) {
    PipeEnd minderEnd;
    if (auto error = Minder.Open(minderEnd)) return error;
    plan.TakeAs(Descriptor(minderEnd), MinderSocket);
    auto error = plan.Run(command, environment, POSIX_SPAWN_SETPGROUP, Child);
    minderEnd.Close();
    if (!error) error = Minder.WaitForStart();
    if (!error) return std::nullopt;
    Minder.Close();
    if (Child > 0) waitpid(std::exchange(Child, -1), nullptr, 0);
    return error;
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

std::optional<SystemError> ChildProcess::Start(const Command& command, const PipeEnd& input, const PipeEnd& output,
                                               const StartOptions& options) {
  m_state->Shared = options.Shared;
  m_state->Mark = NewProcessMark();
  std::vector<std::string> additions = options.Environment;
  additions.push_back(m_state->Mark);
  SpawnPlan plan;
  if (input.IsOpen()) {
    plan.TakeAs(Descriptor(input), STDIN_FILENO);
  } else {
    plan.OpenAs("/dev/null", O_RDONLY, STDIN_FILENO);
  }
  plan.TakeAs(Descriptor(output), STDOUT_FILENO);
  if (options.Errors == ErrorOutput::WithOutput) plan.TakeAs(Descriptor(output), STDERR_FILENO);
  if (options.Errors == ErrorOutput::Dropped) plan.OpenAs("/dev/null", O_WRONLY, STDERR_FILENO);
  const std::vector<std::string> environment = EnvironmentWith(additions);
  if (const auto minder = options.Minded ? FindMinder() : std::nullopt) {
    return m_state->StartMinded(MindedCommand(*minder, command, options.MostMemory, options.Shared), plan, environment);
  }
  auto error = plan.Run(command, environment, POSIX_SPAWN_SETPGROUP, m_state->Child);
  if (!error && options.MostMemory > 0) LimitMemory(m_state->Child, options.MostMemory);
  return error;
}

bool ChildProcess::HasEnded() {
  if (m_state->Child > 0 && m_state->Minder.IsOpen()) return m_state->Minder.HasEnded();
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
  if (m_state->Child > 0 && m_state->Minder.IsOpen()) {
    if (!m_state->Minder.HasEnded()) return std::nullopt;
    m_state->Minder.Close();  // it ends now
    waitpid(m_state->Child, &status, 0);
    status = m_state->Minder.Status().value_or(status);
  } else if (m_state->Child <= 0 || waitpid(m_state->Child, &status, WNOHANG) != m_state->Child) {
    return std::nullopt;
  }
  m_state->Child = -1;
  if (WIFSIGNALED(status)) return ProcessEnd{128 + WTERMSIG(status), WTERMSIG(status)};
  return ProcessEnd{WEXITSTATUS(status), 0};
}

std::optional<SystemError> StartDetached(const Command& command, const StartOptions& options) {
  SpawnPlan plan;
  plan.OpenAs("/dev/null", O_RDONLY, STDIN_FILENO);
  plan.OpenAs("/dev/null", O_WRONLY, STDOUT_FILENO);
  plan.OpenAs("/dev/null", O_WRONLY, STDERR_FILENO);
  pid_t child = -1;
  if (auto error = plan.Run(command, EnvironmentWith(options.Environment), POSIX_SPAWN_SETSID, child)) return error;
  std::thread([child] { waitpid(child, nullptr, 0); }).detach();
  return std::nullopt;
}

}  // namespace tarnwick::process
