#include "sdk/vtex_arguments.h"

#include <algorithm>

#include "core/number_parse.h"
#include "sdk/tool_console.h"

namespace tarnwick::sdk {

namespace {

bool IsNumber(std::string_view text) {
  size_t length = 0;
  const double value = core::ParseReal(text, &length);
  return !text.empty() && length == text.size() && value - value == 0;
}

/// The words of `text`, which blanks part.
std::vector<std::string_view> WordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty()) return words;
    words.push_back(text.substr(0, text.find(' ')));
    text.remove_prefix(words.back().size());
  }
}

/// Takes the words of one value from `rest`, whose first word belongs to it in any case. Nothing if it opens a bracket
/// that no word closes.
std::optional<std::string> TakeValue(std::span<const std::string>& rest) {
  std::string value = rest[0];
  rest = rest.subspan(1);
  const auto takeNext = [&] {
    value += " " + rest[0];
    rest = rest.subspan(1);
  };
  const char closing = value.starts_with('[') ? ']' : value.starts_with('{') ? '}' : '\0';
  if (closing != '\0') {
    while (value.find(closing) == std::string::npos && !rest.empty()) takeNext();
    if (value.find(closing) == std::string::npos) return std::nullopt;
    return value;
  }
  if (IsNumber(value)) {
    while (!rest.empty() && IsNumber(rest[0])) takeNext();
  }
  const auto words = WordsOf(value);
  if (words.size() > 1 && std::all_of(words.begin(), words.end(), IsNumber)) return "[" + value + "]";
  return value;
}

/// Whether a material file can hold `text` between quotes.
bool CanBeQuoted(std::string_view text) {
  return text.find_first_of("\"\r\n") == std::string_view::npos;
}

}  // namespace

std::optional<VtexRequest> ReadVtexArguments(std::span<const std::string> arguments, std::string& reason) {
  const auto refuse = [&](std::string why) {
    reason = std::move(why);
    return std::nullopt;
  };
  VtexRequest request;
  while (!arguments.empty()) {
    const std::string& argument = arguments[0];
    arguments = arguments.subspan(1);
    if (IsSwitch(argument, "-vmtparam")) {
      if (arguments.size() < 2) return refuse("-vmtparam must be followed by a name and a value");
      const std::string& name = arguments[0];
      arguments = arguments.subspan(1);
      const auto value = TakeValue(arguments);
      if (!value) return refuse("the bracket in the value of " + name + " is not closed");
      if (name.empty() || !CanBeQuoted(name) || !CanBeQuoted(*value)) {
        return refuse("a material file cannot hold the parameter " + name + " with the value " + *value);
      }
      request.Parameters.emplace_back(name, *value);
    } else if (IsSwitch(argument, "-shader") || IsSwitch(argument, "-outdir")) {
      if (arguments.empty() || arguments[0].empty()) return refuse(argument + " must be followed by a name");
      (IsSwitch(argument, "-shader") ? request.Shader : request.OutputFolder) = arguments[0];
      if (!CanBeQuoted(request.Shader)) return refuse("a material file cannot hold the shader " + request.Shader);
      arguments = arguments.subspan(1);
    } else if (IsSwitch(argument, "-quiet")) {
      request.Quiet = true;
    } else if (IsSwitch(argument, "-fast")) {
      request.Fast = true;
    } else if (IsSwitch(argument, "-nopause") || IsSwitch(argument, "-mkdir")) {
      continue;  // the one is heeded where the tool ends, the other is done in any case
    } else if (LooksLikeSwitch(argument)) {
      return refuse("unknown switch " + argument);
    } else if (argument.empty()) {
      return refuse("an empty file name");
    } else {
      request.Inputs.push_back(argument);
    }
  }
  if (request.Inputs.empty()) return refuse("no input file");
  return request;
}

}  // namespace tarnwick::sdk
