#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "core/trouble.h"

namespace tarnwick::cli {

/// Whether the program's standard error goes to a terminal.
bool ErrorIsTerminal();

/// The streams that may go to a terminal.
enum class TerminalStream { Output, Error };

/// Characters in a line of the terminal that the stream goes to: what the variable COLUMNS says, else the terminal
/// itself; 80 where neither does.
size_t TerminalColumns(TerminalStream stream);

/// `text` with its \r\n as this platform's streams want line ends.
std::string PlainLines(std::string_view text);

/// `text` in one line: its line ends as blanks, none at the end.
std::string OneLine(std::string_view text);

/// A trouble in one line: caption, text and cause.
std::string LineOf(const core::Trouble& trouble);

/// A line at the bottom of a terminal that is drawn over and over; nothing where there is no terminal.
class ProgressLine {
 public:
  ProgressLine(std::ostream& out, bool shown) : m_out(out), m_shown(shown) {}
  ~ProgressLine() { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Shows how many of `all` are done, and a name behind it, cut at its start to what the terminal has room for.
  void Show(size_t done, size_t all, std::string_view name);
  /// Whether there is such a line at all.
  bool IsShown() const { return m_shown; }
  /// Takes the line away, so that other lines can be printed.
  void Clear();

 private:
  std::ostream& m_out;
  bool m_shown;
  bool m_drawn = false;
};

}  // namespace tarnwick::cli
