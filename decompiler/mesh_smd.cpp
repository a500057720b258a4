#include "decompiler/mesh_smd.h"

#include <algorithm>
#include <cstring>
#include <memory>

// A vertex stands in about six triangles, and strips are ordered so that those come close together. The lines of the
// vertices met last are kept and copied; the table is small enough to stay in the processor's cache.

namespace tarnwick::decompiler {

namespace {

bool IsFinite(float value) {
  return value - value == 0;
}

uint64_t CountNonFinite(const VvdVertex& vertex, bool unweighted) {
  uint64_t count = 0;
  for (const float value : {vertex.Position.x, vertex.Position.y, vertex.Position.z, vertex.Normal.x, vertex.Normal.y,
                            vertex.Normal.z, vertex.U, vertex.V}) {
    if (!IsFinite(value)) ++count;
  }
  const int weights = unweighted ? 0 : std::min<int>(vertex.WeightCount, 3);
  for (int i = 0; i < weights; ++i) {
    if (!IsFinite(vertex.Weights[i])) ++count;
  }
  return count;
}

char* WriteSpacedFloat(char* out, float value) {
  *out++ = ' ';
  return core::WriteFixed<6>(out, value);
}

/// The lines of the vertices met last, found by the low bits of the vertex's number.
class LineCache {
 public:
  explicit LineCache(bool unweighted)
      : m_unweighted(unweighted), m_lines(std::make_unique_for_overwrite<Line[]>(LineCount)) {
    for (size_t i = 0; i < LineCount; ++i) m_lines[i].Vertex = nullptr;
  }

  void Write(core::TextWriter& writer, const VvdVertex& vertex) {
    Line& line = m_lines[(reinterpret_cast<uintptr_t>(&vertex) / sizeof(VvdVertex)) % LineCount];
    if (line.Vertex != &vertex) {
      char text[LongestVertexLine];
      const auto length = static_cast<size_t>(WriteVertexLine(text, vertex, m_unweighted) - text);
      const uint64_t nonFinite = CountNonFinite(vertex, m_unweighted);
      if (length > sizeof line.Text || nonFinite > 0) {
        writer.Raw(std::string_view(text, length));
        writer.CountNonFinite(nonFinite);
        return;
      }
      std::memcpy(line.Text, text, length);
      line.Length = static_cast<uint32_t>(length);
      line.Vertex = &vertex;
    }
    writer.Raw(std::string_view(line.Text, line.Length));
  }

 private:
  static constexpr size_t LineCount = 2048;
  struct Line {
    const VvdVertex* Vertex;
    uint32_t Length;
    char Text[180];
  };

  bool m_unweighted;
  std::unique_ptr<Line[]> m_lines;
};

}  // namespace

void WriteReferenceHead(core::TextWriter& writer, const ReferenceSkeleton& skeleton) {
  writer.Text("version 1\nnodes\n");
  writer.Raw(skeleton.NodeLines);
  writer.Text("end\nskeleton\ntime 0\n");
  writer.Raw(skeleton.BoneLines);
  writer.CountNonFinite(skeleton.BoneNonFinite);
  writer.Text("end\ntriangles\n");
}

int MainBone(const VvdVertex& vertex) {
  int bone = 0;
  float highest = 0;
  const int count = std::min<int>(vertex.WeightCount, 3);
  for (int i = 0; i < count; ++i) {
    if (vertex.Weights[i] > highest) {
      highest = vertex.Weights[i];
      bone = vertex.Bones[i];
    }
  }
  return bone;
}

char* WriteVertexLine(char* out, const VvdVertex& vertex, bool unweighted) {
  out = core::WriteInteger(out, MainBone(vertex));
  out = WriteSpacedFloat(out, vertex.Position.x);
  out = WriteSpacedFloat(out, vertex.Position.y);
  out = WriteSpacedFloat(out, vertex.Position.z);
  out = WriteSpacedFloat(out, vertex.Normal.x);
  out = WriteSpacedFloat(out, vertex.Normal.y);
  out = WriteSpacedFloat(out, vertex.Normal.z);
  out = WriteSpacedFloat(out, vertex.U);
  out = WriteSpacedFloat(out, 0.0f - vertex.V);
  if (!unweighted) {
    const int count = std::min<int>(vertex.WeightCount, 3);
    *out++ = ' ';
    out = core::WriteInteger(out, count);
    for (int i = 0; i < count; ++i) {
      *out++ = ' ';
      out = core::WriteInteger(out, vertex.Bones[i]);
      out = WriteSpacedFloat(out, vertex.Weights[i]);
    }
  }
  std::memcpy(out, core::PlatformLineEnd.data(), core::PlatformLineEnd.size());
  return out + core::PlatformLineEnd.size();
}

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, bool unweighted) {
  LineCache lines(unweighted);
  for (const MeshPiece& mesh : pieces.Meshes) {
    for (const StripPiece& strip : mesh.Strips) {
      for (int64_t k = 0; k < strip.IndexCount; ++k) {
        const uint16_t index = strip.Indices[TriangleIndex(k)]->Vertex;
        const VvdVertex* vertex = GetMeshVertex(mesh.Vertices, strip.GroupVertices[index]->MeshVertex);
        if (k % 3 == 0) writer.Text(mesh.MaterialLine);
        lines.Write(writer, *vertex);
      }
    }
  }
}

}  // namespace tarnwick::decompiler
