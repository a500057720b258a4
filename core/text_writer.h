#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/number_text.h"
#include "core/output_file.h"
#include "core/text_pattern.h"

namespace tarnwick::core {

/// What ends a line of a text file on this platform.
#ifdef _WIN32
inline constexpr std::string_view PlatformLineEnd = "\r\n";
#else
inline constexpr std::string_view PlatformLineEnd = "\n";
#endif

/// One argument of TextWriter::Format: text for %s, a whole number for %d, a number for %f.
class TextArgument {
 public:
  enum class Kind { Text, Integer, Float, Double };

  TextArgument(std::string_view text) : m_kind(Kind::Text), m_text(text) {}
  TextArgument(const std::string& text) : m_kind(Kind::Text), m_text(text) {}
  TextArgument(const char* text) : m_kind(Kind::Text), m_text(text) {}
  TextArgument(int32_t value) : m_kind(Kind::Integer), m_integer(value) {}
  TextArgument(uint32_t value) : m_kind(Kind::Integer), m_integer(value) {}
  TextArgument(int64_t value) : m_kind(Kind::Integer), m_integer(value) {}
  TextArgument(float value) : m_kind(Kind::Float), m_float(value) {}
  TextArgument(double value) : m_kind(Kind::Double), m_double(value) {}

  Kind GetKind() const { return m_kind; }
  std::string_view Text() const { return m_text; }
  int64_t Integer() const { return m_integer; }
  float Float() const { return m_float; }
  double Double() const { return m_double; }

 private:
  Kind m_kind;
  union {
    std::string_view m_text;
    int64_t m_integer;
    float m_float;
    double m_double;
  };
};

/// Writes a text file: a buffer of its own in front of the file, "\n" written as the platform's line end, numbers as
/// printf prints them. It never allocates after it was made.
///
/// The target is a file, whose errors stay with it until `OutputFile::Commit`, or a string in memory. Text reaches the
/// target when the buffer is full, a file in whole pages, and the rest with `Flush`, which the destructor also calls.
class TextWriter {
 public:
  explicit TextWriter(OutputFile& target);
  explicit TextWriter(std::string& target);
  TextWriter(const TextWriter&) = delete;
  TextWriter& operator=(const TextWriter&) = delete;
  ~TextWriter();

  /// Text in which every "\n" becomes the platform's line end.
  void Text(std::string_view text);
  /// Bytes as they are, such as text that another writer has made.
  void Raw(std::string_view bytes);
  /// A place for up to `bytes` bytes, far fewer than a buffer holds, which the caller writes itself and then hands over
  /// with `Take`.
  char* Room(size_t bytes) {
    Reserve(bytes);
    return m_next;
  }
  /// Hands over the first `bytes` bytes of the room asked for last.
  void Take(size_t bytes) { m_next += bytes; }
  void Char(char c) {
    Reserve(1);
    *m_next++ = c;
  }

  /// "%d".
  void Integer(int64_t value) {
    Reserve(LongestNumberText);
    m_next = WriteInteger(m_next, value);
  }
  /// "%f" and "%2.6f", which print the same.
  void Float6(float value) { Fixed<6>(value); }

  /// Writes `pattern` with its arguments in the places of %s, %d and %f, width and precision as in printf, %% as a
  /// percent sign. That each argument fits its place is checked at compile time. "\n" becomes the platform's line end,
  /// in arguments too.
  ///
  ///     writer.Format("  %d \"%s\" %d\n", index, name, parent);
  template <typename... Arguments>
  void Format(TextPattern<std::type_identity_t<Arguments>...> pattern, const Arguments&... arguments) {
    FormatList(pattern.Text(), {TextArgument(arguments)...});
  }

  /// Hands everything written so far to the target.
  void Flush();

  /// Bytes written so far, those in the buffer included.
  uint64_t BytesWritten() const { return m_flushed + static_cast<uint64_t>(m_next - Start()); }

  /// Infinities and not-a-numbers among the floats written so far.
  uint64_t NonFiniteCount() const { return m_nonFinite; }
  /// Adds to that count, for numbers that reached the file through `Raw`.
  void CountNonFinite(uint64_t count) { m_nonFinite += count; }

 private:
  /// The system copies pages, and does so sooner from where they begin as its own do.
  struct alignas(4096) Page {
    char Text[4096];
  };
  /// Of the last one little is filled when the others are handed over, 64 KB each time: a size and a place in the file
  /// for which the system can have all pages at once.
  static constexpr size_t PageCount = 17;
  using Buffer = std::unique_ptr<Page[]>;
  static Buffer TakeBuffer();
  static void KeepBuffer(Buffer buffer);
  char* Start() const { return m_buffer[0].Text; }

  void FormatList(std::string_view pattern, std::initializer_list<TextArgument> arguments);
  void Reserve(size_t bytes) {
    if (static_cast<size_t>(m_end - m_next) < bytes) FlushPages();
  }
  void FlushPages();
  void HandOver(size_t bytes);
  template <int Precision>
  void Fixed(float value) {
    Reserve(LongestNumberText);
    m_next = WriteFixed<Precision>(m_next, value);
    m_nonFinite += static_cast<uint64_t>(!(value - value == 0));
  }

  OutputFile* m_file = nullptr;
  std::string* m_string = nullptr;
  Buffer m_buffer;
  char* m_next;
  char* m_end;
  uint64_t m_flushed = 0;
  uint64_t m_nonFinite = 0;
};

}  // namespace tarnwick::core
