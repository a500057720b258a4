#include <windows.h>
// <windows.h> first: the other headers of the system need it.
#include <shellapi.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "core/paths.h"
#include "process/child_process.h"

namespace tarnwick::process {

namespace {

SystemError LastError() {
  return ErrorOf(static_cast<int>(GetLastError()));
}

HANDLE AsHandle(const PipeEnd& end) {
  return end.IsOpen() ? reinterpret_cast<HANDLE>(end.Handle()) : nullptr;
}

/// UTF-8, the program's own form of text, as the system takes it; separators stay as they are.
std::wstring Wide(const std::string& text) {
  const auto convert = [&](wchar_t* target, int size) {
    return MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), target, size);
  };
  std::wstring converted(static_cast<size_t>(convert(nullptr, 0)), 0);
  convert(converted.data(), static_cast<int>(converted.size()));
  return converted;
}

/// The list that lets a child inherit just the handles that it is given, whatever else another thread makes inheritable
/// at the same time.
class InheritedHandles {
 public:
  explicit InheritedHandles(std::vector<HANDLE> handles) : m_handles(std::move(handles)) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    m_memory = std::make_unique<std::byte[]>(size);
    m_list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.get());
    m_made = InitializeProcThreadAttributeList(m_list, 1, 0, &size) != 0;
    m_filled = m_made && UpdateProcThreadAttribute(m_list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                                   m_handles.size() * sizeof(HANDLE), nullptr, nullptr) != 0;
  }
  InheritedHandles(const InheritedHandles&) = delete;
  InheritedHandles& operator=(const InheritedHandles&) = delete;
  ~InheritedHandles() {
    if (m_made) DeleteProcThreadAttributeList(m_list);
  }
  LPPROC_THREAD_ATTRIBUTE_LIST List() const { return m_filled ? m_list : nullptr; }

 private:
  std::vector<HANDLE> m_handles;
  std::unique_ptr<std::byte[]> m_memory;
  LPPROC_THREAD_ATTRIBUTE_LIST m_list = nullptr;
  bool m_made = false;
  bool m_filled = false;
};

using Handle = std::unique_ptr<void, decltype(&CloseHandle)>;

/// A token of this process's user without privileges, in which being an administrator only counts against it. Null,
/// with the error in GetLastError, if the system refuses.
Handle RestrictedToken() {
  HANDLE own = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY | TOKEN_ASSIGN_PRIMARY, &own)) {
    return {nullptr, &CloseHandle};
  }
  const Handle closed(own, &CloseHandle);
  BYTE administrators[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof administrators;
  HANDLE restricted = nullptr;
  if (CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size)) {
    SID_AND_ATTRIBUTES denied{administrators, 0};
    CreateRestrictedToken(own, DISABLE_MAX_PRIVILEGE, 1, &denied, 0, nullptr, 0, nullptr, &restricted);
  }
  return {restricted, &CloseHandle};
}

/// The job that holds a child with these options and all that it starts; null if the system refuses.
HANDLE MakeJob(const StartOptions& options) {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  if (job == nullptr) return nullptr;
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  if (options.MostMemory > 0) {
    limits.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_PROCESS_MEMORY;
    limits.ProcessMemoryLimit = static_cast<SIZE_T>(options.MostMemory);
  }
  if (options.LeastRights) {
    limits.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_ACTIVE_PROCESS;
    limits.BasicLimitInformation.ActiveProcessLimit = 1;
  }
  if (limits.BasicLimitInformation.LimitFlags != 0) {
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  }
  return job;
}

}  // namespace

std::string CrashCause(const ProcessEnd& end) {
  // A process that an exception ends exits with the exception's code: the first four bits are 0xC for one of the
  // system's, 0xE for one of the program's own. -1 begins with 0xF.
  const auto code = static_cast<uint32_t>(end.ExitCode);
  if (code >> 28 != 0xC && code >> 28 != 0xE) return "";
  char text[11];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(code));
  return std::string("exception ") + text;
}

struct ChildProcess::State {
  HANDLE Process = nullptr;
  HANDLE Job = nullptr;  // holds the child and all that it starts

  ~State() {
    if (Process != nullptr) CloseHandle(Process);
    if (Job != nullptr) CloseHandle(Job);
  }
};

ChildProcess::ChildProcess() : m_state(std::make_unique<State>()) {}
ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&&) noexcept = default;
ChildProcess::~ChildProcess() = default;

std::optional<SystemError> ChildProcess::Start(const Command& command, const PipeEnd& input, const PipeEnd& output,
                                               const StartOptions& options) {
  std::vector<HANDLE> handles{AsHandle(output)};
  if (input.IsOpen()) handles.push_back(AsHandle(input));
  const InheritedHandles inherited(handles);
  if (inherited.List() == nullptr) return LastError();
  STARTUPINFOEXW startup{};
  startup.StartupInfo.cb = sizeof startup;
  startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
  startup.StartupInfo.wShowWindow = SW_HIDE;
  startup.StartupInfo.hStdInput = AsHandle(input);
  startup.StartupInfo.hStdOutput = AsHandle(output);
  startup.StartupInfo.hStdError = options.Errors == ErrorOutput::WithOutput ? AsHandle(output) : nullptr;
  startup.lpAttributeList = inherited.List();
  // The program's file is named beside the line: nothing is searched for, and no blank in its path ends it early.
  const std::filesystem::path program = core::NativePath(command.Program);
  std::wstring line = Wide(WindowsLine(command));
  PROCESS_INFORMATION process{};
  // Suspended, so that nothing it starts can escape the job.
  constexpr DWORD Flags = EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED;
  BOOL started = FALSE;
  if (options.LeastRights) {
    const Handle token = RestrictedToken();
    if (!token) return LastError();
    started = CreateProcessAsUserW(token.get(), program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                   Flags | CREATE_NO_WINDOW, nullptr, nullptr, &startup.StartupInfo, &process);
  } else {
    started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, Flags, nullptr, nullptr,
                             &startup.StartupInfo, &process);
  }
  if (!started) return LastError();
  m_state->Process = process.hProcess;
  m_state->Job = MakeJob(options);
  if (m_state->Job != nullptr) AssignProcessToJobObject(m_state->Job, process.hProcess);
  ResumeThread(process.hThread);
  CloseHandle(process.hThread);
  return std::nullopt;
}

bool ChildProcess::HasEnded() {
  return m_state->Process == nullptr || WaitForSingleObject(m_state->Process, 0) == WAIT_OBJECT_0;
}

void ChildProcess::Terminate() {
  Kill();
}

void ChildProcess::Kill() {
  constexpr UINT StoppedExitCode = 1;
  if (m_state->Process == nullptr) return;
  if (m_state->Job != nullptr) TerminateJobObject(m_state->Job, StoppedExitCode);
  TerminateProcess(m_state->Process, StoppedExitCode);
}

std::optional<ProcessEnd> ChildProcess::Collect() {
  if (m_state->Process == nullptr || !HasEnded()) return std::nullopt;
  DWORD exitCode = 0;
  GetExitCodeProcess(m_state->Process, &exitCode);
  CloseHandle(std::exchange(m_state->Process, nullptr));
  return ProcessEnd{static_cast<int>(exitCode), 0};
}

std::optional<SystemError> StartDetached(const Command& command, const StartOptions&) {
  // Results above 32 mean success; the others are error codes.
  constexpr INT_PTR LastShellError = 32;
  const std::filesystem::path program = core::NativePath(command.Program);
  const std::wstring parameters = Wide(WindowsArguments(command));
  const auto result = reinterpret_cast<INT_PTR>(
      ShellExecuteW(nullptr, L"open", program.c_str(), parameters.c_str(), nullptr, SW_SHOWNORMAL));
  if (result > LastShellError) return std::nullopt;
  return ErrorOf(static_cast<int>(result));
}

}  // namespace tarnwick::process
