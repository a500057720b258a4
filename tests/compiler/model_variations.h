#pragma once

#include <cstdint>

#include "compiler/compile_options.h"

namespace tarnwick::tests {

/// What real models have and our own compile does not write.
enum ModelVariation : uint32_t {
  VaryRepeatedVertices = 1U << 0,  // two vertices of a mesh become equal
  VaryHiddenVertices = 1U << 1,    // the last triangles of each mesh go, their vertices stay
  VaryLongNames = 1U << 2,         // names of models fill their field
  VaryHitboxNames = 1U << 3,       // lead past the file
  VaryWeights = 1U << 4,           // in another order
  VarySigns = 1U << 5,             // positions of the header with negative zeros
  ModelVariations = 6
};

/// Changes the files of a sound model so that it stays one.
void VaryModel(compiler::CompiledFiles& files, uint32_t seed, uint32_t variations);

}  // namespace tarnwick::tests
