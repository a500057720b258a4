#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace tarnwick::compiler {

/// The bytes of a file as they grow. Records are copied in and out, never referred to: any may lie at any byte.
class ByteWriter {
 public:
  int64_t Size() const { return static_cast<int64_t>(m_bytes.size()); }

  /// Appends a record; gives its place.
  template <typename T>
  int64_t Append(const T& record) {
    static_assert(std::is_trivially_copyable_v<T>);
    const int64_t at = Size();
    m_bytes.append(reinterpret_cast<const char*>(&record), sizeof(T));
    return at;
  }
  int64_t AppendBytes(std::string_view bytes) {
    const int64_t at = Size();
    m_bytes.append(bytes);
    return at;
  }
  /// Room for `count` records, filled with zero bytes; gives the place of the first.
  template <typename T>
  int64_t Reserve(size_t count) {
    const int64_t at = Size();
    m_bytes.append(count * sizeof(T), '\0');
    return at;
  }
  /// Puts a record where room for it was made.
  template <typename T>
  void Put(int64_t at, const T& record) {
    std::memcpy(m_bytes.data() + at, &record, sizeof(T));
  }
  void Align(size_t to) {
    while (m_bytes.size() % to != 0) m_bytes.push_back('\0');
  }
  std::string Take() { return std::move(m_bytes); }

 private:
  std::string m_bytes;
};

/// The texts at the end of an .mdl file: each once, in the order of first use, the empty one first. Where a text is
/// named it is noted and filled in when the pool's place is known.
class TextPool {
 public:
  TextPool() { NumberOf(""); }

  /// Notes that the int32 at `field` is to hold the text's place, counted from `base`.
  void Name(int64_t field, int64_t base, std::string_view text) { m_uses.push_back({field, base, NumberOf(text)}); }

  /// Appends the pool and fills in all that was noted.
  void Write(ByteWriter& writer) {
    const int64_t start = writer.Size();
    std::string bytes;
    std::vector<int64_t> places;
    for (const std::string& text : m_texts) {
      places.push_back(start + static_cast<int64_t>(bytes.size()));
      bytes += text;
      bytes += '\0';
    }
    writer.AppendBytes(bytes);
    writer.Align(4);
    for (const Use& use : m_uses) {
      writer.Put(use.Field, static_cast<int32_t>(places[use.Text] - use.Base));
    }
  }

 private:
  struct Use {
    int64_t Field;
    int64_t Base;
    size_t Text;
  };
  size_t NumberOf(std::string_view text) {
    // A text ends at its first zero byte.
    std::string key(text.substr(0, text.find('\0')));
    const auto [found, added] = m_numbers.try_emplace(key, m_texts.size());
    if (added) m_texts.push_back(std::move(key));
    return found->second;
  }

  std::vector<std::string> m_texts;
  std::unordered_map<std::string, size_t> m_numbers;
  std::vector<Use> m_uses;
};

}  // namespace tarnwick::compiler
