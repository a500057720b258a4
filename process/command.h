#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::process {

/// A program and what it is given. This, not a line of text, is what goes from who builds it to the system: an argument
/// reaches the program as it stands, whatever characters it holds. A line is only a picture of it.
///
///     Command tool{"/sdk/vtf2tga", {}};
///     tool.Word("-nopause").Word("-i").InQuotes("a\"b.vtf");   // a quote is a character like any other
///     tool.Line()                                              // /sdk/vtf2tga -nopause -i "a"b.vtf"
struct Command {
  std::string Program = {};
  std::vector<std::string> Arguments = {};
  /// How the arguments are shown, with a leading blank, where that is settled otherwise than by the rule of `Line`:
  /// kept by the functions below. "" to show them by the rule.
  std::string Shown = {};

  /// Adds an argument that is shown as it is.
  Command& Word(std::string_view argument);
  /// Adds an argument that is shown in quotes, whether it needs them or not.
  Command& InQuotes(std::string_view argument);
  /// Adds what a person has typed into one box as a part of a command line: shown as it is, and parted at its blanks
  /// (`SplitWords`).
  Command& Typed(std::string_view text);

  /// The command as one line, for people: the program, without quotes, and its arguments. Those that were added by no
  /// function above are in quotes where they are empty or hold a blank. A line cannot always be told apart again;
  /// nobody does.
  std::string Line() const;
  /// The command as a line that the user's shell takes as just this command: one of a POSIX shell, on Windows of cmd.
  std::string ShellLine() const;

  bool operator==(const Command&) const = default;
};

/// The words of `text`. Blanks and tabs part them; double quotes hold blanks together and do not reach the word, and
/// two quotes in a row inside quotes stand for one. A backslash is an ordinary character everywhere.
std::vector<std::string> SplitWords(std::string_view text);

/// The arguments of `command` as Windows hands them over, in one text, in which the runtime of C finds the same
/// arguments again.
std::string WindowsArguments(const Command& command);
/// `command` as the one line by which Windows starts a program: the program in quotes, then its arguments.
std::string WindowsLine(const Command& command);

}  // namespace tarnwick::process
