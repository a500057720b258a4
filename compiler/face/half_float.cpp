#include "compiler/face/half_float.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::compiler {

namespace {

constexpr double Largest = 65504;
constexpr int MantissaBits = 10;
constexpr int LeastExponent = -14;
constexpr uint16_t SignBit = 0x8000;

}  // namespace

uint16_t EncodeHalfFloat(double value) {
  if (std::isnan(value)) return 0;
  const uint16_t sign = std::signbit(value) ? SignBit : 0;
  const double size = std::min(std::abs(value), Largest);
  if (size == 0) return sign;
  // Below the least exponent values stand as far apart as at it.
  const int exponent = std::max(std::ilogb(size), LeastExponent);
  const auto steps = static_cast<int>(std::nearbyint(std::ldexp(size, MantissaBits - exponent)));
  // Steps that round up to the next power of two carry into the exponent by themselves.
  const int bits = ((exponent - LeastExponent) << MantissaBits) + steps;
  return static_cast<uint16_t>(sign | bits);
}

model::PackedVec48 EncodeVec48(double x, double y, double z) {
  return {{EncodeHalfFloat(x), EncodeHalfFloat(y), EncodeHalfFloat(z)}};
}

}  // namespace tarnwick::compiler
