#pragma once

#include <cstdint>
#include <string_view>

namespace tarnwick::controls {

/// A colour: red in the low byte, green in the next, blue in the next, the top byte 0.
using ColorValue = uint32_t;

constexpr ColorValue MakeColor(unsigned red, unsigned green, unsigned blue) {
  return red | green << 8 | blue << 16;
}
constexpr unsigned RedOf(ColorValue color) {
  return color & 0xFF;
}
constexpr unsigned GreenOf(ColorValue color) {
  return color >> 8 & 0xFF;
}
constexpr unsigned BlueOf(ColorValue color) {
  return color >> 16 & 0xFF;
}

/// A colour from a text: `#RRGGBB` in hexadecimal digits of either case, or one of 140 colour names in any case.
/// A text that is neither is black; a pair with a wrong digit counts as far as it can be read.
class CXNamedColors {
 public:
  CXNamedColors() = default;
  explicit CXNamedColors(std::string_view text);
  virtual ~CXNamedColors() = default;

  ColorValue GetRGB() const { return Color; }

 private:
  ColorValue Color = 0;
};

}  // namespace tarnwick::controls
