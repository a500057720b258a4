#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace tarnwick::cli {

/// What the verbs that make scripts of project files are told beside those.
struct ProjectScripts {
  /// Relative to the game's materials/models. Which one is in no project file; the window takes that of its material
  /// page.
  std::optional<std::string> Materials;

  /// Adds --materials to `verb`. The object outlives the parsing.
  void AddOptions(CLI::App& verb);
  /// Takes the material page's directory from the settings if none was given.
  void FillFromSettings(std::ostream& err);
};

}  // namespace tarnwick::cli
