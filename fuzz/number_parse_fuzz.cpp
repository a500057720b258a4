// Reads numbers from any text, against strtod and strtol.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "core/number_parse.h"

using namespace tarnwick;

namespace {

void Expect(bool same, const std::string& text, const char* what) {
  if (same) return;
  std::fprintf(stderr, "%s of \"%s\" differs\n", what, text.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const uint8_t* const end = std::find(data, data + size, 0);  // the C library reads no further
  const std::string text(data, end);
  const char* const start = text.c_str();
  char* stopped = nullptr;
  size_t length = 0;

  const double expected = std::strtod(start, &stopped);
  const double real = core::ParseReal(text, &length);
  Expect(length == static_cast<size_t>(stopped - start), text, "the length");
  Expect(real == expected || (std::isnan(real) && std::isnan(expected)), text, "the number");
  Expect(length == 0 || std::signbit(real) == std::signbit(expected), text, "the sign");

  const long whole = std::strtol(start, &stopped, 10);
  const auto limited = static_cast<int32_t>(
      std::clamp<long>(whole, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
  Expect(core::ParseWhole(text, &length) == limited, text, "the whole number");
  Expect(length == static_cast<size_t>(stopped - start), text, "the whole number's length");
  return 0;
}
