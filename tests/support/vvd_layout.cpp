#include "support/layout_checks.h"

#include <cmath>

namespace tarnwick::tests {

using namespace model;

void LayoutChecks::CheckVvd() {
  const auto header = m_vvd.At<VvdHeader>(0);
  if (!Expect(header.has_value(), "the .vvd file is shorter than its header")) return;
  const VvdHeader vvd = **header;
  Expect(vvd.Id == VvdId && vvd.Version == 4, ".vvd id ", vvd.Id, ", version ", vvd.Version);
  Expect(vvd.Checksum == m_header.Checksum, "the .vvd file's checksum differs");
  m_lods = vvd.LodCount;
  if (!Expect(m_lods >= 1 && m_lods <= 8, m_lods, " levels of detail")) return;
  for (int k = 0; k < 8; ++k) {
    int64_t sum = 0;
    for (const auto& part : m_parts) {
      for (const ModelFacts& model : part) {
        for (const MeshFacts& mesh : model.Meshes) sum += mesh.Record.LodVertexCounts[k];
      }
    }
    Expect(vvd.LodVertexCount[k] == sum, "level ", k, " has ", vvd.LodVertexCount[k], " vertices, its meshes ", sum);
  }
  Expect(vvd.FixupOffset == 64, "fix-ups at ", vvd.FixupOffset);
  const int64_t vertices = (64 + 12 * int64_t{vvd.FixupCount} + 15) / 16 * 16;
  Expect(vvd.VertexOffset == vertices, "vertices at ", vvd.VertexOffset, ", not ", vertices);
  Expect(vvd.TangentOffset == vertices + 48 * int64_t{m_vertexCount}, "tangents at ", vvd.TangentOffset);
  Expect(m_vvd.Size() == vertices + 64 * int64_t{m_vertexCount}, "the .vvd file has ", m_vvd.Size(), " bytes for ",
         m_vertexCount, " vertices");
  const auto records = m_vvd.Array<VvdVertex>(vvd.VertexOffset, m_vertexCount);
  const auto fixups = m_vvd.Array<VvdFixup>(vvd.FixupOffset, vvd.FixupCount);
  if (!records || !fixups) return;
  for (const auto vertex : *records) m_vertices.push_back(*vertex);
  if (fixups->Count() > 0) ApplyFixups(*fixups);
  for (size_t i = 0; i < m_vertices.size(); ++i) CheckVertex(i);
}

void LayoutChecks::ApplyFixups(const core::RecordArray<VvdFixup>& fixups) {
  std::vector<VvdVertex> ordered;
  std::set<int64_t> covered;
  for (const auto fixup : fixups) {
    for (int64_t k = 0; k < fixup->VertexCount; ++k) {
      const int64_t at = int64_t{fixup->SourceVertex} + k;
      if (!Expect(at >= 0 && at < static_cast<int64_t>(m_vertices.size()), "a fix-up names vertex ", at)) return;
      Expect(covered.insert(at).second, "two fix-ups hold vertex ", at);
      ordered.push_back(m_vertices[static_cast<size_t>(at)]);
    }
  }
  Expect(ordered.size() == m_vertices.size(), "fix-ups hold ", ordered.size(), " of ", m_vertices.size(), " vertices");
  if (ordered.size() == m_vertices.size()) m_vertices = std::move(ordered);
}

void LayoutChecks::CheckVertex(size_t i) {
  const VvdVertex& vertex = m_vertices[i];
  if (!Expect(vertex.WeightCount >= 1 && vertex.WeightCount <= 3, "vertex ", i, " has ", int{vertex.WeightCount},
              " weights")) {
    return;
  }
  double sum = 0;
  for (int k = 0; k < 3; ++k) {
    sum += double{vertex.Weights[k]};
    if (k >= vertex.WeightCount) {
      Expect(vertex.Weights[k] == 0 && vertex.Bones[k] == 0, "vertex ", i, " fills an unused weight");
    } else {
      Expect(vertex.Bones[k] < m_header.BoneCount, "vertex ", i, " follows bone ", int{vertex.Bones[k]});
    }
  }
  Expect(std::abs(sum - 1) < 2e-6, "the weights of vertex ", i, " sum to ", sum);
}

}  // namespace tarnwick::tests
