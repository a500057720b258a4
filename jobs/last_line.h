#pragma once

#include <string>
#include <string_view>

namespace tarnwick::jobs {

/// The last line of `text` that is not blank: what a tool had to say at its end. "" if there is none.
inline std::string LastLine(std::string_view text) {
  constexpr std::string_view Blanks = " \t\r\n";
  const size_t end = text.find_last_not_of(Blanks);
  if (end == std::string_view::npos) return {};
  text = text.substr(0, end + 1);
  const size_t start = text.find_last_of("\r\n");
  return std::string(start == std::string_view::npos ? text : text.substr(start + 1));
}

}  // namespace tarnwick::jobs
