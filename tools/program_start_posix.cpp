#include "tools/program_start_posix.h"

#ifndef _WIN32

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "core/paths.h"
#include "tools/command_line.h"
#include "tools/tool_file.h"
#include "tools/wine_posix.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

SystemError ErrorOf(int code) {
  return {code, std::generic_category().message(code)};
}

/// The file that `program` names: a path as it is, a bare name by way of the PATH too.
std::optional<std::string> FindProgram(const std::string& program) {
  if (program.empty()) return std::nullopt;
  if (const auto file = FindToolFile(program)) return core::PathText(core::NativePath(*file));
  return program.find_first_of("/\\") == std::string::npos ? FindInPath(program) : std::nullopt;
}

std::optional<SystemError> PrepareFile(const std::string& file, const std::string& arguments,
                                       const StartSettings& settings, ProgramStart& start) {
  // A bare name of the current folder must not be looked for in the PATH.
  const std::string path = file.find('/') == std::string::npos ? "./" + file : file;
  const ProgramKind kind = ReadProgramKind(path);
  start = {};
  if (kind != ProgramKind::Native) {
    const WineChoice wine = ChooseWine(kind, path, settings.WineProgram);
    if (wine.Program.empty()) return SystemError{ENOEXEC, wine.Problem};
    start.Words.push_back(wine.Program);
    start.ThroughWine = true;
  }
  start.Words.push_back(path);
  for (const std::string& argument : SplitArguments(arguments)) {
    start.Words.push_back(start.ThroughWine ? WineArgument(argument) : argument);
  }
  return std::nullopt;
}

}  // namespace

std::optional<SystemError> PrepareStart(const std::string& commandLine, const StartSettings& settings,
                                        ProgramStart& start) {
  for (const ProgramReading& reading : ProgramReadings(commandLine)) {
    if (const auto file = FindProgram(reading.Program)) return PrepareFile(*file, reading.Arguments, settings, start);
  }
  return ErrorOf(ENOENT);
}

std::optional<SystemError> PrepareStart(const std::string& program, const std::string& parameters,
                                        const StartSettings& settings, ProgramStart& start) {
  if (const auto file = FindProgram(program)) return PrepareFile(*file, parameters, settings, start);
  return ErrorOf(ENOENT);
}

std::string WineArgument(const std::string& argument) {
  if (argument.size() < 2 || argument[0] != '/') return argument;
  const size_t end = argument.find_first_of("/\\", 1);
  std::error_code error;
  if (!fs::is_directory(argument.substr(0, end), error)) return argument;
  std::string path = "Z:" + argument;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

}  // namespace tarnwick::tools

#endif
