#include "tools/program_start.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "core/paths.h"
#include "tools/tool_file.h"
#ifndef _WIN32
#include "tools/wine_posix.h"
#endif

namespace tarnwick::tools {

namespace fs = std::filesystem;

#ifdef _WIN32

std::optional<process::SystemError> PrepareStart(const process::Command& command, const StartSettings&,
                                                 ProgramStart& start) {
  // Without such a file the start itself tells why.
  start = {command, {}};
  start.Command.Program = FindToolFile(command.Program).value_or(command.Program);
  return std::nullopt;
}

#else

namespace {

/// The file that `program` names: a path as it is, a bare name by way of the PATH too.
std::optional<std::string> FindProgram(const std::string& program) {
  if (program.empty()) return std::nullopt;
  if (const auto file = FindToolFile(program)) return core::PathText(core::NativePath(*file));
  return program.find_first_of("/\\") == std::string::npos ? FindInPath(program) : std::nullopt;
}

}  // namespace

std::optional<process::SystemError> PrepareStart(const process::Command& command, const StartSettings& settings,
                                                 ProgramStart& start) {
  const auto file = FindProgram(command.Program);
  if (!file) return process::ErrorOf(ENOENT);
  const ProgramKind kind = ReadProgramKind(*file);
  start = {{*file, command.Arguments}, {}};
  if (kind == ProgramKind::Native) return std::nullopt;
  const WineChoice wine = ChooseWine(kind, *file, settings.WineProgram);
  if (wine.Program.empty()) return process::SystemError{ENOEXEC, wine.Problem};
  start.Command = {wine.Program, {*file}};
  for (const std::string& argument : command.Arguments) start.Command.Arguments.push_back(WineArgument(argument));
  start.Options.Environment = {"WINEDEBUG=-all"};
  start.Options.Shared = WineServers;
  return std::nullopt;
}

#endif

std::string ShellLine(const process::Command& command, const StartSettings& settings) {
  ProgramStart start;
  return PrepareStart(command, settings, start) ? command.ShellLine() : start.Command.ShellLine();
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
