#include "core/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

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

int CountDigits(uint32_t value) {
  int digits = 1;
  for (; value >= 10'000; value /= 10'000) digits += 4;
  return digits + (value >= 10) + (value >= 100) + (value >= 1'000);
}

/// Writes the digits where they stay: no copy whose length the compiler would have to watch.
char* WriteUnsigned32(char* out, uint32_t value) {
  char* const end = out + CountDigits(value);
  char* first = end;
  while (value >= 100) {
    first -= 2;
    WritePair(first, value % 100);
    value /= 100;
  }
  if (value >= 10) {
    WritePair(out, value);
  } else {
    *out = static_cast<char>('0' + value);
  }
  return end;
}

/// Below this size ScaledWhole serves. Floats of this size and above have at most one binary digit behind the point and
/// are rare.
constexpr float LargestScaled = 0x1p22F;

}  // namespace

template <int Precision>
char* WriteLargeFixed(char* out, float size) {
  if (size < LargestScaled) {
    const uint64_t scaled = ScaledWhole<Precision>(size);
    out = WriteUnsigned32(out, static_cast<uint32_t>(scaled / PowerOfTen(Precision)));
    *out++ = '.';
    return WriteFraction<Precision>(out, static_cast<uint32_t>(scaled % PowerOfTen(Precision)));
  }
  if (size - size == 0) {
    return std::to_chars(out, out + LongestNumberText, size, std::chars_format::fixed, Precision).ptr;
  }
  return std::copy_n(size == size ? "inf" : "nan", 3, out);
}

template char* WriteLargeFixed<2>(char* out, float size);
template char* WriteLargeFixed<3>(char* out, float size);
template char* WriteLargeFixed<6>(char* out, float size);

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
