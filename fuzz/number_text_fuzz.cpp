// Prints numbers made of any bytes, against printf.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "core/number_text.h"
#include "input_values.h"

using namespace tarnwick;

namespace {

template <typename Value>
std::string Printf(const char* format, Value value, int width = 0) {
  char text[512];
  const int length = std::snprintf(text, sizeof text, format, width, value);
  return {text, static_cast<size_t>(length)};
}

void Expect(std::string_view ours, const std::string& printed) {
  if (ours == printed) return;
  std::fprintf(stderr, "\"%.*s\" instead of \"%s\"\n", static_cast<int>(ours.size()), ours.data(), printed.c_str());
  std::abort();
}

template <int Precision>
void TryFixed(float value) {
  char text[core::LongestNumberText];
  Expect({text, core::WriteFixed<Precision>(text, value)}, Printf("%.*f", static_cast<double>(value), Precision));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  char text[core::LongestNumberText];
  for (const float value : fuzz::ValuesOf<float>(data, size)) {
    TryFixed<2>(value);
    TryFixed<3>(value);
    TryFixed<6>(value);
  }
  for (const auto value : fuzz::ValuesOf<long long>(data, size)) {
    const auto small = static_cast<int32_t>(value);
    Expect({text, core::WriteInteger(text, value)}, Printf("%*lld", value));
    Expect({text, core::WriteInteger(text, small)}, Printf("%*d", small));
    const int width = static_cast<int>(data[0] % 32);
    Expect({text, core::WriteIntegerWide(text, value, width)}, Printf("%*lld", value, width));
    Expect({text, core::WriteIntegerWide(text, small, width)}, Printf("%*d", small, width));
  }
  for (const double value : fuzz::ValuesOf<double>(data, size)) {
    const int precision = static_cast<int>(data[0] % 21);
    Expect(core::FixedText(value, precision), Printf("%.*f", value, precision));
  }
  return 0;
}
