#pragma once

#include <optional>
#include <string>

namespace tarnwick::tools {

/// What a file is to the system that should run it, told by its first bytes and never by its name.
enum class ProgramKind {
  Native,        // no Windows program: the system itself knows what to do with it
  Windows32,     // a PE file for 32-bit x86
  Windows64,     // a PE file for 64-bit x86
  OtherWindows,  // a PE file for another processor
  Dos,           // an MZ file without a PE header
};

/// Whether the file system has an entry for the tool at `path` (either slash is taken). On systems other than Windows a
/// tool also exists if `FindToolFile` finds it under another spelling.
bool ToolExists(const std::string& path);

/// The file to be run for the tool that is called `path`: the file of that name itself; on systems other than Windows
/// else the one whose name differs in case only, or the one without the ending ".exe", which is how native programs
/// are called there. A name without ".exe" also finds the file with it, as on Windows. Nothing if there is no such
/// file.
std::optional<std::string> FindToolFile(const std::string& path);

/// Tells the kind of the program at `path` by its header. A file that cannot be read counts as native, so that the
/// attempt to run it tells why.
ProgramKind ReadProgramKind(const std::string& path);

}  // namespace tarnwick::tools
