#include "smd/number_vectors.h"

#if TARNWICK_HAS_AVX_CODE

#include <immintrin.h>

#include <array>
#include <cstdint>

namespace tarnwick::smd {

// The digits of all numbers are found side by side, each number's in a lane of its own; then a shuffle for each number
// puts the digits that are written into the places that they have in its text.

namespace {

constexpr float TooLarge = 999;  // for the texts here
constexpr size_t TextRoom = 16;  // of a blank, a sign, three digits, the point and six, and what is stored behind them

/// How the text of a number with a given sign and count of whole digits is made of its nine digits.
struct TextShape {
  std::array<uint8_t, TextRoom> Places;  // of the digit that stands there, or none
  std::array<char, TextRoom> Rest;       // what is or-ed to it: '0' to a digit, all of the others
};

constexpr uint8_t NoDigit = 0x80;
constexpr uint8_t HundredsPlace = 8;  // behind the eight lower digits
constexpr size_t DecimalsPlace = 2;
constexpr size_t Negative = 4;  // beside one less than the count of whole digits
constexpr size_t ShapeCount = 2 * Negative;

constexpr size_t WholeDigits(size_t shape) {
  return shape % Negative + 1;
}
constexpr size_t TextLength(size_t shape) {
  return 1 + shape / Negative + WholeDigits(shape) + 1 + 6;
}

alignas(64) constexpr auto Shapes = [] {
  constexpr uint8_t Whole[] = {HundredsPlace, 0, 1};
  std::array<TextShape, ShapeCount> shapes{};
  for (size_t i = 0; i < ShapeCount; ++i) {
    TextShape& shape = shapes[i];
    shape.Places.fill(NoDigit);
    if (WholeDigits(i) > 3) continue;  // is never asked for
    size_t at = 0;
    shape.Rest[at++] = ' ';
    if (i >= Negative) shape.Rest[at++] = '-';
    for (size_t digit = 3 - WholeDigits(i); digit < 3; ++digit) {
      shape.Places[at] = Whole[digit];
      shape.Rest[at++] = '0';
    }
    shape.Rest[at++] = '.';
    for (size_t digit = 0; digit < 6; ++digit) {
      shape.Places[at] = static_cast<uint8_t>(DecimalsPlace + digit);
      shape.Rest[at++] = '0';
    }
  }
  return shapes;
}();

constexpr auto Lengths = [] {
  std::array<uint8_t, ShapeCount> lengths{};
  for (size_t i = 0; i < ShapeCount; ++i) lengths[i] = static_cast<uint8_t>(TextLength(i));
  return lengths;
}();

/// Four numbers: in each half of `First` the digits of the first and the third, in `Second` of the second and the
/// fourth; their shapes in their order.
struct FourTexts {
  __m256i First, Second;
  alignas(32) uint64_t Shape[4];
};

/// Quotient of the low halves of four lanes; `factor` is 2^shift / divisor, rounded up.
TARNWICK_INLINE TARNWICK_AVX2 __m256i Quotient(__m256i values, uint32_t factor, int shift) {
  return _mm256_srli_epi64(_mm256_mul_epu32(values, _mm256_set1_epi64x(factor)), shift);
}
TARNWICK_INLINE TARNWICK_AVX2 __m256i Product(__m256i values, uint32_t factor) {
  return _mm256_mul_epu32(values, _mm256_set1_epi64x(factor));
}

/// -1 where the number of millionths, as a sum, is that of `whole` or more.
TARNWICK_INLINE TARNWICK_AVX2 __m256i IsAtLeast(__m256i scaled, double whole) {
  return _mm256_cmpgt_epi64(scaled, _mm256_castpd_si256(_mm256_set1_pd(0x1p52 + whole * 1e6 - 1)));
}

TARNWICK_INLINE TARNWICK_AVX2 void FindDigits(__m128 values, FourTexts& texts) {
  // As core::ScaledWhole does one: the number of millionths is exact as a double, and rounded by the sum.
  const __m256d wide = _mm256_cvtps_pd(values);
  const __m256d size = _mm256_andnot_pd(_mm256_set1_pd(-0.0), wide);
  const __m256d sum = _mm256_add_pd(_mm256_mul_pd(size, _mm256_set1_pd(1e6)), _mm256_set1_pd(0x1p52));
  const __m256i scaled = _mm256_castpd_si256(sum);  // in the low halves
  const __m256i hundreds = Quotient(scaled, 1'441'151'881, 57);
  const __m256i highFive = Quotient(scaled, 3'518'437'209, 45);
  const __m256i highFour = _mm256_sub_epi32(highFive, Product(hundreds, 10'000));
  const __m256i lowFour = _mm256_sub_epi32(scaled, Product(highFive, 10'000));
  // Halves of two numbers of four digits, quarters of two digits, bytes of one.
  const __m256i fours = _mm256_or_si256(highFour, _mm256_slli_epi64(lowFour, 32));
  const __m256i highTwo = _mm256_srli_epi16(_mm256_mulhi_epu16(fours, _mm256_set1_epi16(5243)), 3);
  const __m256i lowTwo = _mm256_sub_epi16(fours, _mm256_mullo_epi16(highTwo, _mm256_set1_epi16(100)));
  const __m256i twos = _mm256_or_si256(highTwo, _mm256_slli_epi32(lowTwo, 16));
  const __m256i highOne = _mm256_srli_epi16(_mm256_mullo_epi16(twos, _mm256_set1_epi16(103)), 10);
  const __m256i lowOne = _mm256_sub_epi16(twos, _mm256_mullo_epi16(highOne, _mm256_set1_epi16(10)));
  const __m256i ones = _mm256_or_si256(highOne, _mm256_slli_epi16(lowOne, 8));
  texts.First = _mm256_unpacklo_epi64(ones, hundreds);
  texts.Second = _mm256_unpackhi_epi64(ones, hundreds);
  const __m256i further = _mm256_add_epi64(IsAtLeast(scaled, 10), IsAtLeast(scaled, 100));
  const __m256i negative = _mm256_srli_epi64(_mm256_castpd_si256(wide), 63);
  const __m256i shapes = _mm256_sub_epi64(_mm256_slli_epi64(negative, 2), further);
  _mm256_store_si256(reinterpret_cast<__m256i*>(texts.Shape), shapes);
}

TARNWICK_INLINE TARNWICK_AVX2 char* WriteText(char* out, __m128i digits, uint64_t shape) {
  const TextShape& as = Shapes.data()[shape];
  const __m128i places = _mm_load_si128(reinterpret_cast<const __m128i*>(as.Places.data()));
  const __m128i rest = _mm_load_si128(reinterpret_cast<const __m128i*>(as.Rest.data()));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_or_si128(_mm_shuffle_epi8(digits, places), rest));
  return out + Lengths.data()[shape];
}

TARNWICK_INLINE TARNWICK_AVX2 char* WriteFour(char* out, const FourTexts& texts) {
  out = WriteText(out, _mm256_castsi256_si128(texts.First), texts.Shape[0]);
  out = WriteText(out, _mm256_castsi256_si128(texts.Second), texts.Shape[1]);
  out = WriteText(out, _mm256_extracti128_si256(texts.First, 1), texts.Shape[2]);
  return WriteText(out, _mm256_extracti128_si256(texts.Second, 1), texts.Shape[3]);
}

}  // namespace

TARNWICK_AVX2 char* WriteEightNumbersAvx2(char* out, const void* values) {
  const __m256 all = _mm256_castsi256_ps(_mm256_loadu_si256(static_cast<const __m256i*>(values)));
  const __m256 sizes = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), all);
  if (_mm256_movemask_ps(_mm256_cmp_ps(sizes, _mm256_set1_ps(TooLarge), _CMP_NLT_UQ)) != 0) return nullptr;
  FourTexts low, high;
  FindDigits(_mm256_castps256_ps128(all), low);
  FindDigits(_mm256_extractf128_ps(all, 1), high);
  return WriteFour(WriteFour(out, low), high);
}

TARNWICK_AVX2 char* WriteThreeNumbersAvx2(char* out, float x, float y, float z) {
  const __m128 all = _mm_setr_ps(x, y, z, 0);
  const __m128 sizes = _mm_andnot_ps(_mm_set1_ps(-0.0F), all);
  if (_mm_movemask_ps(_mm_cmp_ps(sizes, _mm_set1_ps(TooLarge), _CMP_NLT_UQ)) != 0) return nullptr;
  FourTexts texts;
  FindDigits(all, texts);
  out = WriteText(out, _mm256_castsi256_si128(texts.First), texts.Shape[0]);
  out = WriteText(out, _mm256_castsi256_si128(texts.Second), texts.Shape[1]);
  return WriteText(out, _mm256_extracti128_si256(texts.First, 1), texts.Shape[2]);
}

}  // namespace tarnwick::smd

#endif
