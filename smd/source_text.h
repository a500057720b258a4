#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/vector_code.h"
#include "smd/number_line.h"
#include "smd/smd_source.h"
#include "smd/source_number.h"

namespace tarnwick::smd {

/// A place in the text of an SMD or VTA file, which goes on line by line and, in a line, word by word. `//`, `#` and
/// `;` begin a comment wherever a word could begin.
class SourceText {
 public:
  /// Messages go to `messages`, 50 at most of each kind. The text must outlive this.
  SourceText(std::string_view text, std::vector<SourceMessage>& messages, core::VectorLevel level)
      : m_text(text),
        m_at(text.data()),
        m_end(text.data() + text.size()),
        m_messages(messages),
        m_vectors(level >= core::VectorLevel::Avx2) {}

  /// Goes to the first word of the next line; false at the text's end.
  bool NextLine() {
    if (m_begun) {
      while (m_at < m_end && !IsLineEnd(*m_at)) ++m_at;
      if (m_at == m_end) return false;
      const char first = *m_at++;
      if (first == '\r' && m_at < m_end && *m_at == '\n') ++m_at;
    }
    m_begun = true;
    if (m_at == m_end) return false;
    ++m_line;
    SkipBlanks();
    return true;
  }
  /// Goes to the next line if it begins with so many numbers; false, and stays where it is, if it does not.
  bool NextLineOfNumbers(int count);
  /// Whether the line, or what is not a comment of it, ends here.
  bool AtEnd() {
    SkipBlanks();
    if (m_at == m_end || IsLineEnd(*m_at) || *m_at == '#' || *m_at == ';') return true;
    return *m_at == '/' && m_at + 1 < m_end && m_at[1] == '/';
  }
  /// Whether a number may begin here, which is not the line's end.
  bool AtNumber() const { return IsDigit(*m_at) || *m_at == '-'; }
  size_t BytesLeft() const { return static_cast<size_t>(m_end - m_at); }

  /// What stands up to the next blank; empty at the line's end.
  std::string_view Word();
  /// Passes over the line's only word if that is "end" or begins the line.
  bool TakeEnd();
  /// A word, which may hold blanks if it stands in quotes.
  std::string_view Name();
  /// The rest of the line without blanks at its ends.
  std::string_view Rest();
  /// Passes over the rest of the line if it is `line` and nothing else.
  bool TakeRest(std::string_view line) {
    if (BytesLeft() <= line.size() || std::memcmp(m_at, line.data(), line.size()) != 0) return false;
    if (!IsLineEnd(m_at[line.size()])) return false;
    m_at += line.size();
    return true;
  }

  /// A whole number, also one with a fraction. False where the line ends.
  bool Int(int32_t& value);
  /// A number; one that is not finite, or none, counts as 0 and is told, and so is what is read in part. False where
  /// the line ends.
  bool Float(float& value);
  /// So many numbers; false where the line ends too early.
  bool Floats(std::span<float> values);
  /// The whole line in one go, up to its end; false, and nothing is passed over, where `kind` has to be read number by
  /// number.
  bool TakeNumberLine([[maybe_unused]] NumberLineKind kind, [[maybe_unused]] NumberLine& line) {
    const char* after = nullptr;
#if TARNWICK_HAS_AVX_CODE
    if (m_vectors) after = ReadNumberLineAvx2(m_text, m_at, kind, line);
#endif
    m_at = after != nullptr ? after : m_at;
    return after != nullptr;
  }

  /// Adds a message about this line.
  void Tell(bool error, std::string text);

 private:
  void SkipBlanks() {
    while (m_at < m_end && IsBlank(*m_at)) ++m_at;
  }

  [[maybe_unused]] std::string_view m_text;
  const char* m_at;
  const char* m_end;
  std::vector<SourceMessage>& m_messages;
  int64_t m_line = 0;
  bool m_begun = false;
  [[maybe_unused]] bool m_vectors;
};

}  // namespace tarnwick::smd
