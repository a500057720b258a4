#include <linux/close_range.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <memory>

#include "images/limits.h"
#include "images/worker/jail.h"

namespace tarnwick::images {

namespace {

bool Limit(__rlimit_resource_t resource, int64_t value, std::string& reason, int64_t beyond = 0) {
  const rlimit limit{static_cast<rlim_t>(value), static_cast<rlim_t>(value + beyond)};
  if (setrlimit(resource, &limit) == 0) return true;
  reason = std::string("a limit could not be set: ") + std::strerror(errno);
  return false;
}

/// Calls that reach nothing outside this process, whatever their arguments.
constexpr int HarmlessCalls[] = {
    SCMP_SYS(read),         SCMP_SYS(readv),       SCMP_SYS(pread64),         SCMP_SYS(write),
    SCMP_SYS(writev),       SCMP_SYS(lseek),       SCMP_SYS(fstat),           SCMP_SYS(close),
    SCMP_SYS(brk),          SCMP_SYS(munmap),      SCMP_SYS(madvise),         SCMP_SYS(futex),
    SCMP_SYS(sched_yield),  SCMP_SYS(getpid),      SCMP_SYS(gettid),          SCMP_SYS(clock_gettime),
    SCMP_SYS(gettimeofday), SCMP_SYS(getrandom),   SCMP_SYS(rt_sigaction),    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn), SCMP_SYS(sigaltstack), SCMP_SYS(restart_syscall), SCMP_SYS(exit),
    SCMP_SYS(exit_group),   SCMP_SYS(mremap),
};

/// Adds the rules to `filter`. 0, or a negative error number.
int AddRules(scmp_filter_ctx filter) {
  for (const int call : HarmlessCalls) {
    if (const int error = seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0); error != 0) return error;
  }
  // Memory of no file, and none of it ever executable.
  const scmp_arg_cmp notExecutable{2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0};
  const scmp_arg_cmp anonymous{3, SCMP_CMP_MASKED_EQ, MAP_ANONYMOUS, MAP_ANONYMOUS};
  const int error = seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(mmap), 2, notExecutable, anonymous);
  return error != 0 ? error : seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(mprotect), 1, notExecutable);
}

}  // namespace

bool LimitResources(std::string& reason) {
  close_range(STDERR_FILENO + 1, ~0u, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  return Limit(RLIMIT_CORE, 0, reason) && Limit(RLIMIT_FSIZE, LargestOutput, reason) &&
         // Where both limits are the same the signal does not tell what for.
         Limit(RLIMIT_CPU, LongestProcessorTime, reason, 5) &&
         (!LimitsMemory || Limit(RLIMIT_AS, LargestMemory, reason));
}

bool LimitFurtherMemory(int64_t bytes, std::string& reason) {
  if (!LimitsMemory) return true;
  std::ifstream status("/proc/self/statm");
  int64_t pages = 0;
  if (!(status >> pages)) {
    reason = "the memory in use cannot be told";
    return false;
  }
  return Limit(RLIMIT_AS, pages * sysconf(_SC_PAGESIZE) + bytes, reason);
}

bool EnterJail(std::string& reason) {
  // libseccomp also sets no_new_privs, which the system asks for before it takes a filter.
  const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)), &seccomp_release);
  int error = filter ? AddRules(filter.get()) : -ENOMEM;
  if (error == 0) error = seccomp_load(filter.get());
  if (error != 0) reason = std::string("the sandbox could not be entered: ") + std::strerror(-error);
  return error == 0;
}

}  // namespace tarnwick::images
