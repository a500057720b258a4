#include "tools/command_line.h"

namespace tarnwick::tools {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  return text;
}

}  // namespace

std::vector<std::string> SplitArguments(std::string_view text) {
  std::vector<std::string> arguments;
  std::string argument;
  bool inArgument = false;
  bool inQuotes = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      if (inQuotes && i + 1 < text.size() && text[i + 1] == '"') {
        argument += '"';
        ++i;
        continue;
      }
      inQuotes = !inQuotes;
      inArgument = true;  // a pair of quotes with nothing between them is an empty argument
    } else if (IsBlank(c) && !inQuotes) {
      if (inArgument) arguments.push_back(std::move(argument));
      argument.clear();
      inArgument = false;
    } else {
      argument += c;
      inArgument = true;
    }
  }
  if (inArgument) arguments.push_back(std::move(argument));
  return arguments;
}

std::vector<ProgramReading> ProgramReadings(std::string_view commandLine) {
  const std::string_view line = WithoutLeadingBlanks(commandLine);
  if (line.empty()) return {};
  if (line.front() == '"') {
    const size_t end = line.find('"', 1);
    if (end == std::string_view::npos) return {{std::string(line.substr(1)), {}}};
    return {{std::string(line.substr(1, end - 1)), std::string(line.substr(end + 1))}};
  }
  std::vector<ProgramReading> readings;
  for (size_t i = 1; i <= line.size(); ++i) {
    if (i < line.size() && !IsBlank(line[i])) continue;
    if (IsBlank(line[i - 1])) continue;  // a run of blanks ends one name, not several
    readings.push_back({std::string(line.substr(0, i)), std::string(line.substr(i))});
  }
  return readings;
}

}  // namespace tarnwick::tools
