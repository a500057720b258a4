#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarnwick::core {

/// Bytes that any number of this header may need: "-" and the 39 digits of the largest float, ".", 6 digits, rounded
/// up.
inline constexpr size_t LongestNumberText = 64;

/// Writes `value` at `out` as printf's "%.<Precision>f" writes it in the C locale, byte for byte: halves that are
/// exact in the float round to even, a negative zero keeps its sign, infinities and not-a-numbers are "inf", "-inf",
/// "nan", "-nan". Returns the end of the text; no NUL is written. Precision is 2, 3 or 6.
///
/// A minimum width of 2, as in "%2.6f", never adds a blank, since no such text is shorter than 3 characters.
template <int Precision>
char* WriteFixed(char* out, float value);

extern template char* WriteFixed<2>(char* out, float value);
extern template char* WriteFixed<3>(char* out, float value);
extern template char* WriteFixed<6>(char* out, float value);

/// `value` as printf's "%.<precision>f" writes it in the C locale, whatever the process's locale is; `precision` is 0
/// to 20.
std::string FixedText(double value, int precision);

/// Writes `value` at `out` as printf's "%d" writes it. Returns the end of the text.
char* WriteInteger(char* out, int64_t value);

/// Writes `value` at `out` right-aligned with blanks in at least `width` (at most 32) characters, as printf's "%3d"
/// does for 3. Returns the end of the text.
char* WriteIntegerWide(char* out, int64_t value, int width);

}  // namespace tarnwick::core
