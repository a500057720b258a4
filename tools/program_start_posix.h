#pragma once

#ifndef _WIN32

#include <optional>
#include <string>
#include <vector>

#include "tools/child_process.h"

namespace tarnwick::tools {

/// A program and its arguments as they go to the system.
struct ProgramStart {
  std::vector<std::string> Words;  // the program's file, then its arguments
  bool ThroughWine = false;
};

/// Works out how `commandLine` is started here: finds the program's file, reads its kind, and puts Wine in front of a
/// Windows program. Fails with ENOENT if no reading of the line names a file, and with ENOEXEC and a message that says
/// what to install if the file is a Windows program that no Wine here can run.
std::optional<SystemError> PrepareStart(const std::string& commandLine, const StartSettings& settings,
                                        ProgramStart& start);

/// The same for a program and its parameters that were never one line.
std::optional<SystemError> PrepareStart(const std::string& program, const std::string& parameters,
                                        const StartSettings& settings, ProgramStart& start);

/// `argument` as a Windows program under Wine is to get it: an absolute path of this system in the form of the drive
/// that Wine maps to its root; other text as it is. Text that begins with a slash counts as such a path if its first
/// folder exists, so a switch such as "/nologo" stays.
std::string WineArgument(const std::string& argument);

}  // namespace tarnwick::tools

#endif
