#pragma once

// How this house chooses vector code. A function that gains from wider registers than every processor has is written
// once more for each level that pays, marked with what it may use, and called only where the processor has that:
//
//     TARNWICK_SSSE3 void SwapSsse3(std::span<uint8_t> bytes);    // intrinsics, or
//     TARNWICK_AVX2 void TurnAvx2(Lanes& lanes) { Turn(lanes); }  // a plain loop that the compiler makes vectors of
//
//     if (core::HasVectors(core::VectorLevel::Ssse3)) return SwapSsse3(bytes);
//     Swap(bytes);
//
// - The plain form stays, gives the same bytes, and is compared with in the tests at every level of the machine.
// - A loop that is compiled for several levels is one body, marked TARNWICK_INLINE like all that it calls, and its file
//   is compiled with the options of tarnwick_vector_files (cmake/TarnwickBuild.cmake), so that it is fast in every
//   optimised build.
// - The choice is made by an ordinary branch or pointer at the first call, never by the loader: resolvers of
//   target_clones run before sanitizers have started, and only one compiler and system have them.
// - Where a level is not to be had at all (another processor or compiler) its marker is empty and HasVectors says no.

#if defined(__x86_64__) || defined(_M_X64)
#define TARNWICK_HAS_SSSE3_CODE 1
#else
#define TARNWICK_HAS_SSSE3_CODE 0
#endif

// Windows' calling convention and GCC do not agree on the alignment of wide registers on the stack (GCC bug 54412).
#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
#define TARNWICK_HAS_AVX_CODE 1
#define TARNWICK_AVX2 __attribute__((target("avx2,fma,bmi,popcnt")))
#define TARNWICK_AVX512 __attribute__((target("avx2,fma,bmi,popcnt,avx512f,avx512bw,avx512dq,avx512vl")))
#else
#define TARNWICK_HAS_AVX_CODE 0
#define TARNWICK_AVX2
#define TARNWICK_AVX512
#endif

#ifdef __GNUC__
#define TARNWICK_INLINE [[gnu::always_inline]] inline
#else
#define TARNWICK_INLINE inline
#endif
#if TARNWICK_HAS_SSSE3_CODE && defined(__GNUC__)
#define TARNWICK_SSSE3 __attribute__((target("ssse3")))
#else
#define TARNWICK_SSSE3
#endif

namespace tarnwick::core {

/// What a processor can do, in rising order; each level holds those before it.
enum class VectorLevel {
  Plain,   // what every processor of its kind has
  Ssse3,   // byte shuffles of 16 bytes
  Avx2,    // 32 bytes, fused multiplications, and what came with them: finding and counting bits
  Avx512,  // 64 bytes
};

/// The highest level of this processor for which the program has code.
[[nodiscard]] VectorLevel HighestVectorLevel();

/// Whether code of `level` may be called.
[[nodiscard]] inline bool HasVectors(VectorLevel level) {
  return level <= HighestVectorLevel();
}

}  // namespace tarnwick::core
