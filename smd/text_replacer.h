#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarnwick::smd {

/// Replaces every occurrence of one text by another in a stream of bytes, from the front, each byte once: what the new
/// text brings in is not looked at again. The bytes come in pieces of any size.
class TextReplacer {
 public:
  using Sink = std::function<void(std::string_view)>;

  /// `from` must not be empty. The result goes to `sink`, piece by piece.
  TextReplacer(std::string from, std::string to, Sink sink);

  /// Takes the next bytes of the text.
  void Feed(std::string_view bytes);
  /// Hands on what is left when the text has ended.
  void Finish();

  /// Occurrences replaced so far.
  uint64_t Count() const { return m_count; }

 private:
  /// Hands on `text` with its occurrences replaced, up to the place where an occurrence that needs bytes beyond the
  /// text's end could begin; gives that place.
  size_t Replace(std::string_view text);

  std::string m_from;
  std::string m_to;
  Sink m_sink;
  std::string m_held;  // the end of the bytes so far, shorter than m_from, which may be the start of an occurrence
  uint64_t m_count = 0;
};

}  // namespace tarnwick::smd
