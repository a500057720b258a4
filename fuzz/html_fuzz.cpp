// Lays out any bytes as marked-up text, as the windows show them.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "../tests/controls/fixed_measure.h"
#include "controls/html_entities.h"
#include "controls/html_layout.h"
#include "controls/html_scan.h"
#include "controls/link_address.h"

using namespace tarnwick::controls;

namespace {

constexpr int Tall = 1 << 24;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

std::string WithoutBlanks(std::string_view text) {
  std::string letters;
  std::copy_if(text.begin(), text.end(), std::back_inserter(letters),
               [](char c) { return static_cast<unsigned char>(c) > ' '; });
  return letters;
}

std::string LettersOf(const std::vector<HtmlToken>& tokens) {
  std::string letters;
  for (const HtmlToken& token : tokens) letters += WithoutBlanks(UnmarkEntities(token.Text));
  return letters;
}

std::string LettersOf(const HtmlLayout& layout) {
  std::string letters;
  for (const HtmlFragment& fragment : layout.Fragments) letters += WithoutBlanks(fragment.Text);
  return letters;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::vector<HtmlToken> tokens = ScanHtml(text);
  PlainHtmlText(text);
  for (const HtmlToken& token : tokens) {
    AppCommandName(token.Address);
    Expect(OpenableAddress(token.Address).size() <= token.Address.size(), "an address has grown");
  }

  const FixedMeasure measure;
  HtmlStart start;
  start.Font.Height = 16;
  const int width = size == 0 ? 0 : data[0] * 4;
  HtmlState state;
  const HtmlLayout layout = LayoutHtml(tokens, start, {0, 0, width, Tall}, measure, state);
  Expect(layout.LinkRects.size() == layout.LinkUrls.size(), "a link lacks its address");
  Expect(layout.LinkRects.size() == layout.LinkNumbers.size(), "a link lacks its number");
  // Where there is room below, no letter is lost, however narrow the area is.
  if (text.find(EntityMark) == std::string_view::npos)
    Expect(LettersOf(layout) == LettersOf(tokens), "letters are lost");

  LayoutHtml(tokens, start, {0, 0, width, 40}, measure, state);  // with what the first time has left open
  NaturalSize(tokens, start, measure);
  WidestWord(tokens, start, measure);
  HeightForWidth(tokens, start, width, measure);
  return 0;
}
