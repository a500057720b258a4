#pragma once

#include <cstdlib>

#include "controls/text_measure.h"

namespace tarnwick::controls {

/// Measures as if every character, of any alphabet, were half as wide as the font is high, and a tenth of the line
/// were below the base line.
class FixedMeasure : public TextMeasure {
 public:
  int Width(std::string_view text, const HtmlFont& font) const override {
    int characters = 0;
    for (const char c : text) {
      if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++characters;
    }
    return characters * std::abs(font.Height) / 2;
  }
  FontExtent Metrics(const HtmlFont& font) const override {
    const int height = std::abs(font.Height);
    return {height * 9 / 10, height / 10, height};
  }
};

}  // namespace tarnwick::controls
