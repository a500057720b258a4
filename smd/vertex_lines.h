#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "core/text_writer.h"
#include "smd/smd_values.h"

namespace tarnwick::smd {

/// 8 numbers, 3 weights, and 7 whole numbers with their blanks.
inline constexpr size_t LongestVertexLine = 18 * core::LongestNumberText;

/// Writes one vertex line: bone, position, normal, texture coordinates, and the links if `withLinks`. Returns the end
/// of the text, at most LongestVertexLine bytes; no NUL is written.
[[nodiscard]] char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks);

/// Infinities and not-a-numbers in the vertex's line.
[[nodiscard]] uint64_t CountNonFinite(const Vertex& vertex, bool withLinks);

/// Writes vertex lines. A vertex stands in about six triangles, and meshes are ordered so that those come close
/// together: the lines of the vertices met last are kept and copied; the table is small enough to stay in the
/// processor's cache.
class VertexLines {
 public:
  VertexLines(core::TextWriter& writer, bool withLinks);

  /// Writes the line of the vertex that `key` stands for, which is neighbour to those of `key` - 1 and `key` + 1.
  /// `make` gives the vertex; it is called only if its line is not at hand.
  template <typename Make>
  void Write(uint64_t key, const Make& make) {
    if (m_keys[key % LineCount] == key) {
      WriteKept(m_lines[key % LineCount]);
    } else {
      WriteNew(key, make());
    }
  }

 private:
  static constexpr size_t LineCount = 2048;
  static constexpr uint64_t NoKey = ~uint64_t{0};
  struct Line {
    uint32_t Length;
    char Text[188];
  };

  /// Copies a line by pieces of a fixed size, some of them too many, which is quicker than a copy of any length.
  void WriteKept(const Line& line) {
    constexpr size_t Piece = 64;
    static_assert(sizeof line.Text > 2 * Piece);
    char* const out = m_writer.Room(sizeof line.Text);
    std::memcpy(out, line.Text, Piece);
    std::memcpy(out + Piece, line.Text + Piece, Piece);
    if (line.Length > 2 * Piece) std::memcpy(out + 2 * Piece, line.Text + 2 * Piece, sizeof line.Text - 2 * Piece);
    m_writer.Take(line.Length);
  }
  void WriteNew(uint64_t key, const Vertex& vertex);

  core::TextWriter& m_writer;
  bool m_withLinks;
  std::unique_ptr<uint64_t[]> m_keys;  // apart, so that they stay in the nearest cache
  std::unique_ptr<Line[]> m_lines;
};

}  // namespace tarnwick::smd
