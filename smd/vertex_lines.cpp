#include "smd/vertex_lines.h"

#include <algorithm>
#include <array>
#include <bit>

#include "core/digit_tables.h"

namespace tarnwick::smd {

namespace {

/// The numbers of a corner ahead of its links, which are formed side by side; core/vector_code.h tells how.
constexpr size_t Lanes = 8;

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
TARNWICK_INLINE bool TakeApart(const float (&values)[Lanes], NumberParts& parts) {
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

bool TakeApartPlain(const float (&values)[Lanes], NumberParts& parts) {
  return TakeApart(values, parts);
}
TARNWICK_AVX2 bool TakeApartAvx2(const float (&values)[Lanes], NumberParts& parts) {
  return TakeApart(values, parts);
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

bool IsFinite(float value) {
  return value - value == 0;
}

}  // namespace

char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks, core::VectorLevel level) {
  const float values[Lanes] = {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X,
                               vertex.Normal.Y,   vertex.Normal.Z,   vertex.U,          vertex.V};
  NumberParts parts;
  out = WriteNumber(out, vertex.Bone);
  if (level >= core::VectorLevel::Avx2 ? TakeApartAvx2(values, parts) : TakeApartPlain(values, parts)) {
    for (size_t i = 0; i < Lanes; ++i) {
      const SignedWhole& whole = SignedWholes[parts.Whole[i]];
      std::memcpy(out, &whole, sizeof whole);
      out += whole.Length;
      core::WriteTriple(out, parts.High[i]);
      core::WriteTriple(out + 3, parts.Low[i]);
      out += 6;
    }
  } else {
    for (const float value : values) out = WriteSpacedFloat(out, value);
  }
  if (withLinks) {
    *out++ = ' ';
    out = WriteNumber(out, vertex.LinkCount);
    for (int32_t i = 0; i < vertex.LinkCount; ++i) out = WriteLink(out, vertex.Links[static_cast<size_t>(i)]);
  }
  std::memcpy(out, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
  return out + core::PlatformLineEnd.size();
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

void LineList::Add(const Vertex& vertex, bool withLinks) {
  char* const text = m_text.get() + m_starts[m_count];
  const auto length = static_cast<uint32_t>(WriteVertexLine(text, vertex, withLinks) - text);
  const bool isKept = length <= LongestKept && CountNonFinite(vertex, withLinks) == 0;
  m_starts[m_count + 1] = m_starts[m_count] + (isKept ? length : 0);
  ++m_count;
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
