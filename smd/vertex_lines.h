#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "core/text_writer.h"
#include "core/vector_code.h"
#include "smd/smd_values.h"

namespace tarnwick::smd {

/// 8 numbers, 3 weights, and 7 whole numbers with their blanks.
inline constexpr size_t LongestVertexLine = 18 * core::LongestNumberText;

/// Writes one vertex line: bone, position, normal, texture coordinates, and the links if `withLinks`. Returns the end
/// of the text, at most LongestVertexLine bytes; no NUL is written. Each level of vector code, which is at most that of
/// the processor, gives the same.
[[nodiscard]] char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks,
                                    core::VectorLevel level = core::HighestVectorLevel());

/// Infinities and not-a-numbers in the vertex's line.
[[nodiscard]] uint64_t CountNonFinite(const Vertex& vertex, bool withLinks);

/// The line ahead of a triangle, "name.tga", which many have in common.
class MaterialLine {
 public:
  explicit MaterialLine(std::string_view material);

  void Write(core::TextWriter& writer) const {
    if (m_length == 0) return writer.Text(m_text);
    std::memcpy(writer.Room(Usual), m_usual.data(), Usual);
    writer.Take(m_length);
  }

  /// Room for a usual line, which `UsualText` has whole, whatever its length.
  static constexpr size_t Usual = 64;
  const char* UsualText() const { return m_usual.data(); }
  /// Of the usual line; 0 where the line is an unusual one, which only `Write` knows.
  size_t UsualLength() const { return m_length; }

 private:
  std::string m_text;  // with "\n"
  std::array<char, Usual> m_usual = {};
  size_t m_length = 0;
};

/// Writes the line of a vertex.
void WriteVertexLine(core::TextWriter& writer, const Vertex& vertex, bool withLinks);

/// The lines of a few thousand vertices, formed one after the other, to be written wherever a triangle has one of them.
class LineList {
 public:
  /// Room for `count` lines.
  explicit LineList(size_t count);

  /// Adds the lines of the next vertices.
  void Add(std::span<const Vertex> vertices, bool withLinks);

  /// Writes the line of vertex number `index`. False if the list does not hold it: it was not added, its numbers are
  /// not all finite, which is to be counted each time, or it is longer than sound ones are.
  [[nodiscard]] bool Write(core::TextWriter& writer, size_t index) const {
    const Line line = At(index);
    if (line.Length == 0) return false;
    // Of a fixed size, some of it too much, which is quicker than of any length.
    char* const to = writer.Room(LongestKept);
    std::memcpy(to, line.Text, Usual);
    if (line.Length > Usual) std::memcpy(to + Usual, line.Text + Usual, LongestKept - Usual);
    writer.Take(line.Length);
    return true;
  }

  /// Writes triangles: `material`, and behind it the lines of three vertices, whose numbers stand in `corners` one
  /// triangle behind the other. Returns how many were written, all of them or those ahead of the first of which the
  /// list does not hold all lines.
  [[nodiscard]] size_t WriteTriangles(core::TextWriter& writer, const MaterialLine& material,
                                      std::span<const size_t> corners,
                                      core::VectorLevel level = core::HighestVectorLevel()) const;

 private:
  static constexpr size_t Usual = 128;  // bytes of a line that are copied at once; most are shorter
  static constexpr size_t LongestKept = 2 * Usual;

  struct Line {
    const char* Text;
    size_t Length;
  };
  /// Of no length for one that the list does not hold.
  Line At(size_t index) const {
    if (index >= m_count) return {m_text.get(), 0};
    return {m_text.get() + m_starts[index], m_starts[index + 1] - m_starts[index]};
  }
#if TARNWICK_HAS_AVX_CODE
  TARNWICK_AVX2 size_t WriteTrianglesAvx2(core::TextWriter& writer, const MaterialLine& material,
                                          std::span<const size_t> corners) const;
#endif

  size_t m_count = 0;
  std::unique_ptr<uint32_t[]> m_starts;  // of the lines, and where the last one ends
  std::unique_ptr<char[]> m_text;        // one behind the other: the less of the cache they take, the better
};

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
  static constexpr size_t LineCount = 512;
  static constexpr uint64_t NoKey = ~uint64_t{0};
  struct Line {
    uint32_t Length;
    char Text[188];
  };

  /// Copies `length` bytes of a line, which both ends have room for, by pieces of a fixed size, some of them too many,
  /// which is quicker than a copy of any length.
  static void CopyPieces(char* to, const char* from, size_t length) {
    constexpr size_t Piece = 64;
    static_assert(sizeof(Line::Text) > 2 * Piece);
    std::memcpy(to, from, Piece);
    std::memcpy(to + Piece, from + Piece, Piece);
    if (length > 2 * Piece) std::memcpy(to + 2 * Piece, from + 2 * Piece, sizeof(Line::Text) - 2 * Piece);
  }
  void WriteKept(const Line& line) {
    CopyPieces(m_writer.Room(sizeof line.Text), line.Text, line.Length);
    m_writer.Take(line.Length);
  }
  void WriteNew(uint64_t key, const Vertex& vertex);

  core::TextWriter& m_writer;
  bool m_withLinks;
  std::unique_ptr<uint64_t[]> m_keys;  // apart, so that they stay in the nearest cache
  std::unique_ptr<Line[]> m_lines;
  core::VectorLevel m_level = core::HighestVectorLevel();
};

}  // namespace tarnwick::smd
