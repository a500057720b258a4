#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::tools {

/// The arguments in `text`. Blanks and tabs part them; double quotes hold blanks together and do not reach the
/// argument, and two quotes in a row inside quotes stand for one. A backslash is an ordinary character everywhere, so
/// the one at the end of a folder does not swallow the quote that follows it.
///
///     SplitArguments(R"(-game "C:\my game\" -f)")   // -game, C:\my game\, -f
std::vector<std::string> SplitArguments(std::string_view text);

/// One way to read where a command line's program name ends.
struct ProgramReading {
  std::string Program;    // as it stands on the line, without quotes
  std::string Arguments;  // what stands behind it
};

/// The ways to read `commandLine`, in the order in which they are to be tried. A program name in quotes can be read in
/// one way only. Without quotes each blank may be its end, the first one first, then the end of the line, since a
/// name may hold blanks: "C:\my tools\vtex.exe -nopause" is "C:\my", or "C:\my tools\vtex.exe", or the whole line.
std::vector<ProgramReading> ProgramReadings(std::string_view commandLine);

}  // namespace tarnwick::tools
