#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/rect.h"
#include "controls/text_measure.h"

namespace tarnwick::controls {

/// A piece of text that stands on one line.
struct TextLine {
  std::string Text;
  Rect Box;  // the blanks in front of a line's end included, which the text lacks
};

/// Breaks `text` (entities marked, see MarkEntities) into lines and appends those to `lines` that are to be drawn.
///
/// The first line starts `x` pixels right of `area.Left`, the others at `area.Left`; the pen's height is `currentY`,
/// which stays at the last line unless a line feed ends that. A line is full when the next word, its blank included,
/// comes within 2 pixels of `area.Right`; a word wider than the area stands alone on its line. A line that does not
/// fit above `area.Bottom` is left out. Afterwards `area.Top` is `currentY`, or `area.Bottom` if no further line fits.
/// Returns where the next text on the last line starts, from `area.Left`.
int DrawTextRun(std::string_view text, const HtmlFont& font, const TextMeasure& measure, int x, Rect& area,
                int& currentY, std::vector<TextLine>& lines);

}  // namespace tarnwick::controls
