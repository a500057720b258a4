#include "controls/html_entities.h"

#include <iterator>

namespace tarnwick::controls {
namespace {

struct Entity {
  std::string_view Name;
  std::string_view Text;
};

// The code of a row is its index plus FirstCode.
constexpr Entity Entities[] = {
    {"&amp;", "&"},         {"&bull;", "\u2022"}, {"&copy;", "\u00A9"},  {"&euro;", "\u20AC"}, {"&gt;", ">"},
    {"&iquest;", "\u00BF"}, {"&lt;", "<"},        {"&nbsp;", " "},       {"&para;", "\u00B6"}, {"&pound;", "\u00A3"},
    {"&quot;", "\""},       {"&reg;", "\u00AE"},  {"&trade;", "\u2122"},
};
constexpr size_t FirstCode = 2;

/// Bytes of the UTF-8 sequence that starts with `first`; 1 for a byte that starts none.
size_t SequenceLength(unsigned char first) {
  if (first >= 0xF0) return 4;
  if (first >= 0xE0) return 3;
  return first >= 0xC0 ? 2 : 1;
}

}  // namespace

std::string MarkEntities(std::string_view source) {
  std::string marked;
  marked.reserve(source.size());
  for (size_t at = 0; at < source.size();) {
    const std::string_view rest = source.substr(at);
    size_t row = 0;
    while (row < std::size(Entities) && !rest.starts_with(Entities[row].Name)) ++row;
    if (row == std::size(Entities)) {
      marked += source[at++];
    } else {
      marked += EntityMark;
      marked += static_cast<char>(row + FirstCode);
      at += Entities[row].Name.size();
    }
  }
  return marked;
}

std::string_view TakeEntity(std::string_view marked, size_t& at) {
  const size_t codeAt = at + 1;
  if (codeAt >= marked.size()) {
    at = marked.size();
    return " ";
  }
  const auto code = static_cast<unsigned char>(marked[codeAt]);
  at = codeAt + SequenceLength(code);
  if (at > marked.size()) at = marked.size();
  const size_t row = code - FirstCode;  // wraps round below FirstCode
  return row < std::size(Entities) ? Entities[row].Text : " ";
}

std::string UnmarkEntities(std::string_view marked) {
  std::string text;
  text.reserve(marked.size());
  for (size_t at = 0; at < marked.size();) {
    if (marked[at] == EntityMark) {
      text += TakeEntity(marked, at);
    } else {
      text += marked[at++];
    }
  }
  return text;
}

}  // namespace tarnwick::controls
