#pragma once

#include "controls/named_colors.h"

namespace tarnwick::controls {

/// The contrast of two colours by the formula of the Web Content Accessibility Guidelines 2.1 ("contrast ratio"):
/// 1 for equal colours to 21 for black on white.
double ContrastRatio(ColorValue a, ColorValue b);

/// Whether light text suits `background` better than dark text.
bool IsDark(ColorValue background);

/// `text`, made lighter as far as needed to be read on a dark `background`: texts name their colours for a light
/// window, and pure blue on black is hard to read. On a light background the colour stays as it is.
ColorValue ReadableOn(ColorValue text, ColorValue background);

}  // namespace tarnwick::controls
