#include "core/command_line.h"

#ifdef _WIN32
#include <windows.h>
// <windows.h> first: the other headers of the system need it.
#include <shellapi.h>

#include <filesystem>

#include "core/paths.h"
#endif

namespace tarnwick::core {

#ifdef _WIN32

namespace {

std::vector<std::string> SystemWords() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int i = 0; words != nullptr && i < count; ++i) {
    const std::u8string text = std::filesystem::path(words[i]).u8string();
    texts.emplace_back(text.begin(), text.end());
  }
  LocalFree(words);
  return texts;
}

/// Old consoles print the sequences instead of following them unless they are told.
void FollowSequences(DWORD stream) {
  const HANDLE handle = GetStdHandle(stream);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode)) SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

CommandLine::CommandLine(int count, const char* const* arguments) : m_words(SystemWords()) {
  if (m_words.empty()) m_words.assign(arguments, arguments + count);
  for (const std::string& word : m_words) m_pointers.push_back(word.c_str());
  m_pointers.push_back(nullptr);
  m_codePage = GetConsoleOutputCP();
  if (m_codePage != 0) SetConsoleOutputCP(CP_UTF8);
  FollowSequences(STD_OUTPUT_HANDLE);
  FollowSequences(STD_ERROR_HANDLE);
}

CommandLine::~CommandLine() {
  if (m_codePage != 0) SetConsoleOutputCP(m_codePage);
}

#else

CommandLine::CommandLine(int count, const char* const* arguments) : m_words(arguments, arguments + count) {
  for (const std::string& word : m_words) m_pointers.push_back(word.c_str());
  m_pointers.push_back(nullptr);
}

CommandLine::~CommandLine() = default;

#endif

std::vector<std::string> CommandLine::Arguments() const {
  return {m_words.begin() + (m_words.empty() ? 0 : 1), m_words.end()};
}

}  // namespace tarnwick::core
