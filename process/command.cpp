#include "process/command.h"

#include <algorithm>

namespace tarnwick::process {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string ShownByRule(const std::string& argument) {
  const bool plain = !argument.empty() && std::none_of(argument.begin(), argument.end(), IsBlank);
  return plain ? argument : Quoted(argument);
}

Command& Add(Command& command, std::string_view argument, std::string_view shown) {
  if (command.Shown.empty()) {
    for (const std::string& before : command.Arguments) command.Shown += " " + ShownByRule(before);
  }
  command.Shown += ' ';
  command.Shown += shown;
  command.Arguments.emplace_back(argument);
  return command;
}

/// In quotes as the runtime of C reads them on Windows: a backslash is an ordinary character but before a quote.
std::string WindowsQuoted(std::string_view argument) {
  std::string text = "\"";
  size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') text.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, '\\') + "\"";
}

#ifndef _WIN32
/// As a POSIX shell takes it for one word.
std::string ShellWord(const std::string& word) {
  constexpr std::string_view Plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:,@%+=-";
  if (!word.empty() && word.find_first_not_of(Plain) == std::string::npos) return word;
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
  return text + "'";
}
#endif

}  // namespace

Command& Command::Word(std::string_view argument) {
  return Add(*this, argument, argument);
}

Command& Command::InQuotes(std::string_view argument) {
  return Add(*this, argument, Quoted(argument));
}

Command& Command::Typed(std::string_view text) {
  // The line gets the text once; the words join the arguments.
  std::vector<std::string> words = SplitWords(text);
  Add(*this, {}, text).Arguments.pop_back();
  std::move(words.begin(), words.end(), std::back_inserter(Arguments));
  return *this;
}

std::string Command::Line() const {
  if (!Shown.empty()) return Program + Shown;
  std::string line = Program;
  for (const std::string& argument : Arguments) line += " " + ShownByRule(argument);
  return line;
}

std::string Command::ShellLine() const {
#ifdef _WIN32
  return WindowsLine(*this);
#else
  std::string line = ShellWord(Program);
  for (const std::string& argument : Arguments) line += " " + ShellWord(argument);
  return line;
#endif
}

std::vector<std::string> SplitWords(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  bool inQuotes = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      if (inQuotes && i + 1 < text.size() && text[i + 1] == '"') {
        word += '"';
        ++i;
        continue;
      }
      inQuotes = !inQuotes;
      inWord = true;  // a pair of quotes with nothing between them is an empty word
    } else if (IsBlank(c) && !inQuotes) {
      if (inWord) words.push_back(std::move(word));
      word.clear();
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) words.push_back(std::move(word));
  return words;
}

std::string WindowsArguments(const Command& command) {
  std::string text;
  for (const std::string& argument : command.Arguments) {
    const bool plain = !argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos;
    text += (text.empty() ? "" : " ") + (plain ? argument : WindowsQuoted(argument));
  }
  return text;
}

std::string WindowsLine(const Command& command) {
  return Quoted(command.Program) + " " + WindowsArguments(command);
}

}  // namespace tarnwick::process
