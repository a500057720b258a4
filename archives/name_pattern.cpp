#include "archives/name_pattern.h"

#include "archives/folded_text.h"

namespace tarnwick::archives {

namespace {

constexpr size_t None = std::string_view::npos;

/// Matches by going back to the last star only, and from there to the last double star: more would gain nothing, so
/// the time is bounded by the product of both lengths, squared only where both kinds of stars meet. With `folder` the
/// pattern may end where a slash follows in the name.
bool Matches(std::string_view name, std::string_view pattern, bool folder) {
  size_t at = 0;  // in the name
  size_t p = 0;
  size_t star = None;
  size_t starAt = 0;
  size_t deep = None;
  size_t deepAt = 0;
  for (;;) {
    if (p == pattern.size() && (at == name.size() || (folder && Folded(name[at]) == '/'))) return true;
    if (pattern.substr(p).starts_with("**")) {
      deep = p += 2;
      deepAt = at;
      star = None;
      continue;
    }
    if (p < pattern.size() && pattern[p] == '*') {
      star = ++p;
      starAt = at;
      continue;
    }
    if (at < name.size() && p < pattern.size()) {
      const char c = Folded(name[at]);
      if (pattern[p] == '?' ? c != '/' : c == Folded(pattern[p])) {
        ++at;
        ++p;
        continue;
      }
    }
    if (star != None && starAt < name.size() && Folded(name[starAt]) != '/') {
      at = ++starAt;
      p = star;
    } else if (deep != None && deepAt < name.size()) {
      at = ++deepAt;
      p = deep;
      star = None;
    } else {
      return false;
    }
  }
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  while (!pattern.empty() && Folded(pattern.front()) == '/') pattern.remove_prefix(1);
  const bool folder = !pattern.empty() && Folded(pattern.back()) == '/';
  while (!pattern.empty() && Folded(pattern.back()) == '/') pattern.remove_suffix(1);
  if (!folder && pattern.find_first_of("/\\") == None && !pattern.starts_with("**")) {
    const size_t slash = name.find_last_of("/\\");
    if (Matches(name.substr(slash + 1), pattern, false)) return true;
  }
  return Matches(name, pattern, true);
}

}  // namespace tarnwick::archives
