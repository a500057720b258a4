#include "decompiler/sources/lod_bones.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <vector>

#include "model/mesh_pieces.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr int MostLods = 8;
constexpr float WeightTolerance = 0.01f;

/// Place and texture coordinates: what a vertex keeps from level to level.
using VertexKey = std::array<uint32_t, 5>;

VertexKey KeyOf(const VvdVertex& vertex) {
  const auto bits = [](float value) { return std::bit_cast<uint32_t>(value); };
  return {bits(vertex.Position.x), bits(vertex.Position.y), bits(vertex.Position.z), bits(vertex.U), bits(vertex.V)};
}

int WeightCount(const VvdVertex& vertex) {
  return std::min<int>(vertex.WeightCount, 3);
}

float WeightOn(const VvdVertex& vertex, int32_t bone) {
  float weight = 0;
  for (int i = 0; i < WeightCount(vertex); ++i) {
    if (vertex.Bones[i] == bone) weight += vertex.Weights[i];
  }
  return weight;
}

template <typename Take>
void ForEachVertex(const MeshPieces& pieces, const Take& take) {
  for (const MeshPiece& mesh : pieces.Meshes) {
    for (const StripPiece& strip : mesh.Strips) {
      for (int64_t k = 0; k < strip.IndexCount; ++k) {
        const uint16_t index = strip.Indices[k]->Vertex;
        take(*GetMeshVertex(mesh.Vertices, strip.GroupVertices[index]->MeshVertex));
      }
    }
  }
}

/// The only bone that has more weight in `coarse` than in `fine`.
std::optional<int32_t> GainerOf(const VvdVertex& fine, const VvdVertex& coarse) {
  std::optional<int32_t> gainer;
  for (int i = 0; i < WeightCount(coarse); ++i) {
    const int32_t bone = coarse.Bones[i];
    if (WeightOn(coarse, bone) <= WeightOn(fine, bone) + WeightTolerance) continue;
    if (gainer && *gainer != bone) return std::nullopt;
    gainer = bone;
  }
  return gainer;
}

}  // namespace

std::map<int32_t, int32_t> FindReplacedBones(JobContext& job, const core::Record<StudioModel>& model,
                                             const core::Record<VtxModelLod>& reference,
                                             const core::Record<VtxModelLod>& lod, int number) {
  std::map<int32_t, int32_t> replaced;
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr || number >= MostLods) return replaced;
  std::vector<bool> isGone;
  for (const auto bone : skeleton->Bones) {
    isGone.push_back((bone->Flags & BoneFlagVertexLod0) != 0 && (bone->Flags & (BoneFlagVertexLod0 << number)) == 0);
  }
  if (std::find(isGone.begin(), isGone.end(), true) == isGone.end()) return replaced;

  const MeshPieces fine = GatherMeshPieces(job, model, reference);
  const MeshPieces coarse = GatherMeshPieces(job, model, lod);
  if (!fine.Complete || !coarse.Complete) return replaced;
  std::map<VertexKey, const VvdVertex*> vertices;
  ForEachVertex(fine, [&](const VvdVertex& vertex) {
    for (int i = 0; i < WeightCount(vertex); ++i) {
      const size_t bone = vertex.Bones[i];
      if (bone < isGone.size() && isGone[bone]) vertices.emplace(KeyOf(vertex), &vertex);
    }
  });
  std::map<int32_t, std::map<int32_t, int64_t>> votes;
  ForEachVertex(coarse, [&](const VvdVertex& vertex) {
    const auto found = vertices.find(KeyOf(vertex));
    if (found == vertices.end()) return;
    const auto gainer = GainerOf(*found->second, vertex);
    if (!gainer || !skeleton->Bones.Holds(*gainer)) return;
    for (int i = 0; i < WeightCount(*found->second); ++i) {
      const size_t bone = found->second->Bones[i];
      if (bone < isGone.size() && isGone[bone]) ++votes[static_cast<int32_t>(bone)][*gainer];
    }
  });
  for (const auto& [bone, others] : votes) {
    replaced[bone] = std::max_element(others.begin(), others.end(), [](const auto& a, const auto& b) {
                       return a.second < b.second;
                     })->first;
  }
  return replaced;
}

}  // namespace tarnwick::decompiler::sources
