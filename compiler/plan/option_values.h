#pragma once

#include <string>

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

}  // namespace tarnwick::compiler
