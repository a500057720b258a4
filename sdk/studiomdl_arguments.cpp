#include "sdk/studiomdl_arguments.h"

#include <algorithm>
#include <string_view>

#include "core/number_parse.h"
#include "core/paths.h"
#include "sdk/tool_console.h"

namespace tarnwick::sdk {

namespace {

/// Switches that do something, by the flag that they set.
struct FlagSwitch {
  std::string_view Name;
  bool StudiomdlRequest::*Flag;
};
constexpr FlagSwitch FlagSwitches[] = {{"-quiet", &StudiomdlRequest::Quiet},
                                       {"-printbones", &StudiomdlRequest::PrintBones},
                                       {"-definebone", &StudiomdlRequest::DefineBones},
                                       {"-h", &StudiomdlRequest::DumpHitboxes}};

/// Switches that ask for what is done in any case, or for nothing that a file shows.
constexpr std::string_view SilentSwitches[] = {"-nop4", "-nopause"};

/// Switches of the SDK's tool that are known and do nothing here.
constexpr std::string_view KnownSwitches[] = {"-fullcollide", "-checklengths", "-perf", "-printgraph", "-f"};

constexpr int32_t Versions[] = {44, 48, 49};

template <typename Table>
bool Holds(const Table& table, std::string_view argument) {
  return std::any_of(std::begin(table), std::end(table),
                     [argument](std::string_view name) { return IsSwitch(argument, name); });
}

}  // namespace

std::optional<StudiomdlRequest> ReadStudiomdlArguments(std::span<const std::string> arguments, std::string& reason) {
  const auto refuse = [&](std::string why) {
    reason = std::move(why);
    return std::nullopt;
  };
  StudiomdlRequest request;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto flag = std::find_if(std::begin(FlagSwitches), std::end(FlagSwitches),
                                   [&](const FlagSwitch& known) { return IsSwitch(argument, known.Name); });
    if (flag != std::end(FlagSwitches)) {
      request.*(flag->Flag) = true;
    } else if (IsSwitch(argument, "-game")) {
      if (++i == arguments.size() || arguments[i].empty()) return refuse("-game must be followed by a directory");
      request.GameDirectory = arguments[i];
    } else if (IsSwitch(argument, "-version")) {
      const std::string value = ++i < arguments.size() ? arguments[i] : std::string();
      size_t length = 0;
      request.Version = core::ParseWhole(value, &length);
      if (length != value.size() ||
          std::find(std::begin(Versions), std::end(Versions), request.Version) == std::end(Versions))
        return refuse("-version must be followed by 44, 48 or 49");
    } else if (Holds(SilentSwitches, argument)) {
      continue;
    } else if (Holds(KnownSwitches, argument)) {
      const bool isTold = std::any_of(request.PassedOver.begin(), request.PassedOver.end(),
                                      [&](const std::string& told) { return core::EqualIgnoringCase(told, argument); });
      if (!isTold) request.PassedOver.push_back(argument);
    } else if (LooksLikeSwitch(argument)) {
      return refuse("unknown switch " + argument);
    } else if (argument.empty()) {
      return refuse("an empty file name");
    } else if (!request.Script.empty()) {
      return refuse("one script at a time: " + request.Script + " and " + argument);
    } else {
      request.Script = argument;
    }
  }
  if (request.Script.empty()) return refuse("no script");
  return request;
}

}  // namespace tarnwick::sdk
