#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tarnwick::tools {

/// Cuts a tool's output, which comes in pieces, into its lines: without line feeds and without carriage returns.
class LineSplitter {
 public:
  using OnLine = std::function<void(const std::string& line)>;

  explicit LineSplitter(OnLine onLine) : m_onLine(std::move(onLine)) {}

  void Feed(std::string_view piece) {
    for (const char c : piece) {
      if (c == '\n') {
        Cut();
      } else if (c != '\r') {
        m_line += c;
      }
    }
  }
  /// Hands over a last line that has no line feed.
  void Finish() {
    if (!m_line.empty()) Cut();
  }

 private:
  void Cut() {
    m_onLine(m_line);
    m_line.clear();
  }

  OnLine m_onLine;
  std::string m_line;
};

}  // namespace tarnwick::tools
