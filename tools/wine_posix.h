#pragma once

#ifndef _WIN32

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/tool_file.h"

namespace tarnwick::tools {

/// The Wine that runs a program, or why there is none.
struct WineChoice {
  std::string Program;  // empty if there is none
  std::string Problem;  // then: what is missing and what to do, for the user
};

/// Chooses the Wine for the Windows program at `program`, which is of `kind`. `configured` is the user's own choice, a
/// path or a name; if it is empty, `wine` and `wine64` are looked for in the PATH and where Debian keeps them.
WineChoice ChooseWine(ProgramKind kind, const std::string& program, const std::string& configured);

/// The executable file called `name` in the folders of the PATH.
std::optional<std::string> FindInPath(const std::string& name);

/// The names of Wine's own servers, as the system lists processes. They belong to every Windows program that the user
/// runs, whoever started them, and end by themselves after the last one.
extern const std::span<const std::string_view> WineServers;

}  // namespace tarnwick::tools

#endif
