#include "smd/vertex_lines.h"

#if TARNWICK_HAS_AVX_CODE
#include <immintrin.h>
#endif

#include <algorithm>
#include <array>
#include <bit>

#include "core/digit_tables.h"
#include "smd/eight_numbers.h"

namespace tarnwick::smd {

namespace {

/// The numbers of a corner ahead of its links, which are formed side by side.
constexpr size_t Lanes = EightNumbers;

/// Numbers in the parts in which they are printed with six decimals.
struct NumberParts {
  uint32_t Whole[Lanes];  // and SignedWholes::Negative more for a negative number, zero too
  uint32_t High[Lanes];   // three decimals
  uint32_t Low[Lanes];    // the three behind them
};

/// What stands in front of the decimals: a blank, the sign, a whole number below 1000, the point.
struct SignedWhole {
  char Text[7];
  uint8_t Length;
};

constexpr uint32_t Negative = 1000;

constexpr auto SignedWholes = [] {
  std::array<SignedWhole, size_t{2} * Negative> all{};
  for (uint32_t i = 0; i < all.size(); ++i) {
    uint8_t length = 0;
    const uint32_t whole = i % Negative;
    all[i].Text[length++] = ' ';
    if (i >= Negative) all[i].Text[length++] = '-';
    if (whole >= 100) all[i].Text[length++] = static_cast<char>('0' + whole / 100);
    if (whole >= 10) all[i].Text[length++] = static_cast<char>('0' + whole / 10 % 10);
    all[i].Text[length++] = static_cast<char>('0' + whole % 10);
    all[i].Text[length++] = '.';
    all[i].Length = length;
  }
  return all;
}();

/// Takes all numbers apart, as WriteFixed does one. False if one is 999 or larger, infinite or not a number: then the
/// parts mean nothing.
bool TakeApart(const float (&values)[Lanes], NumberParts& parts) {
  uint32_t large = 0;
  for (size_t i = 0; i < Lanes; ++i) {
    const auto bits = std::bit_cast<uint32_t>(values[i]);
    const auto size = std::bit_cast<float>(bits & 0x7FFFFFFF);
    large |= size < 999.0f ? 0 : 1;
    const auto scaled = static_cast<uint32_t>(std::bit_cast<uint64_t>(double{size} * 1e6 + 0x1p52));
    const uint32_t whole = scaled / 1'000'000, decimals = scaled % 1'000'000;
    parts.Whole[i] = whole + (bits >> 31) * Negative;
    parts.High[i] = decimals / 1000;
    parts.Low[i] = decimals % 1000;
  }
  return large == 0;
}

char* WriteSpacedFloat(char* out, float value) {
  *out++ = ' ';
  return core::WriteFixed<6>(out, value);
}

/// Writes a whole number, of which there are few large ones.
char* WriteNumber(char* out, int32_t value) {
  if (value < 0 || value >= 1000) return core::WriteInteger(out, value);
  std::memcpy(out, core::WholeParts[static_cast<size_t>(value)].data(), sizeof(core::FourChars));
  return out + 1 + (value >= 10) + (value >= 100);
}

char* WriteLink(char* out, const Link& link) {
  constexpr char Whole[] = " 1.000000";  // all of it, as most corners have it
  *out++ = ' ';
  out = WriteNumber(out, link.Bone);
  if (link.Weight != 1) return WriteSpacedFloat(out, link.Weight);
  std::memcpy(out, Whole, sizeof Whole - 1);
  return out + sizeof Whole - 1;
}

/// Writes the numbers by the tables; nothing, and no text, where one is too large for them.
char* WriteByTables(char* out, const float (&values)[Lanes]) {
  NumberParts parts;
  if (!TakeApart(values, parts)) return nullptr;
  for (size_t i = 0; i < Lanes; ++i) {
    const SignedWhole& whole = SignedWholes[parts.Whole[i]];
    std::memcpy(out, &whole, sizeof whole);
    out += whole.Length;
    core::WriteTriple(out, parts.High[i]);
    core::WriteTriple(out + 3, parts.Low[i]);
    out += 6;
  }
  return out;
}

/// Writes the numbers ahead of the links.
char* WriteNumbers(char* out, const Vertex& vertex, [[maybe_unused]] core::VectorLevel level) {
#if TARNWICK_HAS_AVX_CODE
  // Where they stand: what is put together from single numbers could not be loaded before it has left the processor.
  static_assert(offsetof(Vertex, V) - offsetof(Vertex, Position) == (Lanes - 1) * sizeof(float));
  const auto* const first = reinterpret_cast<const std::byte*>(&vertex) + offsetof(Vertex, Position);
  if (level >= core::VectorLevel::Avx2) {
    if (char* const end = WriteEightNumbersAvx2(out, first)) return end;
  }
#endif
  const float values[Lanes] = {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X,
                               vertex.Normal.Y,   vertex.Normal.Z,   vertex.U,          vertex.V};
  if (char* const end = WriteByTables(out, values)) return end;
  for (const float value : values) out = WriteSpacedFloat(out, value);
  return out;
}

bool IsFinite(float value) {
  return value - value == 0;
}

}  // namespace

char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks, core::VectorLevel level) {
  out = WriteNumbers(WriteNumber(out, vertex.Bone), vertex, level);
  if (withLinks) {
    *out++ = ' ';
    out = WriteNumber(out, vertex.LinkCount);
    for (int32_t i = 0; i < vertex.LinkCount; ++i) out = WriteLink(out, vertex.Links[static_cast<size_t>(i)]);
  }
  std::memcpy(out, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
  return out + core::PlatformLineEnd.size();
}

uint64_t CountNonFinite(const Vertex& vertex, bool withLinks) {
  float sum = 0;  // unless one of them is not finite: such a number times 0 is none
  for (const float value : {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X, vertex.Normal.Y,
                            vertex.Normal.Z, vertex.U, vertex.V}) {
    sum += value * 0;
  }
  for (int32_t i = 0; withLinks && i < vertex.LinkCount; ++i) sum += vertex.Links[static_cast<size_t>(i)].Weight * 0;
  if (sum == 0) return 0;
  uint64_t count = 0;
  for (const float value : {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X, vertex.Normal.Y,
                            vertex.Normal.Z, vertex.U, vertex.V}) {
    if (!IsFinite(value)) ++count;
  }
  for (int32_t i = 0; withLinks && i < vertex.LinkCount; ++i) {
    if (!IsFinite(vertex.Links[static_cast<size_t>(i)].Weight)) ++count;
  }
  return count;
}

void WriteVertexLine(core::TextWriter& writer, const Vertex& vertex, bool withLinks) {
  char* const text = writer.Room(LongestVertexLine);
  writer.Take(static_cast<size_t>(WriteVertexLine(text, vertex, withLinks) - text));
  writer.CountNonFinite(CountNonFinite(vertex, withLinks));
}

MaterialLine::MaterialLine(std::string_view material) : m_text(std::string(material) + ".tga\n") {
  const size_t bare = m_text.size() - 1;
  if (bare + core::PlatformLineEnd.size() > Usual || m_text.find('\n') != bare) return;
  std::memcpy(m_usual.data(), m_text.data(), bare);
  std::memcpy(m_usual.data() + bare, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
  m_length = bare + core::PlatformLineEnd.size();
}

// Lines vary in length by little; what may be written behind the last one is there too.
LineList::LineList(size_t count)
    : m_starts(std::make_unique_for_overwrite<uint32_t[]>(count + 1)),
      m_text(std::make_unique_for_overwrite<char[]>(count * LongestKept + LongestVertexLine)) {
  m_starts[0] = 0;
}

void LineList::Add(std::span<const Vertex> vertices, bool withLinks) {
  const core::VectorLevel level = core::HighestVectorLevel();
  size_t start = m_starts[m_count];
  for (const Vertex& vertex : vertices) {
    char* const text = m_text.get() + start;
    const auto length = static_cast<size_t>(WriteVertexLine(text, vertex, withLinks, level) - text);
    const bool isKept = length <= LongestKept && CountNonFinite(vertex, withLinks) == 0;
    start += isKept ? length : 0;
    m_starts[++m_count] = static_cast<uint32_t>(start);
  }
}

namespace {

constexpr size_t Pieces = 128;  // bytes that are copied at once, whatever a line's length; most are shorter

struct KeptLine {
  const char* Text;
  size_t Length;
};

char* CopyTriangle(char* to, const MaterialLine& material, const KeptLine (&lines)[3]) {
  std::memcpy(to, material.UsualText(), MaterialLine::Usual);
  to += material.UsualLength();
  for (const KeptLine& line : lines) {
    std::memcpy(to, line.Text, Pieces);
    if (line.Length > Pieces) std::memcpy(to + Pieces, line.Text + Pieces, Pieces);
    to += line.Length;
  }
  return to;
}

#if TARNWICK_HAS_AVX_CODE

// The same; a copy of a fixed size takes registers of half the width if it is left to the compiler.

template <size_t Size>
TARNWICK_INLINE TARNWICK_AVX2 void CopyAvx2(char* to, const char* from) {
  constexpr size_t Width = 32;
  for (size_t at = 0; at < Size; at += Width) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + at),
                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + at)));
  }
}

TARNWICK_AVX2 char* CopyTriangleAvx2(char* to, const MaterialLine& material, const KeptLine (&lines)[3]) {
  CopyAvx2<MaterialLine::Usual>(to, material.UsualText());
  to += material.UsualLength();
  for (const KeptLine& line : lines) {
    CopyAvx2<Pieces>(to, line.Text);
    if (line.Length > Pieces) CopyAvx2<Pieces>(to + Pieces, line.Text + Pieces);
    to += line.Length;
  }
  return to;
}

#endif

}  // namespace

bool LineList::WriteTriangle(core::TextWriter& writer, const MaterialLine& material,
                             const std::array<size_t, 3>& corners, [[maybe_unused]] core::VectorLevel level) const {
  if (material.UsualLength() == 0) return false;
  KeptLine lines[3];
  for (size_t i = 0; i < 3; ++i) {
    if (corners[i] >= m_count) return false;
    const size_t start = m_starts[corners[i]];
    lines[i] = {m_text.get() + start, m_starts[corners[i] + 1] - start};
    if (lines[i].Length == 0) return false;
  }
  static_assert(LongestKept == 2 * Pieces);
  char* const to = writer.Room(MaterialLine::Usual + 3 * LongestKept);
#if TARNWICK_HAS_AVX_CODE
  char* const end =
      level >= core::VectorLevel::Avx2 ? CopyTriangleAvx2(to, material, lines) : CopyTriangle(to, material, lines);
#else
  char* const end = CopyTriangle(to, material, lines);
#endif
  writer.Take(static_cast<size_t>(end - to));
  return true;
}

VertexLines::VertexLines(core::TextWriter& writer, bool withLinks)
    : m_writer(writer),
      m_withLinks(withLinks),
      m_keys(std::make_unique_for_overwrite<uint64_t[]>(LineCount)),
      m_lines(std::make_unique_for_overwrite<Line[]>(LineCount)) {
  std::fill_n(m_keys.get(), LineCount, NoKey);
}

void VertexLines::WriteNew(uint64_t key, const Vertex& vertex) {
  char* const text = m_writer.Room(LongestVertexLine);
  const auto length = static_cast<size_t>(WriteVertexLine(text, vertex, m_withLinks, m_level) - text);
  m_writer.Take(length);
  const uint64_t nonFinite = CountNonFinite(vertex, m_withLinks);
  Line& line = m_lines[key % LineCount];
  if (nonFinite > 0 || length > sizeof line.Text) {  // written anew each time, so that all are counted
    m_writer.CountNonFinite(nonFinite);
    return;
  }
  CopyPieces(line.Text, text, length);
  line.Length = static_cast<uint32_t>(length);
  m_keys[key % LineCount] = key;
}

}  // namespace tarnwick::smd
