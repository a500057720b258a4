#include "smd/source_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace tarnwick::smd {

namespace {

constexpr std::array<double, 23> PowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// The slow way, for numbers of many digits.
const char* ParseLongFloat(const char* at, const char* end, float& value) {
  const char* begin = at;
  if (begin < end && *begin == '+') ++begin;
  double wide = 0;
  const auto read = std::from_chars(begin, end, value);
  if (read.ec == std::errc()) return read.ptr;
  if (read.ec != std::errc::result_out_of_range) return at;
  // Too small or too large for a float: a double, or else the exponent's sign, tells which.
  const auto again = std::from_chars(begin, end, wide);
  const std::string_view text(begin, static_cast<size_t>(read.ptr - begin));
  const size_t exponent = text.find_first_of("eE");
  const bool smallText = exponent == std::string_view::npos ? text.find_first_of("123456789") > text.find('.')
                                                            : text.substr(exponent + 1).starts_with('-');
  const bool inDouble = again.ec == std::errc();
  if (inDouble && std::abs(wide) <= double{std::numeric_limits<float>::max()}) {
    value = static_cast<float>(wide);
  } else if (!inDouble && smallText) {
    value = 0;
  } else {
    value = std::numeric_limits<float>::infinity();
  }
  if (text.starts_with('-')) value = -std::abs(value);
  return read.ptr;
}

}  // namespace

const char* ParseFloat(const char* at, const char* end, float& value) {
  constexpr int MostDigits = 15;
  const char* p = at;
  const bool minus = p < end && *p == '-';
  if (p < end && (minus || *p == '+')) ++p;
  uint64_t mantissa = 0;
  const char* whole = p;
  while (p < end && IsDigit(*p)) mantissa = mantissa * 10 + static_cast<uint64_t>(*p++ - '0');
  auto digits = static_cast<int>(std::min<ptrdiff_t>(p - whole, 100));
  int fraction = 0;
  if (p < end && *p == '.') {
    const char* point = ++p;
    while (p < end && IsDigit(*p)) mantissa = mantissa * 10 + static_cast<uint64_t>(*p++ - '0');
    fraction = static_cast<int>(std::min<ptrdiff_t>(p - point, 100));
    digits += fraction;
  }
  if (digits == 0) return at;
  if (digits > MostDigits || (p < end && (*p == 'e' || *p == 'E'))) return ParseLongFloat(at, end, value);
  const double wide = static_cast<double>(mantissa) / PowersOfTen[static_cast<size_t>(fraction)];
  if (BetweenFloats(wide)) return ParseLongFloat(at, end, value);
  value = static_cast<float>(minus ? -wide : wide);
  return p;
}

}  // namespace tarnwick::smd
