#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarnwick::core {

using FourChars = std::array<char, 4>;

/// The numbers below 1000 with three digits each; the fourth character is of no meaning.
inline constexpr auto DigitTriples = [] {
  std::array<FourChars, 1000> triples{};
  for (size_t i = 0; i < 1000; ++i) {
    triples[i] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                  static_cast<char>('0' + i % 10)};
  }
  return triples;
}();

/// The numbers below 1000 without leading zeros, a point behind each.
inline constexpr auto WholeParts = [] {
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

/// Writes three digits of `value` and one character of no meaning behind them.
inline void WriteTriple(char* out, uint32_t value) {
  std::memcpy(out, DigitTriples[value].data(), sizeof(FourChars));
}

/// Writes exactly `Digits` (2, 3 or 6) digits of `value`, leading zeros included, and perhaps characters of no meaning
/// behind them. Returns the end of the digits.
template <int Digits>
char* WriteFraction(char* out, uint32_t value) {
  static_assert(Digits == 2 || Digits == 3 || Digits == 6);
  if constexpr (Digits == 6) {
    WriteTriple(out, value / 1000);
    WriteTriple(out + 3, value % 1000);
  } else {
    WriteTriple(out, Digits == 2 ? value * 10 : value);
  }
  return out + Digits;
}

}  // namespace tarnwick::core
