#include "cli/terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace tarnwick::cli {

bool ErrorIsTerminal() {
#ifdef _WIN32
  return _isatty(2) != 0;
#else
  return isatty(2) != 0;
#endif
}

namespace {

/// What the terminal itself says; 0 where there is none.
size_t AskedColumns(TerminalStream stream) {
#ifdef _WIN32
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const DWORD handle = stream == TerminalStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE;
  if (GetConsoleScreenBufferInfo(GetStdHandle(handle), &info) == 0) return 0;
  return static_cast<size_t>(info.srWindow.Right - info.srWindow.Left + 1);
#else
  winsize size{};
  const int file = stream == TerminalStream::Output ? STDOUT_FILENO : STDERR_FILENO;
  return ioctl(file, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
#endif
}

/// The last `count` bytes of `name` at most, from the start of a character on.
std::string_view EndOf(std::string_view name, size_t count) {
  std::string_view end = name.substr(name.size() - std::min(count, name.size()));
  while (end.size() < name.size() && !end.empty() && (static_cast<unsigned char>(end.front()) & 0xC0) == 0x80) {
    end.remove_prefix(1);
  }
  return end;
}

}  // namespace

size_t TerminalColumns(TerminalStream stream) {
  constexpr size_t Usual = 80;
  constexpr size_t Least = 20;  // what claims to be narrower is no terminal to read in
  size_t columns = 0;
  if (const char* const told = std::getenv("COLUMNS")) {
    const std::string_view text = told;
    std::from_chars(text.data(), text.data() + text.size(), columns);
  }
  if (columns < Least) columns = AskedColumns(stream);
  return columns < Least ? Usual : columns;
}

std::string PlainLines(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') plain += text[i];
  }
  return plain;
}

std::string OneLine(std::string_view text) {
  std::string line = PlainLines(text.substr(0, text.find_last_not_of("\r\n ") + 1));
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

std::string LineOf(const core::Trouble& trouble) {
  std::string line = trouble.Caption.empty() ? "" : trouble.Caption + ": ";
  line += OneLine(trouble.Text);
  if (!trouble.Details.empty()) line += ": " + OneLine(trouble.Details);
  return line;
}

void ProgressLine::Show(size_t done, size_t all, std::string_view name) {
  if (!m_shown) return;
  constexpr size_t WidestBar = 24;
  constexpr size_t LongestName = 48;
  // A line that the terminal would break could not be cleared again; its last column stays free, where the cursor is.
  const size_t columns = TerminalColumns(TerminalStream::Error) - 1;
  const std::string count = std::to_string(done) + '/' + std::to_string(all);
  const size_t width = std::min(WidestBar, columns / 3);
  const size_t filled = all == 0 ? width : width * done / all;
  std::string line = '[' + std::string(filled, '#') + std::string(width - filled, '.') + "] " + count;
  const size_t room = line.size() + 1 < columns ? std::min(LongestName, columns - line.size() - 1) : 0;
  if (name.size() <= room) {
    line.append(" ").append(name);
  } else if (room > 3) {
    line.append(" ...").append(EndOf(name, room - 3));
  }
  m_out << "\r\033[K" << line << std::flush;
  m_drawn = true;
}

void ProgressLine::Clear() {
  if (m_drawn) m_out << "\r\033[K" << std::flush;
  m_drawn = false;
}

}  // namespace tarnwick::cli
