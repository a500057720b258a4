#include "tools/output_lines.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "core/paths.h"

namespace tarnwick::tools {

namespace {

/// Words that, standing alone anywhere in a line, tell what it is.
struct TellingWord {
  std::string_view Word;
  LineKind Kind;
};

constexpr TellingWord Words[] = {
    {"error", LineKind::Error},      {"errors", LineKind::Error},       {"error(s)", LineKind::Error},
    {"fatal", LineKind::Error},      {"aborted", LineKind::Error},      {"warning", LineKind::Warning},
    {"warnings", LineKind::Warning}, {"warning(s)", LineKind::Warning},
};

/// How complaints begin that use none of those words.
constexpr std::string_view ErrorStarts[] = {"can't ",     "cannot ",  "could not ", "couldn't ", "unable to ",
                                            "failed to ", "unknown ", "bad ",       "no such "};

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '/' || c == '\\' || c == '$';
}

/// How the switches of the tools' command lines begin, behind the program. Such a line stands above the tool's own, and
/// its paths may hold any word.
constexpr std::string_view CommandLineParts[] = {".exe -game \"", ".exe -nopause "};

bool IsCommandLine(std::string_view line) {
  return std::any_of(std::begin(CommandLineParts), std::end(CommandLineParts),
                     [line](std::string_view part) { return line.find(part) != std::string_view::npos; });
}

/// Whether the text in front of a word says that there are none of it: "0 errors", "no errors".
bool CountsNone(std::string_view before) {
  while (!before.empty() && before.back() == ' ') before.remove_suffix(1);
  for (const std::string_view none : {"0", "no", "without"}) {
    if (!before.ends_with(none)) continue;
    const std::string_view rest = before.substr(0, before.size() - none.size());
    if (rest.empty() || !(IsWordCharacter(rest.back()) || rest.back() == '.')) return true;
  }
  return false;
}

/// Whether what follows a word gives its count as none: "errors: 0".
bool IsFollowedByNone(std::string_view after) {
  if (after.empty() || (after[0] != ':' && after[0] != '=')) return false;
  after.remove_prefix(1);
  while (!after.empty() && after.front() == ' ') after.remove_prefix(1);
  return after == "0" || after.starts_with("0 ") || after.starts_with("0,");
}

bool HoldsWord(std::string_view line, std::string_view word) {
  for (size_t at = line.find(word); at != std::string_view::npos; at = line.find(word, at + 1)) {
    const std::string_view before = line.substr(0, at);
    const std::string_view after = line.substr(at + word.size());
    if (!before.empty() && (IsWordCharacter(before.back()) || before.back() == '.')) continue;
    if (!after.empty() && IsWordCharacter(after.front())) continue;
    // "error.smd" is a name, "error. Stopped" is a word.
    if (after.size() > 1 && after[0] == '.' && IsWordCharacter(after[1])) continue;
    if (!CountsNone(before) && !IsFollowedByNone(after)) return true;
  }
  return false;
}

/// `line` without blanks and a place ("box.qc(12): ") in front.
std::string_view Complaint(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  const size_t place = line.find("): ");
  return place == std::string_view::npos ? line : line.substr(place + 3);
}

/// Whether a line says itself that it is a warning, so that an "error" in its text makes it none.
bool CallsItselfWarning(std::string_view complaint) {
  constexpr std::string_view Word = "warning";
  return complaint.starts_with(Word) && complaint.size() > Word.size() && complaint[Word.size()] == ':';
}

}  // namespace

LineKind ClassifyLine(std::string_view line) {
  const std::string lower = core::LowerAscii(line);
  if (CallsItselfWarning(Complaint(lower))) return LineKind::Warning;
  if (IsCommandLine(lower)) return LineKind::Plain;
  for (const TellingWord& word : Words) {
    if (HoldsWord(lower, word.Word)) return word.Kind;
  }
  for (const std::string_view start : ErrorStarts) {
    if (Complaint(lower).starts_with(start)) return LineKind::Error;
  }
  return LineKind::Plain;
}

}  // namespace tarnwick::tools
