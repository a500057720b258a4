#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/report.h"

namespace CLI {
class App;
}

namespace tarnwick::cli {

/// The script of a project.
struct ProjectScript {
  std::string Path;
  uint32_t Options = 0;               // switches of studiomdl that the project asks for
  std::vector<std::string> Warnings;  // of files that the project needs and that are not there
};

/// Makes scripts of project files, for the verbs that do that.
struct ProjectScripts {
  /// Relative to the game's materials/models. Which one is in no project file; the window takes that of its material
  /// page.
  std::optional<std::string> Materials;

  /// Adds --materials to `verb`. The object outlives the parsing.
  void AddOptions(CLI::App& verb);
  /// Takes the material page's directory from the settings if none was given.
  void FillFromSettings(std::ostream& err);

  /// Writes the script of the project file at `path`. Nothing if that failed, which is told.
  std::optional<ProjectScript> Write(const std::string& path, core::Report& report) const;
};

}  // namespace tarnwick::cli
