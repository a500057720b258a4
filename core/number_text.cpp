#include "core/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>

// A float is m * 2^e with a mantissa m below 2^24, and 10^6 is 15625 * 2^6, so a float times 10^6 has at most 38 bits
// and is exact as a double. Adding 2^52 then rounds it to a whole number, halves to even as printf does, and leaves
// that number in the double's lowest bits.

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

using FourChars = std::array<char, 4>;

/// The numbers below 1000 with three digits each; the fourth character is of no meaning.
constexpr auto DigitTriples = [] {
  std::array<FourChars, 1000> triples{};
  for (size_t i = 0; i < 1000; ++i) {
    triples[i] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                  static_cast<char>('0' + i % 10)};
  }
  return triples;
}();

/// The numbers below 1000 without leading zeros, a point behind each.
constexpr auto WholeParts = [] {
  std::array<FourChars, 1000> parts{};
  for (size_t i = 0; i < 1000; ++i) {
    size_t length = 0;
    if (i >= 100) parts[i][length++] = static_cast<char>('0' + i / 100);
    if (i >= 10) parts[i][length++] = static_cast<char>('0' + i / 10 % 10);
    parts[i][length++] = static_cast<char>('0' + i % 10);
    parts[i][length] = '.';
  }
  return parts;
}();

void WriteTriple(char* out, uint32_t triple) {
  std::memcpy(out, DigitTriples[triple].data(), sizeof(FourChars));
}

/// Writes exactly `Digits` digits of `value`, leading zeros included, and perhaps one character more behind them.
template <int Digits>
char* WriteFraction(char* out, uint32_t value) {
  if constexpr (Digits == 6) {
    WriteTriple(out, value / 1000);
    WriteTriple(out + 3, value % 1000);
  } else if constexpr (Digits == 3) {
    WriteTriple(out, value);
  } else {
    static_assert(Digits == 2);
    WritePair(out, value);
  }
  return out + Digits;
}

constexpr uint32_t PowerOfTen(int exponent) {
  return exponent == 0 ? 1 : 10 * PowerOfTen(exponent - 1);
}

/// The place of the point of a double from which on it holds whole numbers only.
constexpr double WholeFrom = 0x1p52;
/// Below this size a float times 10^6 stays well below WholeFrom. Floats of this size and above have at most one
/// binary digit behind the point and are rare.
constexpr float LargestQuick = 0x1p22F;

}  // namespace

template <int Precision>
char* WriteFixed(char* out, float value) {
  constexpr uint32_t Scale = PowerOfTen(Precision);
  const uint32_t bits = std::bit_cast<uint32_t>(value);
  *out = '-';
  out += bits >> 31;
  const auto size = std::bit_cast<float>(bits & 0x7FFFFFFF);
  if (!(size < LargestQuick)) {
    if (size - size == 0)
      return std::to_chars(out, out + LongestNumberText, size, std::chars_format::fixed, Precision).ptr;
    std::memcpy(out, size == size ? "inf" : "nan", 3);
    return out + 3;
  }
  const uint64_t scaled = std::bit_cast<uint64_t>(double{size} * Scale + WholeFrom) & ((uint64_t{1} << 52) - 1);
  const auto whole = static_cast<uint32_t>(scaled / Scale), fraction = static_cast<uint32_t>(scaled % Scale);
  if (whole < 1000) {
    std::memcpy(out, WholeParts[whole].data(), sizeof(FourChars));
    out += 2 + (whole >= 10) + (whole >= 100);
  } else {
    out = WriteUnsigned32(out, whole);
    *out++ = '.';
  }
  return WriteFraction<Precision>(out, fraction);
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
