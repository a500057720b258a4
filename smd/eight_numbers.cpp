#include "smd/eight_numbers.h"

#if TARNWICK_HAS_AVX_CODE

#include <immintrin.h>

#include <array>
#include <cstdint>

namespace tarnwick::smd {

// The digits of all numbers are found side by side, each number's in a lane of its own; then a shuffle for each number
// puts the digits that are written into the places that they have in its text.

namespace {

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
  if (_mm256_movemask_ps(_mm256_cmp_ps(sizes, _mm256_set1_ps(999), _CMP_NLT_UQ)) != 0) return nullptr;
  FourTexts low, high;
  FindDigits(_mm256_castps256_ps128(all), low);
  FindDigits(_mm256_extractf128_ps(all, 1), high);
  return WriteFour(WriteFour(out, low), high);
}

// The same with all numbers in one register. Each is written with a sign and three whole digits, a number in a quarter
// of a register; then what it does not have of these is left out of all at once.

namespace {

template <typename T>
using WholeRegister = std::array<T, 64 / sizeof(T)>;

/// The same in each quarter of a register.
template <typename T>
constexpr WholeRegister<T> InQuarters(const std::array<T, TextRoom>& quarter) {
  WholeRegister<T> whole{};
  for (size_t i = 0; i < whole.size(); ++i) whole[i] = quarter[i % TextRoom];
  return whole;
}

// A quarter holds the digits but the hundreds in its lower half, and behind them the hundreds, which are 0 where there
// are none, the tens or-ed to them, and 1 for a negative number.
constexpr uint8_t HasTensPlace = 9, IsNegativePlace = 10;
alignas(64) constexpr auto LongPlaces = InQuarters<uint8_t>({NoDigit, NoDigit, HundredsPlace, 0, 1, NoDigit, 2, 3, 4, 5,
                                                             6, 7, NoDigit, NoDigit, NoDigit, NoDigit});
alignas(64) constexpr auto LongRest = InQuarters<char>({' ', '-', '0', '0', '0', '.', '0', '0', '0', '0', '0', '0'});
alignas(64) constexpr auto KeptPlaces = InQuarters<uint8_t>({NoDigit, IsNegativePlace, HundredsPlace, HasTensPlace,
                                                             NoDigit, NoDigit, NoDigit, NoDigit, NoDigit, NoDigit,
                                                             NoDigit, NoDigit, NoDigit, NoDigit, NoDigit, NoDigit});
constexpr uint64_t AlwaysKept = 0x0FF1'0FF1'0FF1'0FF1;  // the blank, the ones, the point and what follows
alignas(64) constexpr WholeRegister<uint64_t> FirstFour = {0, 8, 1, 9, 2, 10, 3, 11};
alignas(64) constexpr WholeRegister<uint64_t> LastFour = {4, 12, 5, 13, 6, 14, 7, 15};

template <typename T>
TARNWICK_INLINE TARNWICK_AVX512_BYTES __m512i LoadWhole(const WholeRegister<T>& values) {
  return _mm512_load_si512(values.data());
}

TARNWICK_INLINE TARNWICK_AVX512_BYTES __m512i WideQuotient(__m512i values, uint32_t factor, unsigned shift) {
  return _mm512_srli_epi64(_mm512_mul_epu32(values, _mm512_set1_epi64(factor)), shift);
}
TARNWICK_INLINE TARNWICK_AVX512_BYTES __m512i WideProduct(__m512i values, uint32_t factor) {
  return _mm512_mul_epu32(values, _mm512_set1_epi64(factor));
}

/// Writes the numbers of four quarters.
TARNWICK_INLINE TARNWICK_AVX512_BYTES char* WriteQuarters(char* out, __m512i quarters) {
  const __m512i text = _mm512_or_si512(_mm512_shuffle_epi8(quarters, LoadWhole(LongPlaces)), LoadWhole(LongRest));
  const __m512i kept = _mm512_shuffle_epi8(quarters, LoadWhole(KeptPlaces));
  const uint64_t mask = _mm512_test_epi8_mask(kept, kept) | AlwaysKept;
  _mm512_storeu_si512(out, _mm512_maskz_compress_epi8(mask, text));
  return out + _mm_popcnt_u64(mask);
}

}  // namespace

TARNWICK_AVX512_BYTES char* WriteEightNumbersAvx512(char* out, const void* values) {
  const __m256 all = _mm256_castsi256_ps(_mm256_loadu_si256(static_cast<const __m256i*>(values)));
  const __m256 sizes = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), all);
  if (_mm256_cmp_ps_mask(sizes, _mm256_set1_ps(999), _CMP_NLT_UQ) != 0) return nullptr;
  const __m512d wide = _mm512_cvtps_pd(all);
  const __m512d sum = _mm512_add_pd(_mm512_mul_pd(_mm512_abs_pd(wide), _mm512_set1_pd(1e6)), _mm512_set1_pd(0x1p52));
  const __m512i scaled = _mm512_castpd_si512(sum);
  const __m512i hundreds = WideQuotient(scaled, 1'441'151'881, 57);
  const __m512i highFive = WideQuotient(scaled, 3'518'437'209, 45);
  const __m512i highFour = _mm512_sub_epi32(highFive, WideProduct(hundreds, 10'000));
  const __m512i lowFour = _mm512_sub_epi32(scaled, WideProduct(highFive, 10'000));
  const __m512i fours = _mm512_or_si512(highFour, _mm512_slli_epi64(lowFour, 32));
  const __m512i highTwo = _mm512_srli_epi16(_mm512_mulhi_epu16(fours, _mm512_set1_epi16(5243)), 3);
  const __m512i lowTwo = _mm512_sub_epi16(fours, _mm512_mullo_epi16(highTwo, _mm512_set1_epi16(100)));
  const __m512i twos = _mm512_or_si512(highTwo, _mm512_slli_epi32(lowTwo, 16));
  const __m512i highOne = _mm512_srli_epi16(_mm512_mullo_epi16(twos, _mm512_set1_epi16(103)), 10);
  const __m512i lowOne = _mm512_sub_epi16(twos, _mm512_mullo_epi16(highOne, _mm512_set1_epi16(10)));
  const __m512i ones = _mm512_or_si512(highOne, _mm512_slli_epi16(lowOne, 8));
  const __m512i tens = _mm512_or_si512(hundreds, _mm512_and_si512(ones, _mm512_set1_epi64(0xFF)));
  const __m512i negative = _mm512_srli_epi64(_mm512_castpd_si512(wide), 63);
  const __m512i rest =
      _mm512_or_si512(_mm512_or_si512(hundreds, _mm512_slli_epi64(tens, 8)), _mm512_slli_epi64(negative, 16));
  out = WriteQuarters(out, _mm512_permutex2var_epi64(ones, LoadWhole(FirstFour), rest));
  return WriteQuarters(out, _mm512_permutex2var_epi64(ones, LoadWhole(LastFour), rest));
}

}  // namespace tarnwick::smd

#endif
