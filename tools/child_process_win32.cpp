#ifdef _WIN32

#include <windows.h>
// <windows.h> first: the other headers of the system need it.
#include <shellapi.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "core/paths.h"
#include "tools/child_process.h"

namespace tarnwick::tools {

namespace {

std::string InUtf8(std::wstring_view text) {
  const auto convert = [&](char* target, int size) {
    return WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), target, size, nullptr, nullptr);
  };
  std::string converted(static_cast<size_t>(convert(nullptr, 0)), 0);
  convert(converted.data(), static_cast<int>(converted.size()));
  return converted;
}

SystemError LastError(DWORD code) {
  // Not every system has its messages in its default language; without one it searches for itself.
  constexpr DWORD Searched = 0;
  SystemError error{static_cast<int>(code), {}};
  for (const DWORD language : {DWORD{LANG_SYSTEM_DEFAULT}, Searched}) {
    wchar_t* text = nullptr;
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, language, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (size == 0) continue;
    error.Message = InUtf8({text, size});
    LocalFree(text);
    break;
  }
  while (error.Message.ends_with('\n') || error.Message.ends_with('\r')) error.Message.pop_back();
  return error;
}

HANDLE AsHandle(const PipeEnd& end) {
  return reinterpret_cast<HANDLE>(end.Handle());
}

/// UTF-8, the program's own form of text, in the code page of the calls that end in A.
std::string InSystemCodePage(const std::string& text) {
  const std::wstring wide = core::NativePath(text).wstring();
  const int size =
      WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr);
  std::string converted(static_cast<size_t>(size), 0);
  WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), converted.data(), size, nullptr, nullptr);
  return converted;
}

/// The list that lets a child inherit just the two handles it is given, whatever else another thread makes
/// inheritable at the same time.
class InheritedHandles {
 public:
  InheritedHandles(HANDLE first, HANDLE second) : m_handles{first, second} {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    m_memory = std::make_unique<std::byte[]>(size);
    m_list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.get());
    m_made = InitializeProcThreadAttributeList(m_list, 1, 0, &size) != 0;
    m_filled = m_made && UpdateProcThreadAttribute(m_list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                                   sizeof m_handles, nullptr, nullptr) != 0;
  }
  InheritedHandles(const InheritedHandles&) = delete;
  InheritedHandles& operator=(const InheritedHandles&) = delete;
  ~InheritedHandles() {
    if (m_made) DeleteProcThreadAttributeList(m_list);
  }
  LPPROC_THREAD_ATTRIBUTE_LIST List() const { return m_filled ? m_list : nullptr; }

 private:
  std::array<HANDLE, 2> m_handles;
  std::unique_ptr<std::byte[]> m_memory;
  LPPROC_THREAD_ATTRIBUTE_LIST m_list = nullptr;
  bool m_made = false;
  bool m_filled = false;
};

}  // namespace

std::optional<SystemError> PipeEnd::Close() {
  if (!IsOpen()) return std::nullopt;
  HANDLE handle = AsHandle(*this);
  m_handle = None;
  if (!CloseHandle(handle)) return LastError(GetLastError());
  return std::nullopt;
}

std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write) {
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof attributes;
  attributes.bInheritHandle = TRUE;
  HANDLE ends[2];
  if (!CreatePipe(&ends[0], &ends[1], &attributes, 0)) return LastError(GetLastError());
  read = PipeEnd(reinterpret_cast<intptr_t>(ends[0]));
  write = PipeEnd(reinterpret_cast<intptr_t>(ends[1]));
  return std::nullopt;
}

std::optional<SystemError> StopInheriting(PipeEnd& end) {
  if (!SetHandleInformation(AsHandle(end), HANDLE_FLAG_INHERIT, 0)) return LastError(GetLastError());
  return std::nullopt;
}

void WriteToPipe(PipeEnd& end, const char* bytes, size_t size) {
  DWORD written = 0;
  WriteFile(AsHandle(end), bytes, static_cast<DWORD>(size), &written, nullptr);
}

PipeRead ReadFromPipe(PipeEnd& end, char* target, size_t size, std::chrono::milliseconds wait) {
  // An anonymous pipe cannot be waited on: look, and sleep a little between two looks.
  constexpr DWORD Step = 2;
  DWORD waited = 0;
  DWORD available = 0;
  while (PeekNamedPipe(AsHandle(end), nullptr, 0, nullptr, &available, nullptr) && available == 0) {
    if (waited >= static_cast<DWORD>(wait.count())) return {PipeRead::Kind::Nothing, 0};
    Sleep(Step);
    waited += Step;
  }
  DWORD got = 0;
  if (available == 0 || !ReadFile(AsHandle(end), target, static_cast<DWORD>(size), &got, nullptr) || got == 0) {
    return {PipeRead::Kind::End, 0};
  }
  return {PipeRead::Kind::Bytes, got};
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

std::optional<SystemError> ChildProcess::Start(const std::string& commandLine, const PipeEnd& input,
                                               const PipeEnd& output, const StartSettings&) {
  const InheritedHandles inherited(AsHandle(input), AsHandle(output));
  if (inherited.List() == nullptr) return LastError(GetLastError());
  STARTUPINFOEXA startup{};
  startup.StartupInfo.cb = sizeof startup;
  startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
  startup.StartupInfo.wShowWindow = SW_HIDE;
  startup.StartupInfo.hStdInput = AsHandle(input);
  startup.StartupInfo.hStdOutput = AsHandle(output);
  startup.StartupInfo.hStdError = AsHandle(output);
  startup.lpAttributeList = inherited.List();
  std::string line = InSystemCodePage(commandLine);
  PROCESS_INFORMATION process{};
  // Suspended, so that nothing it starts can escape the job.
  if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED,
                      nullptr, nullptr, &startup.StartupInfo, &process)) {
    return LastError(GetLastError());
  }
  m_state->Process = process.hProcess;
  m_state->Job = CreateJobObjectA(nullptr, nullptr);
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

std::optional<SystemError> LaunchDetached(const std::string& program, const std::string& parameters,
                                          const StartSettings&) {
  // Results above 32 mean success; the others are error codes.
  constexpr INT_PTR LastShellError = 32;
  const auto result =
      reinterpret_cast<INT_PTR>(ShellExecuteA(nullptr, "open", InSystemCodePage(program).c_str(),
                                              InSystemCodePage(parameters).c_str(), nullptr, SW_SHOWNORMAL));
  if (result > LastShellError) return std::nullopt;
  return LastError(static_cast<DWORD>(result));
}

}  // namespace tarnwick::tools

#endif
