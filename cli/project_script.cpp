#include "cli/project_script.h"

#include <CLI/CLI.hpp>

#include "cli/tool_directories.h"
#include "core/settings_table.h"

namespace tarnwick::cli {

void ProjectScripts::AddOptions(CLI::App& verb) {
  verb.add_option("-m,--materials", Materials,
                  "Material directory of projects, relative to materials/models; without it the one that is set in the "
                  "window")
      ->type_name("DIR");
}

void ProjectScripts::FillFromSettings(std::ostream& err) {
  if (Materials) return;
  if (const auto settings = OpenSettings(err)) Materials = core::setting::MaterialsDir.Read(*settings);
}

}  // namespace tarnwick::cli
