#include "controls/hyperlink_fit.h"

namespace tarnwick::controls {

Rect FitToText(const Rect& window, const Extent& content, HorizontalPlace place, bool centredVertically) {
  Rect fitted = window;
  if (centredVertically) fitted.Top += (window.Height() - content.Height) / 2;
  fitted.Bottom = fitted.Top + content.Height;
  if (place == HorizontalPlace::Centre) fitted.Left += (window.Width() - content.Width) / 2;
  if (place == HorizontalPlace::Right) fitted.Left = window.Right - content.Width;
  fitted.Right = fitted.Left + content.Width;
  return fitted;
}

}  // namespace tarnwick::controls
