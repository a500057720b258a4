#pragma once

#include <optional>
#include <string>

#include "process/child_process.h"

namespace tarnwick::tools {

/// What is said about a program before its first start.
struct StartSettings {
  /// The program that runs Windows programs on other systems; empty to look for `wine`, then `wine64`.
  std::string WineProgram;
};

/// A command as it goes to the system.
struct ProgramStart {
  process::Command Command;  // its program is a file
  process::StartOptions Options;
};

/// Works out how `command` is started here: finds the program's file (`FindToolFile`, and a bare name by way of the
/// PATH too), reads its kind, and elsewhere than on Windows puts Wine in front of a Windows program, with
/// WINEDEBUG=-all and with arguments that are absolute paths in Wine's form (Z:\...). Fails where there is no such
/// file, and with ENOEXEC and a message that says what to install if no Wine here can run the program.
std::optional<process::SystemError> PrepareStart(const process::Command& command, const StartSettings& settings,
                                                 ProgramStart& start);

/// `command` as a line that the user's shell takes, Wine included where it takes one.
std::string ShellLine(const process::Command& command, const StartSettings& settings);

/// `argument` as a Windows program under Wine is to get it: an absolute path of this system in the form of the drive
/// that Wine maps to its root; other text as it is. Text that begins with a slash counts as such a path if its first
/// folder exists, so a switch such as "/nologo" stays.
std::string WineArgument(const std::string& argument);

}  // namespace tarnwick::tools
