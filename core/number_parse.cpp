#include "core/number_parse.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace tarnwick::core {

namespace {

/// Where the number itself begins: behind white space and one sign.
struct Start {
  size_t At = 0;
  bool Negative = false;
};

Start SkipToNumber(std::string_view text) {
  Start start;
  start.At = text.find_first_not_of(" \t\n\v\f\r");
  if (start.At == std::string_view::npos) start.At = text.size();
  if (start.At < text.size() && (text[start.At] == '-' || text[start.At] == '+')) {
    start.Negative = text[start.At++] == '-';
  }
  return start;
}

void SetLength(size_t* length, size_t value) {
  if (length != nullptr) *length = value;
}

/// Whether the number, which no double holds, is too large, not too small: by the place of its first digit that is not
/// 0 and its exponent.
bool IsTooLarge(std::string_view text, bool hexadecimal) {
  int64_t place = 0;  // digits from the first one to the point, or less the zeros between the point and it
  bool found = false;
  bool behindPoint = false;
  size_t at = 0;
  for (; at < text.size() && text[at] != (hexadecimal ? 'p' : 'e') && text[at] != (hexadecimal ? 'P' : 'E'); ++at) {
    if (text[at] == '.') {
      behindPoint = true;
      continue;
    }
    found = found || text[at] != '0';
    if (found && !behindPoint) ++place;
    if (!found && behindPoint) --place;
  }
  const int64_t exponent = at < text.size() ? ParseWhole(text.substr(at + 1)) : 0;
  return (hexadecimal ? 4 * place : place) + exponent > 0;
}

/// The value of a number whose text is sound but which no double holds: nothing, infinity, or what a long double, whose
/// range is wider, rounds to.
double OutOfRange(const char* first, const char* last, std::chars_format format) {
  long double wide = 0;
  if (std::from_chars(first, last, wide, format).ec == std::errc()) return static_cast<double>(wide);
  const bool large = IsTooLarge({first, static_cast<size_t>(last - first)}, format == std::chars_format::hex);
  return large ? std::numeric_limits<double>::infinity() : 0.0;
}

}  // namespace

double ParseReal(std::string_view text, size_t* length) {
  SetLength(length, 0);
  const Start start = SkipToNumber(text);
  const char* first = text.data() + start.At;
  const char* const last = text.data() + text.size();
  if (first == last || *first == '-' || *first == '+') return 0;
  auto format = std::chars_format::general;
  double value = 0;
  std::from_chars_result read{first, std::errc::invalid_argument};
  if (last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X') &&
      (first[2] == '.' || std::isxdigit(static_cast<unsigned char>(first[2])) != 0)) {
    format = std::chars_format::hex;
    // An exponent of two signs is none, which the library does not see.
    const std::string_view digits(first + 2, static_cast<size_t>(last - first - 2));
    const size_t twoSigns = std::min(digits.find("p+-"), digits.find("P+-"));
    read = std::from_chars(first + 2, first + 2 + std::min(twoSigns, digits.size()), value, format);
    if (read.ec != std::errc::invalid_argument) first += 2;
  }
  if (read.ec == std::errc::invalid_argument) {  // also "0x" without a digit behind it, which is a 0
    format = std::chars_format::general;
    read = std::from_chars(first, last, value, format);
  }
  if (read.ec == std::errc::invalid_argument) return 0;
  if (read.ec == std::errc::result_out_of_range) value = OutOfRange(first, read.ptr, format);
  SetLength(length, static_cast<size_t>(read.ptr - text.data()));
  return start.Negative ? -value : value;
}

int32_t ParseWhole(std::string_view text, size_t* length) {
  SetLength(length, 0);
  const Start start = SkipToNumber(text);
  int64_t value = 0;
  size_t at = start.At;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    if (value <= std::numeric_limits<int32_t>::max()) value = value * 10 + (text[at] - '0');
  }
  if (at == start.At) return 0;
  SetLength(length, at);
  if (start.Negative) value = -value;
  if (value > std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
  if (value < std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(value);
}

}  // namespace tarnwick::core
