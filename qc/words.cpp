#include "qc/words.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/paths.h"

namespace tarnwick::qc {

namespace {

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

/// A letter of a file's name, as far as it takes no quotes.
bool IsNameLetter(char c) {
  return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_' || c == '-' || c == '.' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// Whether what follows the word on its line are names of folders, or a path that is no file of the disk.
bool NamesFolders(std::string_view word) {
  constexpr std::string_view Statements[] = {"$cdmaterials", "$modelname",    "$cd",
                                             "$pushd",       "$addsearchdir", "$includemodel"};
  return std::any_of(std::begin(Statements), std::end(Statements),
                     [&](std::string_view s) { return core::EqualIgnoringCase(s, word); });
}

bool EndsAsAFile(std::string_view path) {
  constexpr std::string_view Endings[] = {".smd", ".vta", ".vrd", ".qci", ".dmx", ".mdl", ".qc", ".sma"};
  return std::any_of(std::begin(Endings), std::end(Endings), [&](std::string_view ending) {
    return path.size() > ending.size() && core::EqualIgnoringCase(path.substr(path.size() - ending.size()), ending);
  });
}

}  // namespace

WordScanner::WordScanner(std::string_view text, uint32_t file, Dialect dialect)
    : m_text(text), m_file(file), m_dialect(dialect) {
  constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
  if (m_text.starts_with(ByteOrderMark)) m_at = m_lineStart = ByteOrderMark.size();
}

Place WordScanner::Here() const {
  return {m_file, m_line, static_cast<uint32_t>(std::min<size_t>(m_at - m_lineStart + 1, UINT32_MAX)), 0};
}

bool WordScanner::BeginsComment(size_t at, bool startOfWord) const {
  const char c = m_text[at];
  if (c == '/') {
    if (At(at + 1) == '/') return startOfWord || !IsDoubledSeparator(at);
    return At(at + 1) == '*' && m_dialect == Dialect::Script;
  }
  return m_dialect == Dialect::Script && (c == ';' || (c == '#' && startOfWord));
}

/// Whether the two slashes at `at`, within the word that begins at m_at, part the folders of a path.
bool WordScanner::IsDoubledSeparator(size_t at) const {
  if (m_dialect != Dialect::Script || !IsNameLetter(m_text[at - 1]) || !IsNameLetter(At(at + 2))) return false;
  if (EndsAsAFile(m_text.substr(m_at, at - m_at))) return false;  // a comment behind a file's name
  if (m_namesFolders) return true;
  constexpr size_t LongestPath = 1024;
  const size_t last = std::min(m_text.size(), m_at + LongestPath);
  size_t end = at + 2;
  while (end < last && (IsNameLetter(m_text[end]) || m_text[end] == '/' || m_text[end] == '\\')) ++end;
  return EndsAsAFile(m_text.substr(m_at, end - m_at));
}

void WordScanner::SkipBlockComment() {
  const Place start = Here();
  const size_t close = m_text.find("*/", m_at + 2);
  if (close == std::string_view::npos && m_openComment.Line == 0) m_openComment = start;
  const size_t end = close == std::string_view::npos ? m_text.size() : close + 2;
  for (; m_at < end; ++m_at) {
    const char c = m_text[m_at];
    if (c != '\n' && (c != '\r' || At(m_at + 1) == '\n')) continue;
    ++m_line;
    m_lineStart = m_at + 1;
    m_firstOfLine = true;
  }
}

/// Moves to the next word. False at the end.
bool WordScanner::SkipBlanks() {
  while (m_at < m_text.size()) {
    const char c = m_text[m_at];
    if (c == '\n' || c == '\r') {
      ++m_at;
      if (c == '\r' && At(m_at) == '\n') ++m_at;
      ++m_line;
      m_lineStart = m_at;
      m_firstOfLine = true;
    } else if (IsBlank(c)) {
      ++m_at;
    } else if (!BeginsComment(m_at, true)) {
      return true;
    } else if (c == '/' && m_text[m_at + 1] == '*') {
      SkipBlockComment();
    } else {
      m_at = std::min(m_text.size(), m_text.find_first_of("\r\n", m_at));
    }
  }
  return false;
}

size_t WordScanner::EndOfBareWord() const {
  size_t at = m_at + 1;
  for (; at < m_text.size(); ++at) {
    const char c = m_text[at];
    if (IsBlank(c) || c == '"') break;
    if (m_dialect == Dialect::Script && (c == '{' || c == '}')) break;
    if (c == '/' && At(at + 1) == '/' && !BeginsComment(at, false)) {
      ++at;
      continue;
    }
    if ((c == '/' || c == ';') && BeginsComment(at, false)) break;
  }
  return at;
}

bool WordScanner::Next(Word& word) {
  m_openQuote = false;
  if (!SkipBlanks()) return false;
  word.At = Here();
  word.FirstOfLine = m_firstOfLine;
  m_firstOfLine = false;
  word.Quoted = m_text[m_at] == '"';
  if (word.Quoted) {
    const size_t start = m_at + 1;
    const size_t end = std::min(m_text.size(), m_text.find_first_of("\"\r\n", start));
    m_openQuote = At(end) != '"';
    word.Text = m_text.substr(start, end - start);
    if (word.FirstOfLine) m_namesFolders = NamesFolders(word.Text);
    m_at = m_openQuote ? end : end + 1;
    return true;
  }
  const bool brace = m_dialect == Dialect::Script && (m_text[m_at] == '{' || m_text[m_at] == '}');
  const size_t end = brace ? m_at + 1 : EndOfBareWord();
  word.Text = m_text.substr(m_at, end - m_at);
  if (word.FirstOfLine) m_namesFolders = word.Text.starts_with('$') && NamesFolders(word.Text);
  m_at = end;
  return true;
}

}  // namespace tarnwick::qc
