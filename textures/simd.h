#pragma once

// Byte shuffles of the processor (SSSE3), where there are any: code that uses them is compiled beside the portable
// code and chosen at run time.

#if defined(__x86_64__) || defined(_M_X64)
#define TARNWICK_HAS_SSSE3_CODE 1
#include <tmmintrin.h>

#include <cstdint>

#ifdef _MSC_VER
#include <intrin.h>
#define TARNWICK_SSSE3
#else
/// Marks a function that may use SSSE3; call it only where HasSsse3() holds.
#define TARNWICK_SSSE3 __attribute__((target("ssse3")))
#endif

namespace tarnwick::textures {

/// Whether this processor has SSSE3.
inline bool HasSsse3() {
#ifdef _MSC_VER
  int registers[4];
  __cpuid(registers, 1);
  return (registers[2] & 1 << 9) != 0;
#else
  return __builtin_cpu_supports("ssse3") != 0;
#endif
}

TARNWICK_SSSE3 inline __m128i Load16(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
TARNWICK_SSSE3 inline void Store16(void* to, __m128i value) {
  _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

}  // namespace tarnwick::textures
#else
#define TARNWICK_HAS_SSSE3_CODE 0
#endif
