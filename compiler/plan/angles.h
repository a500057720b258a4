#pragma once

#include <numbers>

#include "core/number_parse.h"
#include "core/number_text.h"

namespace tarnwick::compiler {

/// Degrees as typed in radians. A number that is the shortest text of a float stands for that float.
inline float RadiansOf(double degrees) {
  const auto nearest = static_cast<float>(degrees);
  const bool isFloat = core::ParseReal(core::ShortestDecimal(nearest)) == degrees;
  return static_cast<float>((isFloat ? double{nearest} : degrees) * (std::numbers::pi / 180));
}

}  // namespace tarnwick::compiler
