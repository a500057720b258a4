#include <windows.h>
// <windows.h> first: the other headers of the system need it.
#include <psapi.h>

#include <memory>
#include <system_error>

#include "images/limits.h"
#include "images/worker/jail.h"

namespace tarnwick::images {

namespace {

bool Refused(std::string& reason, const char* what) {
  const std::error_code error(static_cast<int>(GetLastError()), std::system_category());
  reason = std::string(what) + ": " + error.message();
  return false;
}

/// A job inside the one that the starting program has put this process into: what each allows counts.
HANDLE OwnJob() {
  static const HANDLE job = [] {
    const HANDLE made = CreateJobObjectW(nullptr, nullptr);
    return made != nullptr && AssignProcessToJobObject(made, GetCurrentProcess()) ? made : nullptr;
  }();
  return job;
}

bool Limit(int64_t memory, std::string& reason) {
  constexpr int64_t TicksPerSecond = 10'000'000;
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  JOBOBJECT_BASIC_LIMIT_INFORMATION& basic = limits.BasicLimitInformation;
  basic.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY | JOB_OBJECT_LIMIT_PROCESS_TIME | JOB_OBJECT_LIMIT_ACTIVE_PROCESS |
                     JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
  basic.PerProcessUserTimeLimit.QuadPart = LongestProcessorTime * TicksPerSecond;
  basic.ActiveProcessLimit = 1;
  limits.ProcessMemoryLimit = static_cast<SIZE_T>(memory);
  const HANDLE job = OwnJob();
  return (job != nullptr && SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits)) ||
         Refused(reason, "a limit could not be set");
}

template <typename Policy>
bool Set(PROCESS_MITIGATION_POLICY kind, DWORD flags) {
  Policy policy{};
  policy.Flags = flags;
  return SetProcessMitigationPolicy(kind, &policy, sizeof policy) != 0;
}

/// Takes all privileges out of the process's token and puts it below everything that a user's programs and files are
/// marked with: it can write to none of them, nor open another process.
bool LowerToken() {
  HANDLE own = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_DEFAULT | TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &own)) {
    return false;
  }
  const std::unique_ptr<void, decltype(&CloseHandle)> token(own, &CloseHandle);
  DWORD size = 0;
  GetTokenInformation(own, TokenPrivileges, nullptr, 0, &size);
  const auto memory = std::make_unique<std::byte[]>(size);
  auto* const privileges = reinterpret_cast<TOKEN_PRIVILEGES*>(memory.get());
  if (!GetTokenInformation(own, TokenPrivileges, privileges, size, &size)) return false;
  for (DWORD i = 0; i < privileges->PrivilegeCount; ++i) privileges->Privileges[i].Attributes = SE_PRIVILEGE_REMOVED;
  if (privileges->PrivilegeCount > 0 && !AdjustTokenPrivileges(own, FALSE, privileges, 0, nullptr, nullptr)) {
    return false;
  }

  // By hand: Wine does not know it among the ones that have names.
  SID untrusted{SID_REVISION, 1, SECURITY_MANDATORY_LABEL_AUTHORITY, {SECURITY_MANDATORY_UNTRUSTED_RID}};
  TOKEN_MANDATORY_LABEL label{{&untrusted, SE_GROUP_INTEGRITY}};
  return SetTokenInformation(own, TokenIntegrityLevel, &label, DWORD{sizeof label} + GetLengthSid(&untrusted)) != 0;
}

/// Keeps the clipboard, other programs' windows, the desktop and the settings of the screen away.
bool KeepFromDesktop() {
  JOBOBJECT_BASIC_UI_RESTRICTIONS restrictions{JOB_OBJECT_UILIMIT_DESKTOP | JOB_OBJECT_UILIMIT_DISPLAYSETTINGS |
                                               JOB_OBJECT_UILIMIT_EXITWINDOWS | JOB_OBJECT_UILIMIT_GLOBALATOMS |
                                               JOB_OBJECT_UILIMIT_HANDLES | JOB_OBJECT_UILIMIT_READCLIPBOARD |
                                               JOB_OBJECT_UILIMIT_SYSTEMPARAMETERS | JOB_OBJECT_UILIMIT_WRITECLIPBOARD};
  return SetInformationJobObject(OwnJob(), JobObjectBasicUIRestrictions, &restrictions, sizeof restrictions) != 0;
}

}  // namespace

bool LimitResources(std::string& reason) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);  // no box of the system's when it crashes
  return Limit(LargestMemory, reason);
}

bool LimitFurtherMemory(int64_t bytes, std::string& reason) {
  PROCESS_MEMORY_COUNTERS used{};
  if (!K32GetProcessMemoryInfo(GetCurrentProcess(), &used, sizeof used)) {
    return Refused(reason, "the memory in use cannot be told");
  }
  return Limit(static_cast<int64_t>(used.PagefileUsage) + bytes, reason);
}

bool EnterJail(std::string& reason) {
  // No code but what is loaded: a system that does not know one of these (before Windows 10) keeps the rest. The
  // processes that it may start are counted by the job too, which every system knows.
  Set<PROCESS_MITIGATION_DYNAMIC_CODE_POLICY>(ProcessDynamicCodePolicy, 1);                       // none made
  Set<PROCESS_MITIGATION_EXTENSION_POINT_DISABLE_POLICY>(ProcessExtensionPointDisablePolicy, 1);  // none put in
  Set<PROCESS_MITIGATION_IMAGE_LOAD_POLICY>(ProcessImageLoadPolicy, 3);  // none from elsewhere, none marked as low
  return (KeepFromDesktop() && LowerToken()) || Refused(reason, "the sandbox could not be entered");
}

}  // namespace tarnwick::images
