#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnwick::core {

/// The number at the start of `text`, as `strtod` reads it in the C locale, whatever the process's locale is: leading
/// white space is skipped, hexadecimal numbers, infinities and not-a-numbers are known. 0 if there is no number.
/// `length`, if given, takes the number of bytes that were read, 0 if there is no number.
double ParseReal(std::string_view text, size_t* length = nullptr);

/// The whole number at the start of `text`, as `atoi` reads it; one beyond 32 bits becomes the nearest that fits.
/// 0 if there is no number. `length` as above.
int32_t ParseWhole(std::string_view text, size_t* length = nullptr);

}  // namespace tarnwick::core
