#pragma once

#include "controls/rect.h"

namespace tarnwick::controls {

enum class HorizontalPlace { Left, Centre, Right };

/// `window` with the size that `content` needs, which is the text and what the window has around it: at its left, in
/// the middle or at its right, and at its top or half-way down. A window that is too small grows the same way.
Rect FitToText(const Rect& window, const Extent& content, HorizontalPlace place, bool centredVertically);

}  // namespace tarnwick::controls
