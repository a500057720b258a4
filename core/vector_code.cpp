#include "core/vector_code.h"

#ifdef _MSC_VER
#include <intrin.h>
#endif

namespace tarnwick::core {

namespace {

VectorLevel FindLevel() {
#if TARNWICK_HAS_SSSE3_CODE && defined(__GNUC__)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("ssse3")) return VectorLevel::Plain;
#if TARNWICK_HAS_AVX_CODE
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma") || !__builtin_cpu_supports("bmi") ||
      !__builtin_cpu_supports("popcnt")) {
    return VectorLevel::Ssse3;
  }
  if (!__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512bw") ||
      !__builtin_cpu_supports("avx512dq") || !__builtin_cpu_supports("avx512vl")) {
    return VectorLevel::Avx2;
  }
  return VectorLevel::Avx512;
#else
  return VectorLevel::Ssse3;
#endif
#elif defined(_MSC_VER) && TARNWICK_HAS_SSSE3_CODE
  int registers[4];
  __cpuid(registers, 1);
  return (registers[2] & 1 << 9) != 0 ? VectorLevel::Ssse3 : VectorLevel::Plain;
#else
  return VectorLevel::Plain;
#endif
}

}  // namespace

VectorLevel HighestVectorLevel() {
  static const VectorLevel level = FindLevel();
  return level;
}

}  // namespace tarnwick::core
