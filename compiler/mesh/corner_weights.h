#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "smd/smd_source.h"

namespace tarnwick::compiler {

/// The weights of a corner as the model keeps them: bones by number, at most three, heaviest first where they are not
/// kept as the source has them.
struct CornerWeights {
  int32_t Count = 0;
  int32_t Bones[3] = {0, 0, 0};
  float Weights[3] = {0, 0, 0};
};

/// The weights of a corner. `bones` tells the bone of each node of the source; weights of one bone are added up. One
/// below 0.05 is dropped unless `keepValues`, the three heaviest stay, and they are made to sum 1 (with `keepValues`
/// only where they are not as they stand). Without links the corner follows its first bone alone.
CornerWeights WeightsOfCorner(const smd::SmdSource& source, const smd::SourceCorner& corner,
                              std::span<const int32_t> bones, bool keepValues);

}  // namespace tarnwick::compiler
