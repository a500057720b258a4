#pragma once

#include <cstdint>
#include <string_view>

namespace tarnwick::qc {

/// Where a word stands: in file `File` of the script, at a line and a column that count from 1 (a column is a byte).
/// `From` is 0 in the script itself, or 1 + the number of the origin (an include, a macro's use) that brought it there.
struct Place {
  uint32_t File = 0;
  uint32_t Line = 0;
  uint32_t Column = 0;
  uint32_t From = 0;
};

/// One word of a script. `Text` is without its quotes; it lies in the script's files or in its store of made texts.
struct Word {
  std::string_view Text;
  Place At;
  bool Quoted = false;
  bool FirstOfLine = false;

  /// Whether this is the bare word `text` of one letter, as braces are.
  bool Is(char c) const { return !Quoted && Text.size() == 1 && Text[0] == c; }
};

/// Cuts a text into words. Bytes up to the blank part words, also a NUL. A quote makes one word up to the next quote;
/// without one it ends with its line. There are no escapes.
///
/// A script has comments `//`, `;` and `/* */` anywhere outside of quotes, `#` at the start of a word; braces outside
/// of quotes are words of their own, glued or not. `//` within a bare path is a doubled separator: between letters of a
/// word that ends as files do (`props//crate.smd`), or on a line that names folders (`$cdmaterials models//props`). A
/// VRD text has comments `//` alone and no braces.
class WordScanner {
 public:
  enum class Dialect { Script, Vrd };

  WordScanner(std::string_view text, uint32_t file, Dialect dialect = Dialect::Script);

  /// The next word into `word`; false at the text's end.
  bool Next(Word& word);
  /// Whether the last word was a quote that its line does not close.
  bool OpenQuote() const { return m_openQuote; }
  /// Where a block comment began that the text does not close; Line 0 if none did.
  Place OpenComment() const { return m_openComment; }

 private:
  bool SkipBlanks();
  void SkipBlockComment();
  bool BeginsComment(size_t at, bool startOfWord) const;
  bool IsDoubledSeparator(size_t at) const;
  size_t EndOfBareWord() const;
  Place Here() const;
  char At(size_t at) const { return at < m_text.size() ? m_text[at] : '\0'; }

  std::string_view m_text;
  size_t m_at = 0;
  size_t m_lineStart = 0;
  uint32_t m_file;
  uint32_t m_line = 1;
  Dialect m_dialect;
  bool m_firstOfLine = true;
  bool m_openQuote = false;
  bool m_namesFolders = false;  // whether the line began with a statement of folders
  Place m_openComment;
};

}  // namespace tarnwick::qc
