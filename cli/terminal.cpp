#include "cli/terminal.h"

#include <algorithm>

#ifdef _WIN32
#include <io.h>
#else
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
  constexpr size_t Width = 24;
  constexpr size_t LongestName = 48;
  const size_t filled = all == 0 ? Width : Width * done / all;
  const std::string shown =
      name.size() <= LongestName ? std::string(name) : "..." + std::string(name.substr(name.size() - LongestName + 3));
  m_out << "\r\033[K[" << std::string(filled, '#') << std::string(Width - filled, '.') << "] " << done << '/' << all
        << ' ' << shown << std::flush;
  m_drawn = true;
}

void ProgressLine::Clear() {
  if (m_drawn) m_out << "\r\033[K" << std::flush;
  m_drawn = false;
}

}  // namespace tarnwick::cli
