#include <windows.h>

#include <string>
#include <string_view>

#include "process/pipe_end.h"

namespace tarnwick::process {

namespace {

std::string InUtf8(std::wstring_view text) {
  const auto convert = [&](char* target, int size) {
    return WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), target, size, nullptr, nullptr);
  };
  std::string converted(static_cast<size_t>(convert(nullptr, 0)), 0);
  convert(converted.data(), static_cast<int>(converted.size()));
  return converted;
}

HANDLE AsHandle(const PipeEnd& end) {
  return reinterpret_cast<HANDLE>(end.Handle());
}

SystemError LastError() {
  return ErrorOf(static_cast<int>(GetLastError()));
}

}  // namespace

SystemError ErrorOf(int code) {
  // Not every system has its messages in its default language; without one it searches for itself.
  constexpr DWORD Searched = 0;
  SystemError error{code, {}};
  for (const DWORD language : {DWORD{LANG_SYSTEM_DEFAULT}, Searched}) {
    wchar_t* text = nullptr;
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, static_cast<DWORD>(code), language, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (size == 0) continue;
    error.Message = InUtf8({text, size});
    LocalFree(text);
    break;
  }
  while (error.Message.ends_with('\n') || error.Message.ends_with('\r')) error.Message.pop_back();
  return error;
}

std::optional<SystemError> PipeEnd::Close() {
  if (!IsOpen()) return std::nullopt;
  HANDLE handle = AsHandle(*this);
  m_handle = None;
  if (!CloseHandle(handle)) return LastError();
  return std::nullopt;
}

std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write) {
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof attributes;
  attributes.bInheritHandle = TRUE;
  HANDLE ends[2];
  if (!CreatePipe(&ends[0], &ends[1], &attributes, 0)) return LastError();
  read = PipeEnd(reinterpret_cast<intptr_t>(ends[0]));
  write = PipeEnd(reinterpret_cast<intptr_t>(ends[1]));
  return std::nullopt;
}

std::optional<SystemError> StopInheriting(PipeEnd& end) {
  if (!SetHandleInformation(AsHandle(end), HANDLE_FLAG_INHERIT, 0)) return LastError();
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

}  // namespace tarnwick::process
