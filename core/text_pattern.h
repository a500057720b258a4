#pragma once

#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

namespace tarnwick::core {

/// A place for an argument in a pattern, as in "%2.3f".
struct PatternPlace {
  int Width = 0;
  int Precision = -1;   // -1: none is told
  char Conversion = 0;  // 's', 'd', 'f' or '%'; 0 at the end of the pattern
};

/// Reads the place behind the percent sign at `pattern[at - 1]` and moves `at` behind it.
constexpr PatternPlace ReadPlace(std::string_view pattern, size_t& at) {
  PatternPlace place;
  const auto number = [&] {
    int value = 0;
    while (at < pattern.size() && pattern[at] >= '0' && pattern[at] <= '9') value = value * 10 + (pattern[at++] - '0');
    return value;
  };
  place.Width = number();
  if (at < pattern.size() && pattern[at] == '.') {
    ++at;
    place.Precision = number();
  }
  if (at < pattern.size()) place.Conversion = pattern[at++];
  return place;
}

/// What a value of type T is written by: 's' for text, 'd' for whole numbers, 'f' for others; 0 for what has no place.
template <typename T>
constexpr char ConversionOf() {
  if (std::is_convertible_v<const T&, std::string_view>) return 's';
  if (std::is_floating_point_v<T>) return 'f';
  return std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> ? 'd' : 0;
}

/// A pattern for arguments of these types. That its places fit them, in number and kind, is checked when the program is
/// compiled, so the pattern is a constant.
template <typename... Arguments>
class TextPattern {
 public:
  template <std::convertible_to<std::string_view> Text>
  consteval TextPattern(const Text& text) : m_text(text) {  // a pattern is written where it is used
    const char wanted[] = {ConversionOf<std::remove_cvref_t<Arguments>>()..., 0};
    size_t next = 0;
    for (size_t at = 0; at < m_text.size();) {
      if (m_text[at++] != '%') continue;
      const PatternPlace place = ReadPlace(m_text, at);
      if (place.Conversion == '%') continue;
      if (next >= sizeof...(Arguments) || place.Conversion != wanted[next]) PlaceDoesNotFitItsArgument();
      ++next;
    }
    if (next != sizeof...(Arguments)) ArgumentHasNoPlace();
  }

  constexpr std::string_view Text() const { return m_text; }

 private:
  // No constant expression calls them: the compiler names the one that it has come to.
  static void PlaceDoesNotFitItsArgument() {}
  static void ArgumentHasNoPlace() {}

  std::string_view m_text;
};

}  // namespace tarnwick::core
