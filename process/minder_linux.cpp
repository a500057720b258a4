// tarnwick-minder MEMORY SPARED PROGRAM ARGUMENT...
//
// Starts PROGRAM and minds all that comes of it. What a program starts can leave its process group and its session and
// clear its environment; to be found again all the same it needs a parent that takes up orphans, which a process is for
// all its descendants or for none. So the minder, not Tarnwick itself, is that parent: it has no other children.
//
// It speaks through descriptor 3 in the messages of minder_protocol.h. It ends when PROGRAM has ended and the other
// side is gone; what then still runs is left alone. MEMORY is the limit in bytes, or 0; SPARED are names of processes,
// each with a comma behind it, that are never signalled.

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "process/minder_protocol.h"

namespace tarnwick::process {

namespace {

void Say(MinderWord word, int value) {
  const MinderMessage message{word, value};
  // The other side may be gone, which the next look at the socket tells.
  if (send(MinderSocket, &message, sizeof message, MSG_NOSIGNAL) < 0) return;
}

struct Process {
  pid_t Id = 0;
  pid_t Parent = 0;
  bool IsAlive = false;
  std::string Name;
};

/// The process whose number is `digits`, from /proc/N/stat: "12 (name) S 1 ...".
bool ReadProcess(const char* digits, Process& process) {
  const std::string path = std::string("/proc/") + digits + "/stat";
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  std::array<char, 512> text{};
  const ssize_t size = read(file, text.data(), text.size() - 1);
  close(file);
  if (size <= 0) return false;
  const std::string_view stat(text.data(), static_cast<size_t>(size));
  const size_t open = stat.find('(');
  const size_t shut = stat.rfind(')');
  if (open == std::string_view::npos || shut == std::string_view::npos || shut + 4 >= stat.size()) return false;
  process.Id = static_cast<pid_t>(std::strtol(digits, nullptr, 10));
  process.Name = std::string(stat.substr(open + 1, shut - open - 1));
  process.IsAlive = stat[shut + 2] != 'Z' && stat[shut + 2] != 'X';
  process.Parent = static_cast<pid_t>(std::strtol(text.data() + shut + 4, nullptr, 10));
  return true;
}

std::vector<Process> AllProcesses() {
  std::vector<Process> all;
  DIR* folder = opendir("/proc");
  if (folder == nullptr) return all;
  while (const dirent* entry = readdir(folder)) {
    Process process;
    if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9' && ReadProcess(entry->d_name, process)) {
      all.push_back(process);
    }
  }
  closedir(folder);
  return all;
}

/// The living among all that this process, or a child of it, has started.
std::vector<Process> Descendants() {
  const std::vector<Process> all = AllProcesses();
  std::vector<pid_t> family{getpid()};
  std::vector<Process> living;
  for (size_t i = 0; i < family.size(); ++i) {
    for (const Process& process : all) {
      if (process.Parent != family[i]) continue;
      family.push_back(process.Id);
      if (process.IsAlive) living.push_back(process);
    }
  }
  return living;
}

class Minder {
 public:
  Minder(rlim_t memory, std::string_view spared) : m_memory(memory), m_spared(spared) {}

  int Run(char** command) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    fcntl(MinderSocket, F_SETFD, FD_CLOEXEC);
    sigset_t children;
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    sigprocmask(SIG_BLOCK, &children, nullptr);
    const int ended = signalfd(-1, &children, SFD_CLOEXEC | SFD_NONBLOCK);
    if (const int error = Start(command); error != 0) {
      Say(MinderWord::NotStarted, error);
      return 1;
    }
    Say(MinderWord::Started, 0);
    LetGoOfTheStreams();
    while (m_listens || m_child > 0) {
      std::array<pollfd, 2> waits{{{ended, POLLIN, 0}, {m_listens ? MinderSocket : -1, POLLIN, 0}}};
      poll(waits.data(), waits.size(), -1);
      signalfd_siginfo ignored;
      while (read(ended, &ignored, sizeof ignored) > 0) {
      }
      CollectChildren();
      if (waits[1].revents != 0) Obey();
    }
    return 0;
  }

 private:
  /// Starts the program in a process group of its own. The system's error, or 0.
  int Start(char** command) {
    std::array<int, 2> failure{};
    if (pipe2(failure.data(), O_CLOEXEC) != 0) return errno;
    m_child = fork();
    if (m_child < 0) return errno;
    if (m_child == 0) {
      setpgid(0, 0);
      sigset_t none;
      sigemptyset(&none);
      sigprocmask(SIG_SETMASK, &none, nullptr);
      const rlimit limit{m_memory, m_memory};
      if (m_memory == 0 || setrlimit(RLIMIT_DATA, &limit) == 0) execv(command[0], command);
      const int error = errno;
      _exit(write(failure[1], &error, sizeof error) == sizeof error ? 127 : 126);
    }
    close(failure[1]);
    int error = 0;
    const bool failed = read(failure[0], &error, sizeof error) == sizeof error;
    close(failure[0]);
    return failed ? error : 0;
  }

  /// The program's output ends when nobody holds it; the minder must not.
  static void LetGoOfTheStreams() {
    const int nothing = open("/dev/null", O_RDWR);
    for (int stream = 0; stream < MinderSocket; ++stream) dup2(nothing, stream);
    if (nothing > MinderSocket) close(nothing);
  }

  void CollectChildren() {
    int status = 0;
    for (pid_t child = waitpid(-1, &status, WNOHANG); child > 0; child = waitpid(-1, &status, WNOHANG)) {
      if (child != m_child) continue;
      m_child = 0;
      Say(MinderWord::Ended, status);
    }
  }

  void Obey() {
    char order = 0;
    const ssize_t size = recv(MinderSocket, &order, 1, MSG_DONTWAIT);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (size <= 0) {
      m_listens = false;
    } else if (order == MinderTerminate) {
      SignalAll(SIGTERM);
    } else if (order == MinderKill) {
      KillAll();
      Say(MinderWord::AllGone, 0);
    }
  }

  bool IsSpared(const Process& process) const {
    const std::string name = "," + process.Name + ",";
    return m_spared.find(name) != std::string::npos;
  }

  /// Whether there was any to signal.
  bool SignalAll(int number) {
    bool any = false;
    for (const Process& process : Descendants()) {
      if (IsSpared(process)) continue;
      any = true;
      kill(process.Id, number);
    }
    return any;
  }

  /// Again and again: some may have started others meanwhile, and orphans of the last round are children now.
  void KillAll() {
    constexpr int MostRounds = 500;
    for (int round = 0; round < MostRounds && SignalAll(SIGKILL); ++round) {
      CollectChildren();
      usleep(1000);
    }
    CollectChildren();
  }

  rlim_t m_memory;
  std::string m_spared;  // ",name,name,"
  pid_t m_child = 0;     // 0 once it has ended
  bool m_listens = true;
};

}  // namespace

}  // namespace tarnwick::process

int main(int count, char** arguments) {
  if (count < 4) {
    std::fputs("This program is started by tarnwick to mind the tools that it runs.\n", stderr);
    return 2;
  }
  const auto memory = static_cast<rlim_t>(std::strtoull(arguments[1], nullptr, 10));
  return tarnwick::process::Minder(memory, "," + std::string(arguments[2])).Run(arguments + 3);
}
