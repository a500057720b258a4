#include "decompiler/sources/posed_vertices.h"

#include <algorithm>

#if TARNWICK_HAS_AVX_CODE
#include <immintrin.h>
#endif

namespace tarnwick::decompiler::sources {

namespace {

using model::VvdVertex;

void Take(std::span<const VvdVertex> vertices, std::span<const BonePlacement> bones, BoxOfPoints& box) {
  float least[3] = {box.Least.x, box.Least.y, box.Least.z};
  float most[3] = {box.Most.x, box.Most.y, box.Most.z};
  for (const VvdVertex& vertex : vertices) {
    const double x = vertex.Position.x, y = vertex.Position.y, z = vertex.Position.z;
    float at[3] = {};
    for (int k = 0; k < std::min<int>(vertex.WeightCount, 3); ++k) {
      if (vertex.Bones[k] >= bones.size()) continue;
      const auto& [turn, move, moved] = bones[vertex.Bones[k]];
      const float weight = vertex.Weights[k];
      for (size_t i = 0; i < 3; ++i) {
        at[i] += weight * static_cast<float>(turn[0][i] * x + turn[1][i] * y + turn[2][i] * z + move[i]);
      }
    }
    for (size_t i = 0; i < 3; ++i) {
      least[i] = std::min(least[i], at[i]);
      most[i] = std::max(most[i], at[i]);
    }
  }
  box = {{least[0], least[1], least[2]}, {most[0], most[1], most[2]}};
}

#if TARNWICK_HAS_AVX_CODE

/// The same steps with the three numbers of a point in one register, and nothing in a fourth place.
TARNWICK_AVX2 void TakeAvx2(std::span<const VvdVertex> vertices, std::span<const BonePlacement> bones,
                            BoxOfPoints& box) {
  __m128 least = _mm_setr_ps(box.Least.x, box.Least.y, box.Least.z, 0);
  __m128 most = _mm_setr_ps(box.Most.x, box.Most.y, box.Most.z, 0);
  for (const VvdVertex& vertex : vertices) {
    const __m256d x = _mm256_set1_pd(vertex.Position.x), y = _mm256_set1_pd(vertex.Position.y),
                  z = _mm256_set1_pd(vertex.Position.z);
    __m128 at = _mm_setzero_ps();
    for (int k = 0; k < std::min<int>(vertex.WeightCount, 3); ++k) {
      if (vertex.Bones[k] >= bones.size()) continue;
      const BonePlacement& bone = bones[vertex.Bones[k]];
      __m256d place = _mm256_mul_pd(_mm256_loadu_pd(bone.Turn[0].data()), x);
      place = _mm256_add_pd(place, _mm256_mul_pd(_mm256_loadu_pd(bone.Turn[1].data()), y));
      place = _mm256_add_pd(place, _mm256_mul_pd(_mm256_loadu_pd(bone.Turn[2].data()), z));
      place = _mm256_add_pd(place, _mm256_loadu_pd(bone.Move.data()));
      at = _mm_add_ps(at, _mm_mul_ps(_mm_set1_ps(vertex.Weights[k]), _mm256_cvtpd_ps(place)));
    }
    least = _mm_min_ps(at, least);  // what is no number leaves the box as it is, as with std::min
    most = _mm_max_ps(at, most);
  }
  alignas(16) float ends[2][4];
  _mm_store_ps(ends[0], least);
  _mm_store_ps(ends[1], most);
  box = {{ends[0][0], ends[0][1], ends[0][2]}, {ends[1][0], ends[1][1], ends[1][2]}};
}

#endif

}  // namespace

BonePlacement BonePlacement::Of(const model::RigidTransform& transform, bool moved) {
  BonePlacement placement;
  placement.Moved = moved;
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) placement.Turn[column][row] = transform.Turn[row][column];
    placement.Move[row] = transform.Move[row];
  }
  return placement;
}

bool HasMoved(const VvdVertex& vertex, std::span<const BonePlacement> bones) {
  for (int k = 0; k < std::min<int>(vertex.WeightCount, 3); ++k) {
    if (vertex.Bones[k] < bones.size() && bones[vertex.Bones[k]].Moved) return true;
  }
  return false;
}

void TakePosedVertices(std::span<const model::VvdVertex> vertices, std::span<const BonePlacement> bones,
                       BoxOfPoints& box, [[maybe_unused]] core::VectorLevel level) {
#if TARNWICK_HAS_AVX_CODE
  if (level >= core::VectorLevel::Avx2) return TakeAvx2(vertices, bones, box);
#endif
  Take(vertices, bones, box);
}

}  // namespace tarnwick::decompiler::sources
