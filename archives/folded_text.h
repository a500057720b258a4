#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::archives {

/// Names of files in a game are the same without regard to the case of ASCII letters and to which slash they have.
/// Folded is a name with small letters and `/`.

inline char Folded(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '\\' ? '/' : c;
}
std::string FoldedText(std::string_view text);

/// Less than, equal to or greater than 0 as `a` folded stands before, is, or stands behind `b` folded.
int CompareFolded(std::string_view a, std::string_view b);
bool EqualFolded(std::string_view a, std::string_view b);

/// A hash of `text` folded. It differs from run to run, so that nobody can make an archive whose names all collide.
uint64_t HashFolded(std::string_view text, uint64_t before = 0);

/// `name` as games ask for files: slashes to `/`, none at either end, none doubled, no `.` between two.
std::string PlainName(std::string_view name);

}  // namespace tarnwick::archives
