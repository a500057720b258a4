#include "controls/readable_color.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::controls {
namespace {

/// What the guidelines ask of text of ordinary size (success criterion 1.4.3).
constexpr double ReadableContrast = 4.5;

double LinearLight(unsigned channel) {
  const double value = channel / 255.0;
  return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double Luminance(ColorValue color) {
  return 0.2126 * LinearLight(RedOf(color)) + 0.7152 * LinearLight(GreenOf(color)) +
         0.0722 * LinearLight(BlueOf(color));
}

/// `color` mixed with `step` sixteenths of white.
ColorValue Lighter(ColorValue color, unsigned step) {
  const auto mix = [step](unsigned channel) { return (channel * (16 - step) + 255 * step) / 16; };
  return MakeColor(mix(RedOf(color)), mix(GreenOf(color)), mix(BlueOf(color)));
}

}  // namespace

double ContrastRatio(ColorValue a, ColorValue b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

bool IsDark(ColorValue background) {
  return ContrastRatio(background, MakeColor(255, 255, 255)) > ContrastRatio(background, MakeColor(0, 0, 0));
}

ColorValue ReadableOn(ColorValue text, ColorValue background) {
  if (!IsDark(background)) return text;
  for (unsigned step = 0; step < 16; ++step) {
    const ColorValue lighter = Lighter(text, step);
    if (ContrastRatio(lighter, background) >= ReadableContrast) return lighter;
  }
  return MakeColor(255, 255, 255);
}

}  // namespace tarnwick::controls
