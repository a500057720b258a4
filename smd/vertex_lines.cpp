#include "smd/vertex_lines.h"

#include <algorithm>

namespace tarnwick::smd {

namespace {

char* WriteSpacedFloat(char* out, float value) {
  *out++ = ' ';
  return core::WriteFixed<6>(out, value);
}

char* WriteSpacedTriple(char* out, const Triple& value) {
  out = WriteSpacedFloat(out, value.X);
  out = WriteSpacedFloat(out, value.Y);
  return WriteSpacedFloat(out, value.Z);
}

bool IsFinite(float value) {
  return value - value == 0;
}

}  // namespace

char* WriteVertexLine(char* out, const Vertex& vertex, bool withLinks) {
  out = core::WriteInteger(out, vertex.Bone);
  out = WriteSpacedTriple(out, vertex.Position);
  out = WriteSpacedTriple(out, vertex.Normal);
  out = WriteSpacedFloat(out, vertex.U);
  out = WriteSpacedFloat(out, vertex.V);
  if (withLinks) {
    *out++ = ' ';
    out = core::WriteInteger(out, vertex.LinkCount);
    for (int32_t i = 0; i < vertex.LinkCount; ++i) {
      const Link& link = vertex.Links[static_cast<size_t>(i)];
      *out++ = ' ';
      out = core::WriteInteger(out, link.Bone);
      out = WriteSpacedFloat(out, link.Weight);
    }
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

VertexLines::VertexLines(core::TextWriter& writer, bool withLinks)
    : m_writer(writer),
      m_withLinks(withLinks),
      m_keys(std::make_unique_for_overwrite<uint64_t[]>(LineCount)),
      m_lines(std::make_unique_for_overwrite<Line[]>(LineCount)) {
  std::fill_n(m_keys.get(), LineCount, NoKey);
}

void VertexLines::WriteNew(uint64_t key, const Vertex& vertex) {
  char* const text = m_writer.Room(LongestVertexLine);
  const auto length = static_cast<size_t>(WriteVertexLine(text, vertex, m_withLinks) - text);
  m_writer.Take(length);
  const uint64_t nonFinite = CountNonFinite(vertex, m_withLinks);
  Line& line = m_lines[key % LineCount];
  if (nonFinite > 0 || length > sizeof line.Text) {  // written anew each time, so that all are counted
    m_writer.CountNonFinite(nonFinite);
    return;
  }
  std::memcpy(line.Text, text, length);
  line.Length = static_cast<uint32_t>(length);
  m_keys[key % LineCount] = key;
}

}  // namespace tarnwick::smd
