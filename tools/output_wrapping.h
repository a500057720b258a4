#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::tools {

// GCC 12 takes the enumerators, which are scoped, for ones that hide the tools of the same names.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#endif
/// The runs of console tools that the program makes.
enum class ToolRun { StudiomdlForm, StudiomdlExistingQc, Vtex, Vtf2tga };
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

/// How a run's output is captured and shown.
struct ToolRunRule {
  int32_t BufferBytes;          // what is captured for the text, its NUL included
  int32_t ScanLimit;            // bytes of the buffer that are shown
  bool CarriageReturnRestarts;  // whether a line end of the tool's restarts the count to the next break
};

/// The rule of `run`.
const ToolRunRule& RuleOf(ToolRun run);

/// Makes the text that is shown of a tool's output, piece by piece: every line end \r\n, a line broken behind the
/// first blank that comes after 80 characters. A line end counts as one character; where the rule does not restart the
/// count there, it runs on across the tool's own lines. Ends at a NUL and at the rule's limit.
class OutputWrapper {
 public:
  explicit OutputWrapper(const ToolRunRule& rule);

  /// The text for the next piece of output. Pieces may end anywhere.
  std::string Wrap(std::string_view piece);

  /// Bytes of the output that the text so far stands for.
  size_t Shown() const { return m_shown; }

 private:
  void CountCharacter(char last, std::string& text);

  ToolRunRule m_rule;
  size_t m_limit;  // bytes of the output that can be shown at most
  size_t m_shown = 0;
  int m_column = 0;
  bool m_afterCarriageReturn = false;
  bool m_ended = false;
};

/// The text that is shown for a finished run: the command line, \r\n, and the output in `buffer` (up to its NUL)
/// wrapped by `rule`. `shownBytes`, if given, gets how much of the output that is.
std::string DisplayText(std::string_view commandLine, std::string_view buffer, const ToolRunRule& rule,
                        size_t* shownBytes = nullptr);

}  // namespace tarnwick::tools
