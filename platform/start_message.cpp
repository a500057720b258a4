#include "platform/start_message.h"

#include <cstdio>

#ifdef _WIN32
#include <windows.h>

#include "platform/text.h"
#endif

namespace tarnwick::platform {

#ifdef _WIN32

namespace {

/// Whether somebody reads the stream: a file or a pipe was handed to the program.
bool IsRedirected(StartStream stream) {
  const HANDLE handle = GetStdHandle(stream == StartStream::Error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return false;
  const DWORD type = GetFileType(handle);
  return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE;
}

bool WriteOnStartersConsole(const std::wstring& text) {
  if (!AttachConsole(ATTACH_PARENT_PROCESS)) return false;
  const HANDLE console =
      CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  DWORD written = 0;
  const bool isWritten = console != INVALID_HANDLE_VALUE &&
                         WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0;
  if (console != INVALID_HANDLE_VALUE) CloseHandle(console);
  FreeConsole();
  return isWritten;
}

}  // namespace

void TellAtStart(const std::string& text, StartStream stream, const std::string& caption) {
  const bool isError = stream == StartStream::Error;
  if (IsRedirected(stream)) {
    std::FILE* const file = isError ? stderr : stdout;
    std::fputs(text.c_str(), file);
    std::fflush(file);
    return;
  }
  const std::wstring wide = ToQt(text).toStdWString();
  if (WriteOnStartersConsole(wide)) return;
  const UINT look = isError ? UINT{MB_ICONERROR} : UINT{MB_ICONINFORMATION};
  MessageBoxW(nullptr, wide.c_str(), ToQt(caption).toStdWString().c_str(), MB_OK | look);
}

#else

void TellAtStart(const std::string& text, StartStream stream, const std::string& /*caption*/) {
  std::FILE* const file = stream == StartStream::Error ? stderr : stdout;
  std::fputs(text.c_str(), file);
  std::fflush(file);
}

#endif

}  // namespace tarnwick::platform
