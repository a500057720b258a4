#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::tools {

/// Everything that a tool has printed, within a limit: up to `limit` bytes whole, past that the first and the last half
/// of the limit. The middle that had to go is told in a line at its place.
class WholeLog {
 public:
  static constexpr size_t DefaultLimit = size_t{64} << 20;

  explicit WholeLog(size_t limit = DefaultLimit) : m_half(limit / 2) {}

  void Append(std::string_view bytes);

  /// Bytes that were appended.
  uint64_t Size() const { return m_size; }
  /// Bytes of the middle that are gone.
  uint64_t Dropped() const { return m_size - m_first.size() - m_last.size(); }
  /// The text, with a line in the place of the middle if that is gone.
  std::string Text() const;

 private:
  size_t m_half;
  std::string m_first;
  std::string m_last;      // a ring once it is full
  size_t m_lastStart = 0;  // where the oldest byte of the full ring is
  uint64_t m_size = 0;
};

}  // namespace tarnwick::tools
