#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/vector_code.h"
#include "smd/smd_values.h"

namespace tarnwick::smd {

/// A line that begins with a whole number: a bone's place, a vertex of a shape, a corner of a triangle.
struct NumberLine {
  static constexpr size_t MostValues = 8;
  static constexpr size_t MostLinks = 4;

  int32_t Number = 0;
  std::array<float, MostValues> Values;
  size_t LinkCount = 0;
  std::array<Link, MostLinks> Links;
};

/// How many numbers follow the first.
enum class NumberLineKind : uint8_t { Place = 6, Corner = 8 };

#if TARNWICK_HAS_AVX_CODE
/// Reads the line at `at`, its first letter behind its blanks, if it is written as nearly all are: blanks apart, a
/// whole number, then numbers of six decimals, and behind a corner, if more follows, the count of its links and a bone
/// and a weight for each. Gives where the line ends and fills `line` with what reading it number by number gives;
/// nothing where anything is written otherwise, where a number lies too near to the middle between two floats, and near
/// the ends of `text`.
TARNWICK_AVX2 const char* ReadNumberLineAvx2(std::string_view text, const char* at, NumberLineKind kind,
                                             NumberLine& line);
#endif

}  // namespace tarnwick::smd
