#pragma once

#include <string>
#include <string_view>

namespace tarnwick::controls {

/// A font as the markup asks for it. The rest, such as the hinting, is the control's own font's.
struct HtmlFont {
  std::string Face;  // empty: the control's
  int Height = 0;    // in pixels: negative the size of the letters, positive that of a whole line, 0 the control's own
  bool Bold = false;
  bool Italic = false;
  bool Underline = false;
  bool Strike = false;
  bool operator==(const HtmlFont&) const = default;
};

/// Vertical measures of a font in pixels.
struct FontExtent {
  int Ascent = 0;
  int Descent = 0;
  int Height = 0;  // of a line of text
};

/// What the layout needs to know about fonts.
class TextMeasure {
 public:
  virtual ~TextMeasure() = default;

  /// Width in pixels of `text` (UTF-8) on one line.
  virtual int Width(std::string_view text, const HtmlFont& font) const = 0;
  virtual FontExtent Metrics(const HtmlFont& font) const = 0;
};

}  // namespace tarnwick::controls
