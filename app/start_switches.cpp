#include "app/start_switches.h"

#include <filesystem>
#include <string_view>

#include "archives/archive_name.h"
#include "core/paths.h"

namespace tarnwick::app {

namespace {

constexpr std::string_view SwitchMarks = "-/";

bool IsRegistration(std::string_view line) {
  for (size_t mark = line.find_first_of(SwitchMarks); mark != std::string_view::npos;
       mark = line.find_first_of(SwitchMarks, mark + 1)) {
    const std::string_view token = line.substr(mark + 1);  // to the end of the line: nothing may follow the word
    if (core::EqualIgnoringCase(token, "UnregServer") || core::EqualIgnoringCase(token, "RegServer")) return true;
  }
  return false;
}

bool IsEmbedded(std::string_view argument) {
  if (argument.empty() || SwitchMarks.find(argument.front()) == std::string_view::npos) return false;
  argument.remove_prefix(1);
  return core::EqualIgnoringCase(argument, "Embedding") || core::EqualIgnoringCase(argument, "Automation");
}

}  // namespace

StartMode ReadStartSwitches(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) line += (line.empty() ? "" : " ") + argument;
  if (IsRegistration(line)) return StartMode::Registration;
  for (const std::string& argument : arguments) {
    if (IsEmbedded(argument)) return StartMode::Embedded;
  }
  return StartMode::Window;
}

std::vector<std::string> FilesOnLine(const std::vector<std::string>& arguments) {
  std::vector<std::string> files;
  for (const std::string& argument : arguments) {
    std::error_code error;
    const std::filesystem::path path = core::NativePath(argument);
    const bool looksLikeSwitch = argument.empty() || argument.front() == '-' ||
                                 (argument.front() == '/' && argument.find('/', 1) == std::string::npos);
    if (looksLikeSwitch && !std::filesystem::exists(path, error)) continue;
    if (archives::ReadContentName(argument).Where == archives::ContentName::Place::Game) {
      files.push_back(argument);
      continue;
    }
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    files.push_back(error ? argument : core::PathText(whole.lexically_normal()));
  }
  return files;
}

std::optional<std::string> UnknownOption(const std::vector<std::string>& arguments) {
  if (ReadStartSwitches(arguments) != StartMode::Window) return std::nullopt;
  for (const std::string& argument : arguments) {
    std::error_code error;
    const bool isOption =
        argument.size() > 2 && argument.starts_with("--") && argument != "--help" && argument != "--version";
    if (isOption && !std::filesystem::exists(core::NativePath(argument), error)) return argument;
  }
  return std::nullopt;
}

}  // namespace tarnwick::app
