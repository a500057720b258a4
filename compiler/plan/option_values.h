#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "model/bone_math_types.h"
#include "qc/script.h"

namespace tarnwick::compiler {

/// Argument `i` of an option as text; empty if it is not there.
inline std::string TextAt(const qc::Option& option, size_t i) {
  return i < option.Arguments.size() ? std::string(option.Arguments[i].Text) : std::string();
}

/// Argument `i` of an option as a number of a model's tables.
inline float NumberAt(const qc::Option& option, size_t i) {
  return static_cast<float>(option.Number(i));
}

/// Arguments `first` and the two behind it of a statement or an option.
template <typename Words>
model::Vec3 VecAt(const Words& words, size_t first) {
  return {static_cast<float>(words.Number(first)), static_cast<float>(words.Number(first + 1)),
          static_cast<float>(words.Number(first + 2))};
}

/// A number as the nearest whole one that the tables can hold; 0 for none.
inline int32_t Whole(double value) {
  return std::isfinite(value) ? static_cast<int32_t>(std::clamp(value, -2147483648.0, 2147483647.0)) : 0;
}

}  // namespace tarnwick::compiler
