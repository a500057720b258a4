#include "compiler/mesh/corner_weights.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::compiler {

namespace {

constexpr float LeastWeight = 0.05f;
/// How far a sum may lie from 1 and still stand for it.
constexpr float SumTolerance = 1e-5f;
constexpr size_t MostLinks = 64;
/// Nearly every corner has no more than these. A place for all that there may be costs more than the rest of the work.
constexpr size_t FewLinks = 4;

template <size_t MostLinks>
CornerWeights WeightsOf(const smd::SmdSource& source, const smd::SourceCorner& corner, std::span<const int32_t> bones,
                        bool keepValues) {
  CornerWeights result;
  smd::Link links[MostLinks];
  size_t count = 0;
  const auto boneOf = [&](int32_t node) { return bones[static_cast<size_t>(node)]; };
  for (uint32_t i = 0; i < corner.LinkCount; ++i) {
    const smd::Link& link = source.Links[corner.FirstLink + i];
    const int32_t bone = boneOf(link.Bone);
    size_t k = 0;
    while (k < count && links[k].Bone != bone) ++k;
    if (k == count) {
      if (count == MostLinks) continue;
      links[count++] = {bone, 0};
    }
    links[k].Weight += link.Weight;
  }
  if (!keepValues) {
    count = static_cast<size_t>(
        std::remove_if(links, links + count, [](const smd::Link& link) { return !(link.Weight >= LeastWeight); }) -
        links);
  }
  // Values that are kept stand in their order too: not every model has the heaviest first.
  if (!keepValues || count > 3) {
    // By hand: the library's stable way asks for memory each time, and there are few to sort.
    for (size_t i = 1; i < count; ++i) {
      const smd::Link link = links[i];
      size_t k = i;
      for (; k > 0 && link.Weight > links[k - 1].Weight; --k) links[k] = links[k - 1];
      links[k] = link;
    }
  }
  count = std::min<size_t>(count, 3);
  float sum = 0;
  for (size_t i = 0; i < count; ++i) sum += links[i].Weight;
  if (count == 0 || !(sum > 0) || !std::isfinite(sum)) {
    result = {1, {boneOf(corner.Bone), 0, 0}, {1, 0, 0}};
    return result;
  }
  const bool unit = std::abs(sum - 1) <= SumTolerance;
  result.Count = static_cast<int32_t>(count);
  for (size_t i = 0; i < count; ++i) {
    result.Bones[i] = links[i].Bone;
    result.Weights[i] = keepValues && unit ? links[i].Weight : links[i].Weight / sum;
  }
  return result;
}

}  // namespace

CornerWeights WeightsOfCorner(const smd::SmdSource& source, const smd::SourceCorner& corner,
                              std::span<const int32_t> bones, bool keepValues) {
  const auto weights = corner.LinkCount <= FewLinks ? WeightsOf<FewLinks> : WeightsOf<MostLinks>;
  return weights(source, corner, bones, keepValues);
}

}  // namespace tarnwick::compiler
