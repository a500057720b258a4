#include <windows.h>

#include <filesystem>
#include <thread>

#include "core/paths.h"
#include "images/child_process.h"

namespace tarnwick::images {

namespace {

std::string LastErrorText() {
  return std::error_code(static_cast<int>(GetLastError()), std::system_category()).message();
}

/// `argument` as the C runtime of the child takes it apart again.
std::wstring Quoted(const std::wstring& argument) {
  std::wstring text = L"\"";
  size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'\\') {
      ++backslashes;
    } else {
      if (c == L'"') text.append(backslashes + 1, L'\\');
      backslashes = 0;
    }
    text += c;
  }
  text.append(backslashes, L'\\');
  return text + L"\"";
}

}  // namespace

// A plain child: Windows gets no jail yet, but a crash or a hang of the decoder stays in the child here as well.
ChildResult RunChild(const std::string& program, const std::vector<std::string>& arguments, size_t mostOutput,
                     int seconds) {
  ChildResult result;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
  if (!CreatePipe(&reading, &writing, &inherited, 0)) {
    result.Reason = LastErrorText();
    return result;
  }
  SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);

  const std::filesystem::path path = core::NativePath(program);
  std::wstring line = Quoted(path.wstring());
  for (const std::string& argument : arguments) line += L" " + Quoted(core::NativePath(argument).wstring());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = writing;
  PROCESS_INFORMATION child{};
  const BOOL started = CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                      nullptr, &start, &child);
  if (!started) result.Reason = LastErrorText();
  CloseHandle(writing);
  if (!started) {
    CloseHandle(reading);
    return result;
  }

  // The pipe ends with the child, so a child that runs too long is ended from the side.
  std::jthread watch([&child, seconds, &result] {
    if (WaitForSingleObject(child.hProcess, static_cast<DWORD>(seconds) * 1000) != WAIT_TIMEOUT) return;
    result.Ending = ChildResult::End::TimedOut;
    TerminateProcess(child.hProcess, 1);
  });
  char block[65536];
  DWORD size = 0;
  bool tooMuch = false;
  while (ReadFile(reading, block, sizeof block, &size, nullptr) && size > 0) {
    result.Output.append(block, size);
    if (result.Output.size() <= mostOutput) continue;
    tooMuch = true;
    TerminateProcess(child.hProcess, 1);
    break;
  }
  watch.join();

  DWORD code = 0;
  GetExitCodeProcess(child.hProcess, &code);
  if (tooMuch) {
    result.Ending = ChildResult::End::TooMuch;
    result.Reason = "it answered too much";
  } else if (result.Ending == ChildResult::End::TimedOut) {
    result.Reason = "it took too long";
  } else if (code >= 0x80000000u) {  // an exception's number: an access violation and its like
    result.Ending = ChildResult::End::Killed;
    result.Reason = "it was ended by the system";
  } else {
    result.Ending = ChildResult::End::Exited;
  }
  CloseHandle(reading);
  CloseHandle(child.hThread);
  CloseHandle(child.hProcess);
  return result;
}

}  // namespace tarnwick::images
