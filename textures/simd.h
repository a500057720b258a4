#pragma once

// Byte shuffles of the processor (SSSE3), where there are any; core/vector_code.h tells how code that uses them is
// chosen.

#include "core/vector_code.h"

#if TARNWICK_HAS_SSSE3_CODE
#include <tmmintrin.h>

namespace tarnwick::textures {

/// Whether this processor has SSSE3.
inline bool HasSsse3() {
  return core::HasVectors(core::VectorLevel::Ssse3);
}

TARNWICK_SSSE3 inline __m128i Load16(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
TARNWICK_SSSE3 inline void Store16(void* to, __m128i value) {
  _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

}  // namespace tarnwick::textures
#endif
