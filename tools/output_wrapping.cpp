#include "tools/output_wrapping.h"

#include <algorithm>

namespace tarnwick::tools {

namespace {

/// A line is broken at the first blank past this many characters.
constexpr int BreakColumn = 80;

constexpr ToolRunRule Rules[] = {
    {65536, 65536, false},  // StudiomdlForm
    {4096, 4096, false},    // StudiomdlExistingQc
    {4096, 4096, true},     // Vtex
    {4096, 2000, false},    // Vtf2tga
};

}  // namespace

const ToolRunRule& RuleOf(ToolRun run) {
  return Rules[static_cast<size_t>(run)];
}

OutputWrapper::OutputWrapper(const ToolRunRule& rule)
    : m_rule(rule), m_limit(static_cast<size_t>(std::min(rule.BufferBytes - 1, rule.ScanLimit))) {}

std::string OutputWrapper::Wrap(std::string_view piece) {
  std::string text;
  for (const char c : piece) {
    if (m_ended || c == 0 || m_shown >= m_limit) {
      m_ended = true;
      break;
    }
    ++m_shown;
    if (m_afterCarriageReturn) {
      // The line feed of a pair: the carriage return wrote both, and the pair is looked at as a whole here.
      m_afterCarriageReturn = false;
      CountCharacter(c, text);
    } else if (c == '\r') {
      text += "\r\n";
      if (m_rule.CarriageReturnRestarts) m_column = 0;
      m_afterCarriageReturn = true;
    } else {
      text += c;
      CountCharacter(c, text);
    }
  }
  return text;
}

/// Counts one character, or one pair, whose last byte is `last`.
void OutputWrapper::CountCharacter(char last, std::string& text) {
  ++m_column;
  if (m_column > BreakColumn && last == ' ') {
    text += "\r\n";
    m_column = 0;
  }
}

std::string DisplayText(std::string_view commandLine, std::string_view buffer, const ToolRunRule& rule,
                        size_t* shownBytes) {
  OutputWrapper wrapper(rule);
  std::string text(commandLine);
  text += "\r\n";
  text += wrapper.Wrap(buffer);
  if (shownBytes != nullptr) *shownBytes = wrapper.Shown();
  return text;
}

}  // namespace tarnwick::tools
