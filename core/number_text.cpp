#include "core/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>

// A float is m * 2^e with a mantissa m below 2^24, so m * 10^6 is below 2^44 and exact in 64 bits. Dividing it by
// 2^-e is a shift whose lost bits say exactly which way to round; the quotient then holds all digits that are printed.

namespace tarnwick::core {

namespace {

constexpr auto DigitPairs = [] {
  std::array<char, 200> pairs{};
  for (size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

void WritePair(char* out, uint32_t pair) {
  std::memcpy(out, &DigitPairs[2 * pair], 2);
}

char* WriteUnsigned32(char* out, uint32_t value) {
  char digits[10];
  char* first = digits + sizeof digits;
  while (value >= 100) {
    first -= 2;
    WritePair(first, value % 100);
    value /= 100;
  }
  if (value >= 10) {
    first -= 2;
    WritePair(first, value);
  } else {
    *--first = static_cast<char>('0' + value);
  }
  const size_t length = static_cast<size_t>(digits + sizeof digits - first);
  std::memcpy(out, first, length);
  return out + length;
}

/// Writes exactly `Digits` digits of `value`, leading zeros included.
template <int Digits>
char* WriteFraction(char* out, uint32_t value) {
  if constexpr (Digits == 6) {
    WritePair(out, value / 10000);
    WritePair(out + 2, value / 100 % 100);
    WritePair(out + 4, value % 100);
  } else if constexpr (Digits == 3) {
    *out = static_cast<char>('0' + value / 100);
    WritePair(out + 1, value % 100);
  } else {
    static_assert(Digits == 2);
    WritePair(out, value);
  }
  return out + Digits;
}

constexpr uint32_t PowerOfTen(int exponent) {
  return exponent == 0 ? 1 : 10 * PowerOfTen(exponent - 1);
}

}  // namespace

template <int Precision>
char* WriteFixed(char* out, float value) {
  constexpr uint32_t Scale = PowerOfTen(Precision);
  const uint32_t bits = std::bit_cast<uint32_t>(value);
  if (bits >> 31) *out++ = '-';
  const uint32_t biased = bits >> 23 & 0xFF;
  const uint32_t fraction = bits & 0x7FFFFF;
  if (biased == 0xFF) {
    std::memcpy(out, fraction == 0 ? "inf" : "nan", 3);
    return out + 3;
  }
  if (biased > 150) {  // 2^24 and above: a whole number, of more digits than the quotient below could hold
    out = std::to_chars(out, out + LongestNumberText, std::bit_cast<float>(bits & 0x7FFFFFFF), std::chars_format::fixed,
                        Precision)
              .ptr;
    return out;
  }
  const uint64_t mantissa = biased == 0 ? fraction : fraction | 0x800000;
  const uint32_t shift = biased == 0 ? 149 : 150 - biased;
  uint64_t scaled = mantissa * Scale;
  if (shift >= 64) {
    scaled = 0;  // below half of the last digit by far
  } else if (shift > 0) {
    const uint64_t lost = scaled & ((uint64_t{1} << shift) - 1);
    const uint64_t half = uint64_t{1} << (shift - 1);
    scaled >>= shift;
    if (lost > half || (lost == half && (scaled & 1) != 0)) ++scaled;
  }
  out = WriteUnsigned32(out, static_cast<uint32_t>(scaled / Scale));
  *out++ = '.';
  return WriteFraction<Precision>(out, static_cast<uint32_t>(scaled % Scale));
}

template char* WriteFixed<2>(char* out, float value);
template char* WriteFixed<3>(char* out, float value);
template char* WriteFixed<6>(char* out, float value);

std::string FixedText(double value, int precision) {
  char text[400];  // the largest double has 309 digits before its point
  char* const end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, precision).ptr;
  return {text, end};
}

char* WriteInteger(char* out, int64_t value) {
  if (value >= 0 && value <= 0xFFFFFFFF) return WriteUnsigned32(out, static_cast<uint32_t>(value));
  return std::to_chars(out, out + LongestNumberText, value).ptr;
}

char* WriteIntegerWide(char* out, int64_t value, int width) {
  char digits[LongestNumberText];
  const auto length = static_cast<int>(WriteInteger(digits, value) - digits);
  for (int blank = length; blank < width; ++blank) *out++ = ' ';
  std::memcpy(out, digits, static_cast<size_t>(length));
  return out + length;
}

}  // namespace tarnwick::core
