#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/digit_tables.h"

namespace tarnwick::core {

/// Bytes that any number of this header may need: "-" and the 39 digits of the largest float, ".", 6 digits, rounded
/// up.
inline constexpr size_t LongestNumberText = 64;

/// Writes what WriteFixed writes behind the sign, for a `size` of 999 and above, infinite or not a number.
template <int Precision>
char* WriteLargeFixed(char* out, float size);
extern template char* WriteLargeFixed<2>(char* out, float size);
extern template char* WriteLargeFixed<3>(char* out, float size);
extern template char* WriteLargeFixed<6>(char* out, float size);

constexpr uint32_t PowerOfTen(int exponent) {
  return exponent == 0 ? 1 : 10 * PowerOfTen(exponent - 1);
}

/// size * 10^Precision as a whole number, halves to even as printf rounds them, for a `size` below 2^22. A float is
/// m * 2^e with a mantissa m below 2^24, and 10^6 is 15625 * 2^6, so the product has at most 38 bits and is exact as a
/// double. Adding 2^52 then rounds it and leaves the number in the double's lowest bits.
template <int Precision>
uint64_t ScaledWhole(float size) {
  return std::bit_cast<uint64_t>(double{size} * PowerOfTen(Precision) + 0x1p52) & ((uint64_t{1} << 52) - 1);
}

/// Writes `value` at `out` as printf's "%.<Precision>f" writes it in the C locale, byte for byte: halves that are
/// exact in the float round to even, a negative zero keeps its sign, infinities and not-a-numbers are "inf", "-inf",
/// "nan", "-nan". Returns the end of the text, behind which a few characters of no meaning may stand; no NUL is
/// written. Precision is 2, 3 or 6.
///
/// A minimum width of 2, as in "%2.6f", never adds a blank, since no such text is shorter than 3 characters.
template <int Precision>
char* WriteFixed(char* out, float value) {
  const uint32_t bits = std::bit_cast<uint32_t>(value);
  *out = '-';
  out += bits >> 31;
  const auto size = std::bit_cast<float>(bits & 0x7FFFFFFF);
  if (!(size < 999.0f)) return WriteLargeFixed<Precision>(out, size);
  const uint64_t scaled = ScaledWhole<Precision>(size);
  const auto whole = static_cast<uint32_t>(scaled / PowerOfTen(Precision));
  std::memcpy(out, WholeParts[whole].data(), sizeof(FourChars));
  out += 2 + (whole >= 10) + (whole >= 100);
  return WriteFraction<Precision>(out, static_cast<uint32_t>(scaled % PowerOfTen(Precision)));
}

/// `value` as printf's "%.<precision>f" writes it in the C locale, whatever the process's locale is; `precision` is 0
/// to 20.
std::string FixedText(double value, int precision);

/// The shortest plain decimal text that reads as the same number ("3.89", "-0.0625", never "1e-05").
std::string ShortestDecimal(float value);
std::string ShortestDecimal(double value);
/// Writes it at `out`, at most LongestNumberText bytes of it. Returns the end of the text.
char* WriteShortestDecimal(char* out, float value);

/// Writes `value` at `out` as printf's "%d" writes it. Returns the end of the text.
char* WriteInteger(char* out, int64_t value);

/// Writes `value` at `out` right-aligned with blanks in at least `width` (at most 32) characters, as printf's "%3d"
/// does for 3. Returns the end of the text.
char* WriteIntegerWide(char* out, int64_t value, int width);

}  // namespace tarnwick::core
