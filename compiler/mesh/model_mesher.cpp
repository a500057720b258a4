#include "compiler/mesh/model_mesher.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace tarnwick::compiler {

namespace {

/// How far a vertex of a coarser level may lie from one of a finer and still be taken for it, in units. Published
/// models join over 0.061 units, and keep apart what lies farther.
constexpr double LodReach = 0.0625;

/// A triangle by its corners, whichever of them is named first.
uint64_t KeyOf(const MeshTriangle& triangle) {
  const auto least = static_cast<size_t>(std::min_element(triangle.begin(), triangle.end()) - triangle.begin());
  uint64_t key = 0;
  for (size_t i = 0; i < 3; ++i) key = key << 21 | (triangle[(least + i) % 3] & 0x1FFFFF);
  return key;
}

void TurnAway(MeshVertex& vertex, const model::Vec3& middle) {
  const double x = double{vertex.Position.x} - double{middle.x};
  const double y = double{vertex.Position.y} - double{middle.y};
  const double z = double{vertex.Position.z} - double{middle.z};
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0)) return;
  vertex.Normal = {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

}  // namespace

ModelMesher::ModelMesher(const CompileOptions& options) : m_options(options) {}

uint32_t ModelMesher::VertexOf(Part& part, const MeshVertex& corner, size_t lod) {
  uint32_t number = 0;
  int64_t near = -1;
  if (lod > 0 && m_options.NormalAngle > 0) near = part.Joiner.FindNear(corner, part.FinerVertices, LodReach);
  number = near >= 0 ? static_cast<uint32_t>(near) : part.Joiner.Add(corner);
  if (number >= part.Lods.size()) part.Lods.resize(number + 1);
  part.Lods[number] = static_cast<uint8_t>(std::max<size_t>(part.Lods[number], lod));
  return number;
}

void ModelMesher::Add(const smd::SmdSource& source, const SourceUse& use, const ModelBones& bones, size_t lod,
                      const MaterialTextures& textures, std::array<bool, 256>& used) {
  const CornerVertices make(source, use, bones, lod, m_options);
  for (auto& [texture, part] : m_parts) {
    part.Met.clear();
    part.FinerVertices = static_cast<uint32_t>(part.Joiner.Vertices.size());
  }
  for (size_t t = 0; t < source.TriangleMaterials.size(); ++t) {
    const int32_t texture = textures[static_cast<size_t>(source.TriangleMaterials[t])];
    if (texture < 0) continue;
    Part& part = m_parts.try_emplace(texture, JoinRule{m_options.NormalAngle}).first->second;
    const auto middle = m_middles.find(texture);
    MeshTriangle triangle{};
    for (size_t k = 0; k < 3; ++k) {
      MeshVertex vertex = make.Make(source.Corners[3 * t + k]);
      if (middle != m_middles.end()) TurnAway(vertex, middle->second);
      for (int32_t i = 0; i < vertex.Weights.Count; ++i) used[static_cast<uint8_t>(vertex.Weights.Bones[i])] = true;
      triangle[k] = VertexOf(part, vertex, lod);
    }
    // A model winds its triangles the other way round.
    if (!use.Reverse) std::swap(triangle[1], triangle[2]);
    if (m_options.NormalAngle > 0) {
      if (triangle[0] == triangle[1] || triangle[1] == triangle[2] || triangle[0] == triangle[2]) continue;
      if (!part.Met.insert(KeyOf(triangle)).second) continue;
    }
    part.Triangles[lod].push_back(triangle);
  }
}

std::map<int32_t, MeshDraft> ModelMesher::Take() {
  std::map<int32_t, MeshDraft> meshes;
  for (auto& [texture, part] : m_parts) {
    meshes.emplace(texture,
                   MeshDraft{std::move(part.Joiner.Vertices), std::move(part.Lods), std::move(part.Triangles)});
  }
  m_parts.clear();
  return meshes;
}

void SortVertices(MeshDraft& mesh, std::span<const uint32_t> ranks) {
  std::vector<uint32_t> order(mesh.Vertices.size());
  std::iota(order.begin(), order.end(), 0U);
  const auto rank = [&](uint32_t vertex) { return ranks.empty() ? 0 : ranks[vertex]; };
  std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
    return std::pair(-int{mesh.Lods[a]}, rank(a)) < std::pair(-int{mesh.Lods[b]}, rank(b));
  });
  std::vector<MeshVertex> vertices;
  std::vector<uint8_t> lods;
  std::vector<uint32_t> numbers(order.size());
  vertices.reserve(order.size());
  lods.reserve(order.size());
  for (const uint32_t old : order) {
    numbers[old] = static_cast<uint32_t>(vertices.size());
    vertices.push_back(mesh.Vertices[old]);
    lods.push_back(mesh.Lods[old]);
  }
  mesh.Vertices = std::move(vertices);
  mesh.Lods = std::move(lods);
  for (auto& triangles : mesh.Triangles) {
    for (MeshTriangle& triangle : triangles) {
      for (uint32_t& corner : triangle) corner = numbers[corner];
    }
  }
}

}  // namespace tarnwick::compiler
