#include "smd/skeleton_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "core/number_text.h"

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

char* WriteThreeExact(char* out, float x, float y, float z) {
  for (const float value : {x, y, z}) {
    *out++ = ' ';
    out = WriteExact(out, value);
  }
  return out;
}

char* WriteThree(char* out, float x, float y, float z) {
  *out++ = ' ';
  out = core::WriteFixed<6>(out, x);
  *out++ = ' ';
  out = core::WriteFixed<6>(out, y);
  *out++ = ' ';
  return core::WriteFixed<6>(out, z);
}

/// Copies a part of a line and perhaps some bytes behind it; a line's room is far longer than its parts.
char* CopyPart(char* out, const char* part, size_t size) {
  constexpr size_t Usual = 64;
  if (size <= Usual) {
    std::memcpy(out, part, Usual);
  } else {
    std::memcpy(out, part, size);
  }
  return out + size;
}

uint8_t CountNonFinite(float x, float y, float z) {
  if (x * 0 + y * 0 + z * 0 == 0) return 0;
  uint8_t count = 0;
  for (const float value : {x, y, z}) count = static_cast<uint8_t>(count + (value - value == 0 ? 0 : 1));
  return count;
}

}  // namespace

SkeletonFrame::SkeletonFrame(size_t boneCount)
    : m_places(boneCount + 1),
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
    out = exact.Position ? WriteThreeExact(out, position->X, position->Y, position->Z)
                         : WriteThree(out, position->X, position->Y, position->Z);
    place.OddPositions = CountNonFinite(position->X, position->Y, position->Z);
  } else {
    out = CopyPart(out, m_previous.get() + before.Line, before.Rotation - before.Line);
  }
  place.Rotation = static_cast<size_t>(out - m_text.get());
  if (rotation != nullptr) {
    out = exact.Rotation ? WriteThreeExact(out, rotation->X, rotation->Y, rotation->Z)
                         : WriteThree(out, rotation->X, rotation->Y, rotation->Z);
    std::memcpy(out, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
    out += core::PlatformLineEnd.size();
    place.OddRotations = CountNonFinite(rotation->X, rotation->Y, rotation->Z);
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
