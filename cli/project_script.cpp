#include "cli/project_script.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "cli/tool_directories.h"
#include "core/paths.h"
#include "core/settings_table.h"
#include "project/project_file.h"
#include "project/qc_generator.h"

namespace tarnwick::cli {

namespace fs = std::filesystem;

namespace {

/// `reference` as the project file at `projectPath` means it: a file beside that one if there is none in the current
/// folder. As an absolute path, since it stands in the script, whose own folder counts there.
std::string FindReference(const std::string& reference, const std::string& projectPath) {
  if (reference.empty() || core::FileExists(reference)) return reference;
  std::error_code error;
  const fs::path folder = fs::absolute(core::NativePath(projectPath), error).parent_path();
  const std::string beside = core::PathText(folder / core::NativePath(reference));
  return core::FileExists(beside) ? beside : reference;
}

}  // namespace

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
  model.referenceSmd = FindReference(model.referenceSmd, path);
  ProjectScript script;
  if (!project::WriteQcScript(model, report, script.Path)) return std::nullopt;
  script.Options = static_cast<uint32_t>(modelOptions.studioMdlOptions);
  return script;
}

}  // namespace tarnwick::cli
