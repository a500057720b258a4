#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick::sdk {

/// Exit codes of the tools.
inline constexpr int ToolSuccess = 0;
inline constexpr int ToolFailure = 1;     // some of the work failed; the reasons were printed
inline constexpr int ToolWrongUsage = 2;  // nothing was done

/// A tool: it is given its arguments without its own name, prints its report to `out` and errors to `err`, and returns
/// its exit code.
using ToolProgram = int (*)(std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

/// What the `main` of every tool does: runs `program` with the standard streams, in the order in which they are
/// written also where both go to one pipe. Where "-nopause" is not among the arguments and a person sits at a
/// terminal, it then waits for the Enter key, so that a window that was opened for the tool can be read.
int RunTool(int argumentCount, const char* const* arguments, ToolProgram program);

/// Whether `argument` is the switch `name`, such as "-nopause": case does not count, two dashes serve as well as one.
bool IsSwitch(std::string_view argument, std::string_view name);

/// Whether `argument` is a dash with something behind it. (A slash makes no switch: it may start a path.)
bool LooksLikeSwitch(std::string_view argument);

/// Whether `argument` asks for the help: -h, -help, -?, /?.
bool IsHelpSwitch(std::string_view argument);

}  // namespace tarnwick::sdk
