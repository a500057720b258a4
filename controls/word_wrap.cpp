#include "controls/word_wrap.h"

#include "controls/html_entities.h"

namespace tarnwick::controls {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

struct Word {
  std::string Text;
  size_t End = 0;  // where the next word starts
  bool HardBreak = false;
};

/// The word at `text[at]`, with the blank that ends it; a line feed ends it too and leaves no blank.
Word NextWord(std::string_view text, size_t at) {
  Word word;
  while (at < text.size()) {
    const char c = text[at];
    if (c == EntityMark) {
      word.Text += TakeEntity(text, at);
      continue;
    }
    ++at;
    if (c == '\r') continue;
    word.HardBreak = c == '\n';
    if (word.HardBreak) break;
    if (IsBlank(c)) {
      word.Text += ' ';
      break;
    }
    word.Text += c;
  }
  word.End = at;
  return word;
}

}  // namespace

int DrawTextRun(std::string_view text, const HtmlFont& font, const TextMeasure& measure, int x, Rect& area,
                int& currentY, std::vector<TextLine>& lines) {
  if (area.Top >= area.Bottom - 1) return 0;
  const int height = measure.Metrics(font).Height;
  for (size_t at = 0; at < text.size();) {
    std::string line;
    for (; at < text.size() && IsBlank(text[at]); ++at) {
      if (x != 0) line += ' ';
    }
    bool hardBreak = false;
    while (at < text.size() && !hardBreak) {
      const Word word = NextWord(text, at);
      // A line that other text has begun is not empty either: its last word would be cut off at the right edge.
      const bool mayOverflow = !word.Text.empty() && (!line.empty() || x != 0);
      if (mayOverflow && measure.Width(line + word.Text, font) >= area.Width() - x - 2) break;
      line += word.Text;
      at = word.End;
      hardBreak = word.HardBreak;
    }
    const bool ends = hardBreak || at < text.size();
    const int width = line.empty() ? 0 : measure.Width(line, font);
    // Blanks in front of a break would show as a stub of underline.
    if (ends) line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty() && currentY <= area.Bottom - height) {
      lines.push_back({line, {area.Left + x, currentY, area.Left + x + width, currentY + height}});
    }
    x = ends ? 0 : x + width;
    if (ends) currentY += height;
    if (currentY >= area.Bottom) break;
  }
  area.Top = currentY + height > area.Bottom ? area.Bottom : currentY;
  return x;
}

}  // namespace tarnwick::controls
