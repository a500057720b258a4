#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/bone_math_types.h"

namespace tarnwick::compiler {

/// The collision model.
struct BuiltPhysics {
  std::vector<std::string> Solids;  // as model::WritePhySolid gives them
  std::string Text;                 // as model::FormatPhyText gives it
  float Mass = 1;                   // of the whole
  std::vector<int32_t>
      BoneSolids;  // a bone of the model: its solid's number, else that of its nearest ancestor, else 0
  /// The box round all points of a $collisionmodel in the space of the posed model; nothing for $collisionjoints.
  std::optional<std::array<model::Vec3, 2>> Box;
};

}  // namespace tarnwick::compiler
