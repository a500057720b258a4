#include "cli/project_script.h"

#include <CLI/CLI.hpp>

#include "cli/tool_directories.h"
#include "core/settings_table.h"
#include "project/project_file.h"
#include "project/qc_generator.h"
#include "project/source_files.h"

namespace tarnwick::cli {

void ProjectScripts::AddOptions(CLI::App& verb) {
  verb.add_option("-m,--materials", Materials,
                  "Material directory of projects, relative to materials/models; without it the one that is set in the "
                  "window");
}

void ProjectScripts::FillFromSettings(std::ostream& err) {
  if (Materials) return;
  if (const auto settings = OpenSettings(err)) Materials = core::setting::MaterialsDir.Read(*settings);
}

std::optional<ProjectScript> ProjectScripts::Write(const std::string& path, core::Report& report) const {
  project::ModelOptions modelOptions;
  project::ModelProject model(modelOptions);
  project::ProfileStore store;
  if (!project::OpenProjectFile(path, model, store, report)) return std::nullopt;
  model.materialDirectory = Materials.value_or("");
  ProjectScript script;
  script.Warnings = project::MissingSources(model);
  if (!project::WriteQcScript(model, report, script.Path)) return std::nullopt;
  script.Options = static_cast<uint32_t>(modelOptions.studioMdlOptions);
  return script;
}

}  // namespace tarnwick::cli
