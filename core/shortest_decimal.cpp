#include <array>
#include <bit>
#include <charconv>
#include <cmath>

#include "core/number_text.h"

namespace tarnwick::core {

namespace {

/// Longer than the plain text of any double.
constexpr size_t LongestPlainDecimal = 1100;

constexpr std::array<double, 13> Tens = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12};

/// A number that is `Whole` over 10^Decimals.
struct Decimal {
  uint32_t Whole;
  int Decimals;
};

/// The decimal with the fewest decimals that reads as the float with these bits, without regard to their sign, and the
/// nearest of those with as few; with -1 decimals where that is not plain to see.
///
/// The float is m * 2^e with m below 2^24, and 10^12 is 5^12 * 2^12 with 5^12 below 2^28, so its product with a power
/// of ten is exact as a double; so is how far that lies from the next whole number, and the half of the float's last
/// binary place, times the power of ten, with which it is compared. Nine digits always do, and fit in 32 bits.
Decimal FewestDecimals(uint32_t bits) {
  constexpr uint32_t Bias = 127, MantissaBits = 23;
  // Smaller floats may need more than 12 decimals; larger ones are whole numbers, which have no fewest digits.
  constexpr uint32_t LeastExponent = Bias - 9, MostExponent = Bias + MantissaBits - 1;
  constexpr Decimal Unknown{0, -1};
  const uint32_t exponent = bits >> MantissaBits & 0xFF;
  if (exponent < LeastExponent || exponent > MostExponent) return Unknown;
  const double size = std::bit_cast<float>(bits & 0x7FFFFFFF);
  // Half the way to the next float above; below a power of two it is half of that.
  const double above = std::bit_cast<double>(uint64_t{exponent + (1023 - Bias) - MantissaBits - 1} << 52);
  const double below = (bits & 0x7FFFFF) == 0 ? above / 2 : above;
  const auto wholeAt = [&](size_t decimals) { return (size * Tens[decimals] + 0x1p52) - 0x1p52; };
  const auto offAt = [&](size_t decimals) { return std::abs(size * Tens[decimals] - wholeAt(decimals)); };
  constexpr size_t Usual = 4;  // where most numbers that were typed have ended
  for (size_t i = offAt(Usual) > above * Tens[Usual] ? Usual + 1 : 0; i < Tens.size(); ++i) {
    const double off = offAt(i);
    if (off > above * Tens[i]) continue;
    // At the very edge it matters which float is even, and halfway there are two nearest.
    if (off >= below * Tens[i] || off == 0.5) return Unknown;
    return {static_cast<uint32_t>(wholeAt(i)), static_cast<int>(i)};
  }
  return Unknown;
}

/// Writes `count` digits of `value`, leading zeros included.
void WriteDigits(char* out, uint32_t value, int count) {
  for (; count >= 3; value /= 1000) {
    count -= 3;
    const FourChars& three = DigitTriples[value % 1000];
    std::memcpy(out + count, three.data(), 3);
  }
  for (; count > 0; value /= 10) out[--count] = static_cast<char>('0' + value % 10);
}

}  // namespace

std::string ShortestDecimal(float value) {
  char text[LongestNumberText];
  return {text, WriteShortestDecimal(text, value)};
}

std::string ShortestDecimal(double value) {
  char text[LongestPlainDecimal];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr};
}

char* WriteShortestDecimal(char* out, float value) {
  const auto bits = std::bit_cast<uint32_t>(value);
  const bool isZero = bits << 1 == 0;
  const auto [number, decimals] = isZero ? Decimal{0, 0} : FewestDecimals(bits);
  if (decimals < 0) return std::to_chars(out, out + LongestNumberText, value, std::chars_format::fixed).ptr;
  *out = '-';
  out += bits >> 31;
  constexpr std::array<uint32_t, 10> Powers = {1,       10,        100,        1'000,       10'000,
                                               100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};
  const auto place = static_cast<size_t>(decimals);
  const uint32_t whole = place < Powers.size() ? number / Powers[place] : 0;
  out = WriteInteger(out, whole);
  if (decimals == 0) return out;
  *out++ = '.';
  WriteDigits(out, place < Powers.size() ? number % Powers[place] : number, decimals);
  return out + decimals;
}

}  // namespace tarnwick::core
