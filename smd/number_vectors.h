#pragma once

#include <cstddef>

#include "core/vector_code.h"

namespace tarnwick::smd {

inline constexpr size_t EightNumbers = 8;

#if TARNWICK_HAS_AVX_CODE
/// Writes a blank and the number, as core::WriteFixed<6> writes it, for each of the values. Returns the end of the
/// text, behind which a few characters of no meaning may stand; nothing, and no text, where one of them is 999 or
/// larger, infinite or not a number.
[[nodiscard]] TARNWICK_AVX2 char* WriteEightNumbersAvx2(char* out, const void* values);
/// The same for three numbers.
[[nodiscard]] TARNWICK_AVX2 char* WriteThreeNumbersAvx2(char* out, float x, float y, float z);
#endif

}  // namespace tarnwick::smd
