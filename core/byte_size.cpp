#include "core/byte_size.h"

#include <cmath>
#include <cstdio>

namespace tarnwick::core {

std::string FormatByteSize(uint64_t bytes) {
  constexpr const char* Units[] = {"KB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1024) return std::to_string(bytes) + " bytes";
  size_t unit = 0;
  double value = static_cast<double>(bytes) / 1024;
  for (; value >= 1000 && unit + 1 < std::size(Units); ++unit) value /= 1024;
  const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
  const double scale = std::pow(10.0, decimals);
  char text[32];
  std::snprintf(text, sizeof text, "%.*f %s", decimals, std::floor(value * scale) / scale, Units[unit]);
  return text;
}

}  // namespace tarnwick::core
