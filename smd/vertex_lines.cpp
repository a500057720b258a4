#include "smd/vertex_lines.h"

#if TARNWICK_HAS_AVX_CODE
#include <immintrin.h>
#endif

#include <algorithm>
#include <array>
#include <bit>

#include "core/digit_tables.h"
#include "smd/number_vectors.h"

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

constexpr float TooLarge = 999;  // for the tables

/// Takes a number below TooLarge apart, as WriteFixed does.
void TakeApart(float value, NumberParts& parts, size_t place) {
  const auto bits = std::bit_cast<uint32_t>(value);
  const auto size = std::bit_cast<float>(bits & 0x7FFFFFFF);
  const auto scaled = static_cast<uint32_t>(std::bit_cast<uint64_t>(double{size} * 1e6 + 0x1p52));
  const uint32_t whole = scaled / 1'000'000, decimals = scaled % 1'000'000;
  parts.Whole[place] = whole + (bits >> 31) * Negative;
  parts.High[place] = decimals / 1000;
  parts.Low[place] = decimals % 1000;
}

char* WriteParts(char* out, const NumberParts& parts, size_t place) {
  const SignedWhole& whole = SignedWholes[parts.Whole[place]];
  std::memcpy(out, &whole, sizeof whole);
  out += whole.Length;
  core::WriteTriple(out, parts.High[place]);
  core::WriteTriple(out + 3, parts.Low[place]);
  return out + 6;
}

/// Also of an infinity, and of what is not a number.
bool IsTooLarge(float value) {
  return !(std::bit_cast<float>(std::bit_cast<uint32_t>(value) & 0x7FFFFFFF) < TooLarge);
}

bool IsFinite(float value) {
  return value - value == 0;
}

/// How a line was written.
struct FormedLine {
  char* End;
  bool Finite;  // all its numbers
};

/// Writes a blank and the number.
FormedLine WriteSpacedFloat(char* out, float value) {
  if (!IsTooLarge(value)) {
    NumberParts parts;
    TakeApart(value, parts, 0);
    return {WriteParts(out, parts, 0), true};
  }
  *out++ = ' ';
  return {core::WriteFixed<6>(out, value), IsFinite(value)};
}

/// Writes a whole number, of which there are few large ones.
char* WriteNumber(char* out, int32_t value) {
  if (value < 0 || value >= 1000) return core::WriteInteger(out, value);
  std::memcpy(out, core::WholeParts[static_cast<size_t>(value)].data(), sizeof(core::FourChars));
  return out + 1 + (value >= 10) + (value >= 100);
}

/// Writes a blank and a whole number.
char* WriteSpacedNumber(char* out, int32_t value) {
  if (static_cast<uint32_t>(value) >= Negative) {
    *out++ = ' ';
    return core::WriteInteger(out, value);
  }
  const SignedWhole& whole = SignedWholes[static_cast<size_t>(value)];
  std::memcpy(out, &whole, sizeof whole);
  return out + whole.Length - 1;  // but the point
}

FormedLine WriteLinks(char* out, const Vertex& vertex) {
  constexpr char Whole[] = " 1.000000";  // all of it, as most corners have it
  FormedLine line{WriteSpacedNumber(out, vertex.LinkCount), true};
  for (int32_t i = 0; i < vertex.LinkCount; ++i) {
    const Link& link = vertex.Links[static_cast<size_t>(i)];
    line.End = WriteSpacedNumber(line.End, link.Bone);
    if (link.Weight == 1) {
      std::memcpy(line.End, Whole, sizeof Whole - 1);
      line.End += sizeof Whole - 1;
    } else {
      const FormedLine weight = WriteSpacedFloat(line.End, link.Weight);
      line = {weight.End, line.Finite && weight.Finite};
    }
  }
  return line;
}

/// Writes the numbers ahead of the links.
FormedLine WriteNumbers(char* out, const Vertex& vertex) {
  const float values[Lanes] = {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X,
                               vertex.Normal.Y,   vertex.Normal.Z,   vertex.U,          vertex.V};
  FormedLine line{out, true};
  if (std::none_of(std::begin(values), std::end(values), IsTooLarge)) {
    NumberParts parts;
    for (size_t i = 0; i < Lanes; ++i) TakeApart(values[i], parts, i);
    for (size_t i = 0; i < Lanes; ++i) line.End = WriteParts(line.End, parts, i);
    return line;
  }
  for (const float value : values) {
    const FormedLine number = WriteSpacedFloat(line.End, value);
    line = {number.End, line.Finite && number.Finite};
  }
  return line;
}

/// Writes eight numbers from where they stand side by side, if it can; see WriteEightNumbersAvx2.
using WriteEight = char* (*)(char* out, const void* values);

/// Null where there is only the plain way.
WriteEight WriteEightOf([[maybe_unused]] core::VectorLevel level) {
#if TARNWICK_HAS_AVX_CODE
  if (level >= core::VectorLevel::Avx2) return WriteEightNumbersAvx2;
#endif
  return nullptr;
}

FormedLine FormLine(char* out, const Vertex& vertex, bool withLinks, WriteEight writeEight) {
  // Where they stand: what is put together from single numbers could not be loaded before it has left the processor.
  static_assert(offsetof(Vertex, V) - offsetof(Vertex, Position) == (Lanes - 1) * sizeof(float));
  const auto* const first = reinterpret_cast<const std::byte*>(&vertex) + offsetof(Vertex, Position);
  out = WriteNumber(out, vertex.Bone);
  FormedLine line{writeEight != nullptr ? writeEight(out, first) : nullptr, true};
  if (line.End == nullptr) line = WriteNumbers(out, vertex);
  if (withLinks) {
    const FormedLine links = WriteLinks(line.End, vertex);
    line = {links.End, line.Finite && links.Finite};
  }
  std::memcpy(line.End, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
  line.End += core::PlatformLineEnd.size();
  return line;
}

}  // namespace

char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks, core::VectorLevel level) {
  return FormLine(out, vertex, withLinks, WriteEightOf(level)).End;
}

uint64_t CountNonFinite(const Vertex& vertex, bool withLinks) {
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
  const FormedLine line = FormLine(text, vertex, withLinks, WriteEightOf(core::HighestVectorLevel()));
  writer.Take(static_cast<size_t>(line.End - text));
  if (!line.Finite) writer.CountNonFinite(CountNonFinite(vertex, withLinks));
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
  const WriteEight writeEight = WriteEightOf(core::HighestVectorLevel());
  size_t start = m_starts[m_count];
  for (const Vertex& vertex : vertices) {
    char* const text = m_text.get() + start;
    const FormedLine line = FormLine(text, vertex, withLinks, writeEight);
    const auto length = static_cast<size_t>(line.End - text);
    if (line.Finite && length <= LongestKept) start += length;
    m_starts[++m_count] = static_cast<uint32_t>(start);
  }
}

#if TARNWICK_HAS_AVX_CODE

namespace {

// A copy of a fixed size takes registers of half the width if it is left to the compiler.
template <size_t Size>
TARNWICK_INLINE TARNWICK_AVX2 void CopyAvx2(char* to, const char* from) {
  constexpr size_t Width = 32;
  for (size_t at = 0; at < Size; at += Width) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + at),
                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + at)));
  }
}

}  // namespace

TARNWICK_AVX2 size_t LineList::WriteTrianglesAvx2(core::TextWriter& writer, const MaterialLine& material,
                                                  std::span<const size_t> corners) const {
  const size_t count = corners.size() / 3;
  for (size_t i = 0; i < count; ++i) {
    const size_t* const numbers = corners.data() + 3 * i;
    const Line lines[] = {At(numbers[0]), At(numbers[1]), At(numbers[2])};
    if (lines[0].Length == 0 || lines[1].Length == 0 || lines[2].Length == 0) return i;
    char* const begin = writer.Room(MaterialLine::Usual + 3 * LongestKept);
    CopyAvx2<MaterialLine::Usual>(begin, material.UsualText());
    char* to = begin + material.UsualLength();
    for (const Line& line : lines) {
      CopyAvx2<Usual>(to, line.Text);
      if (line.Length > Usual) CopyAvx2<LongestKept - Usual>(to + Usual, line.Text + Usual);
      to += line.Length;
    }
    writer.Take(static_cast<size_t>(to - begin));
  }
  return count;
}

#endif

size_t LineList::WriteTriangles(core::TextWriter& writer, const MaterialLine& material, std::span<const size_t> corners,
                                [[maybe_unused]] core::VectorLevel level) const {
#if TARNWICK_HAS_AVX_CODE
  if (level >= core::VectorLevel::Avx2 && material.UsualLength() > 0) {
    return WriteTrianglesAvx2(writer, material, corners);
  }
#endif
  const size_t count = corners.size() / 3;
  for (size_t i = 0; i < count; ++i) {
    const auto three = corners.subspan(3 * i, 3);
    if (std::any_of(three.begin(), three.end(), [&](size_t number) { return At(number).Length == 0; })) return i;
    material.Write(writer);
    for (const size_t number : three) static_cast<void>(Write(writer, number));
  }
  return count;
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
  const FormedLine formed = FormLine(text, vertex, m_withLinks, WriteEightOf(m_level));
  const auto length = static_cast<size_t>(formed.End - text);
  m_writer.Take(length);
  Line& line = m_lines[key % LineCount];
  if (!formed.Finite || length > sizeof line.Text) {  // written anew each time, so that all are counted
    m_writer.CountNonFinite(CountNonFinite(vertex, m_withLinks));
    return;
  }
  CopyPieces(line.Text, text, length);
  line.Length = static_cast<uint32_t>(length);
  m_keys[key % LineCount] = key;
}

}  // namespace tarnwick::smd
