#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarnwick::smd {

// Letters

constexpr uint64_t BitOf(char c) {
  return uint64_t{1} << c;
}
inline constexpr uint64_t Blanks = BitOf(' ') | BitOf('\t') | BitOf('\v') | BitOf('\f') | BitOf('\0');
inline constexpr uint64_t LineEnds = BitOf('\n') | BitOf('\r');

/// Whether `c` is one of a set of letters up to the blank.
inline bool IsOneOf(uint64_t set, char c) {
  const auto code = static_cast<unsigned char>(c);
  return code <= ' ' && (set >> code & 1) != 0;
}
inline bool IsBlank(char c) {
  return IsOneOf(Blanks, c);
}
inline bool IsLineEnd(char c) {
  return IsOneOf(LineEnds, c);
}
inline bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The number at `at`: an optional sign, digits with an optional fraction and exponent, to the nearest float. Gives the
/// place behind it, or `at` where no number stands.
const char* ParseFloat(const char* at, const char* end, float& value);

/// Whether a double lies exactly between two floats, so that rounding it would round twice.
inline bool BetweenFloats(double value) {
  constexpr uint64_t Below = (uint64_t{1} << 29) - 1;
  return (std::bit_cast<uint64_t>(value) & Below) == uint64_t{1} << 28;
}

// Eight letters at once, the first in the lowest byte.

inline constexpr uint64_t EveryByte = 0x0101010101010101;

/// Whether all bytes are 0 to 9.
inline bool AreDigits(uint64_t bytes) {
  return (((bytes + 0x76 * EveryByte) | bytes) & 0x80 * EveryByte) == 0;
}
/// The number of eight decimal digits: neighbours are joined to pairs, pairs to fours, fours to the whole.
inline uint64_t NumberOf(uint64_t digits) {
  constexpr uint64_t FirstOfFour = 0x000000FF000000FF;
  const uint64_t pairs = digits * 10 + (digits >> 8);
  return ((pairs & FirstOfFour) * (100 + (uint64_t{1000000} << 32)) +
          (pairs >> 16 & FirstOfFour) * (1 + (uint64_t{10000} << 32))) >>
         32;
}

/// The quick way, for what nearly all files are full of: up to seven digits, a point, six digits. Gives where the
/// number ends; nothing where it is written otherwise or too near to the text's end.
inline const char* ParseSixDecimals(const char* p, const char* end, float& value) {
  constexpr ptrdiff_t Longest = 24;
  if (std::endian::native != std::endian::little || end - p < Longest) return nullptr;
  const bool minus = *p == '-';
  p += minus ? 1 : 0;
  uint64_t letters = 0, decimals = 0;
  std::memcpy(&letters, p, sizeof letters);
  const uint64_t points = letters ^ '.' * EveryByte;
  const uint64_t found = (points - EveryByte) & ~points & 0x80 * EveryByte;
  const auto whole = static_cast<size_t>(std::countr_zero(found)) / 8;  // digits ahead of the point
  if (found == 0 || whole == 0) return nullptr;
  std::memcpy(&decimals, p + whole + 1, sizeof decimals);
  const uint64_t ahead = (letters ^ '0' * EveryByte) << (64 - 8 * whole);
  const uint64_t behind = (decimals ^ '0' * EveryByte) << 16;
  const char* after = p + whole + 7;
  if (!AreDigits(ahead) || !AreDigits(behind) || !IsOneOf(Blanks | LineEnds, *after)) return nullptr;
  const double wide = static_cast<double>(NumberOf(ahead) * 1000000 + NumberOf(behind)) / 1e6;
  if (BetweenFloats(wide)) return nullptr;
  // Signs follow no pattern; a branch on them would mostly be guessed wrong.
  const auto bits = std::bit_cast<uint32_t>(static_cast<float>(wide));
  value = std::bit_cast<float>(bits | static_cast<uint32_t>(minus) << 31);
  return after;
}

}  // namespace tarnwick::smd
