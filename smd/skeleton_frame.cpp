#include "smd/skeleton_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "core/number_text.h"
#include "smd/number_vectors.h"

namespace tarnwick::smd {

namespace {

/// A bone's number, six floats with their blanks, and the end of the line.
constexpr size_t LongestLine = 7 * core::LongestNumberText;

/// Six decimals where they read as the same float, else the shortest decimal that does.
char* WriteExact(char* out, float value) {
  char* const end = core::WriteFixed<6>(out, value);
  const double rounded = std::nearbyint(double{value} * 1e6) / 1e6;
  if (static_cast<float>(rounded) == value || !std::isfinite(value)) return end;
  return core::WriteShortestDecimal(out, value);
}

/// Copies a part of a line and perhaps some bytes behind it; a line's room is far longer than its parts.
TARNWICK_INLINE char* CopyPart(char* out, const char* part, size_t size) {
  constexpr size_t Usual = 64;
  if (size <= Usual) {
    std::memcpy(out, part, Usual);
  } else {
    std::memcpy(out, part, size);
  }
  return out + size;
}

/// Writes a blank and the number for each of the three, and sets how many are not finite.
char* WriteEach(char* out, const Triple& numbers, bool exact, uint8_t& odd) {
  for (const float value : {numbers.X, numbers.Y, numbers.Z}) {
    *out++ = ' ';
    out = exact ? WriteExact(out, value) : core::WriteFixed<6>(out, value);
    if (!std::isfinite(value)) ++odd;
  }
  return out;
}

/// The same, side by side where the processor can and the numbers are ordinary.
TARNWICK_INLINE char* WriteThree(char* out, const Triple& numbers, bool exact, [[maybe_unused]] bool hasVectors,
                                 uint8_t& odd) {
  odd = 0;
#if TARNWICK_HAS_AVX_CODE
  if (hasVectors && !exact) {
    if (char* const end = WriteThreeNumbersAvx2(out, numbers.X, numbers.Y, numbers.Z)) return end;
  }
#endif
  return WriteEach(out, numbers, exact, odd);
}

}  // namespace

SkeletonFrame::SkeletonFrame(size_t boneCount, core::VectorLevel level)
    : m_hasVectors(TARNWICK_HAS_AVX_CODE && level >= core::VectorLevel::Avx2),
      m_places(boneCount + 1),
      m_text(std::make_unique_for_overwrite<char[]>(boneCount * LongestLine)),
      m_previous(std::make_unique_for_overwrite<char[]>(boneCount * LongestLine)) {}

void SkeletonFrame::Begin() {
  std::swap(m_text, m_previous);
  m_bone = 0;
  m_firstKept = 0;
  m_length = 0;
}

void SkeletonFrame::Line(const Triple* position, const Triple* rotation, ExactNumbers exact) {
  CopyKept();
  Place& place = m_places[m_bone];
  const Place before = place;
  char* out = m_text.get() + m_length;
  place.Line = m_length;
  if (position != nullptr) {
    out = core::WriteIntegerWide(out, static_cast<int64_t>(m_bone), 3);
    out = WriteThree(out, *position, exact.Position, m_hasVectors, place.OddPositions);
  } else {
    out = CopyPart(out, m_previous.get() + before.Line, before.Rotation - before.Line);
  }
  place.Rotation = static_cast<size_t>(out - m_text.get());
  if (rotation != nullptr) {
    out = WriteThree(out, *rotation, exact.Rotation, m_hasVectors, place.OddRotations);
    std::memcpy(out, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
    out += core::PlatformLineEnd.size();
  } else {
    out = CopyPart(out, m_previous.get() + before.Rotation, m_places[m_bone + 1].Line - before.Rotation);
  }
  m_nonFinite += static_cast<size_t>(place.OddPositions) + place.OddRotations;
  m_nonFinite -= static_cast<size_t>(before.OddPositions) + before.OddRotations;
  m_length = static_cast<size_t>(out - m_text.get());
  m_firstKept = ++m_bone;
}

void SkeletonFrame::CopyKept() {
  if (m_firstKept == m_bone) return;
  const size_t from = m_places[m_firstKept].Line;
  const size_t size = m_places[m_bone].Line - from;
  std::memcpy(m_text.get() + m_length, m_previous.get() + from, size);
  if (m_length != from) {
    for (size_t i = m_firstKept; i < m_bone; ++i) {
      m_places[i].Line += m_length - from;
      m_places[i].Rotation += m_length - from;
    }
  }
  m_length += size;
  m_firstKept = m_bone;
}

void SkeletonFrame::Write(core::TextWriter& writer) {
  CopyKept();
  m_places[m_bone].Line = m_length;
  writer.Raw({m_text.get(), m_length});
  writer.CountNonFinite(m_nonFinite);
}

}  // namespace tarnwick::smd
