#include "jobs/project_script.h"

#include "core/paths.h"
#include "project/project_file.h"
#include "project/qc_generator.h"
#include "project/source_files.h"

namespace tarnwick::jobs {

bool IsProjectFile(const std::string& path) {
  return core::EqualIgnoringCase(core::PathText(core::NativePath(path).extension()), ".sc");
}

std::optional<ProjectScript> WriteProjectScript(const std::string& path, const std::string& materials,
                                                core::Report& report) {
  project::ModelOptions modelOptions;
  project::ModelProject model(modelOptions);
  project::ProfileStore store;
  if (!project::OpenProjectFile(path, model, store, report)) return std::nullopt;
  model.materialDirectory = materials;
  ProjectScript script;
  script.Warnings = project::MissingSources(model);
  if (!project::WriteQcScript(model, report, script.Path)) return std::nullopt;
  script.Switches = static_cast<uint32_t>(modelOptions.studioMdlOptions);
  return script;
}

}  // namespace tarnwick::jobs
