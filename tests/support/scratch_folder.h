#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/paths.h"

namespace tarnwick::tests {

/// A new empty folder for one test, removed with everything in it at the end.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// The folder, without a separator at its end.
  std::string Path() const { return m_path.generic_string(); }
  /// The path of `name` in the folder.
  std::string Path(const std::string& name) const { return Path() + '/' + name; }
  /// The path of `name` in the folder as the program makes it: joined by its own separator.
  std::string Joined(const std::string& name) const { return Path() + core::PathSeparator + name; }
  /// The names of the files in the folder and below it ("sub/name"), sorted.
  std::vector<std::string> Files() const;

 private:
  std::filesystem::path m_path;
};

/// `text` with `/` for each separator of this platform, where a test does not ask which of the two a path came with.
std::string WithSlashes(std::string text);
/// The whole file at `path` as text, with "\n" for this platform's line end; a test failure and "" if it cannot be
/// read.
std::string ReadText(const std::string& path);
/// `text` with "\n" for this platform's line end, which is what written files are compared by.
std::string WithLineFeeds(std::string text);
/// Writes `text` to `path`, over an older file; makes the folders that are missing.
void WriteText(const std::string& path, std::string_view text);
/// Writes a program: a shell script of these commands.
void WriteShellProgram(const std::string& path, std::string_view commands);

}  // namespace tarnwick::tests
