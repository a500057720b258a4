#include "project/qc_generator.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "core/output_file.h"
#include "core/paths.h"
#include "core/text_writer.h"
#include "project/project_store.h"
#include "project/qc_names.h"
#include "project/qc_statements.h"
#include "project/script_copy.h"
#include "project/source_files.h"

namespace tarnwick::project {

namespace {

using core::Report;
using core::TroubleKind;

bool Refuse(Report& report, std::string_view text, std::string_view caption, TroubleKind kind = TroubleKind::Refused) {
  report.ErrorBox(kind, text, caption);
  return false;
}

/// Whether two paths name one file, also where it does not exist yet.
bool SameFile(std::string_view a, std::string_view b) {
  const std::filesystem::path first = core::NativePath(a);
  const std::filesystem::path second = core::NativePath(b);
  std::error_code error;
  return first.lexically_normal() == second.lexically_normal() || std::filesystem::equivalent(first, second, error);
}

bool CheckProject(const ModelProject& project, Report& report) {
  if (project.modelFile.empty()) return Refuse(report, "No Model file specified", "Model Error");
  if (project.referenceSmd.empty()) return Refuse(report, "No Reference SMD file specified", "Reference SMD Error");
  if (!project.useReferenceAsCollision && project.collisionFile.empty()) {
    return Refuse(report, "No Collision SMD file specified", "PHY SMD Error");
  }
  if (!HasStem(project.referenceSmd)) {
    return Refuse(report,
                  "The Reference SMD \"" + project.referenceSmd +
                      "\" has no full stop in its file name, so no .qc file can be named after it. "
                      "Use a file with an extension, such as .smd",
                  "Reference SMD Error");
  }
  const std::string qcPath = QcPathOf(project.referenceSmd);
  if (SameFile(qcPath, project.referenceSmd)) {
    return Refuse(report, "The .qc file would overwrite the Reference SMD \"" + project.referenceSmd + "\"",
                  "Reference SMD Error");
  }
  if (!project.useReferenceAsCollision && SameFile(qcPath, project.collisionFile)) {
    return Refuse(report,
                  "The .qc file of the model would overwrite the Collision file \"" + project.collisionFile +
                      "\". Give that file another name",
                  "PHY SMD Error");
  }
  return true;
}

}  // namespace

bool WriteQcScript(const ModelProject& formProject, Report& report, std::string& qcPath) {
  const std::optional<std::string> reference = ReferencePathOf(formProject);
  if (!reference && !formProject.modelFile.empty() && HasStem(formProject.referenceSmd)) {
    return Refuse(report,
                  "The Reference SMD \"" + formProject.referenceSmd +
                      "\" is told from the project's folder, but the project is in no file yet. "
                      "Save the project, or give the whole path",
                  "Reference SMD Error");
  }
  ModelProject project = formProject;
  project.referenceSmd = reference.value_or(formProject.referenceSmd);
  if (!CheckProject(project, report)) return false;
  std::string path = QcPathOf(project.referenceSmd);
  std::string reason;
  std::optional<core::OutputFile> file = core::OutputFile::Create(path, &reason);
  if (!file) {
    report.Log(path + ": " + reason + "\r\n");
    return Refuse(report, "Unable to open temp file for .qc", "QC Error", TroubleKind::Unwritable);
  }
  bool complete = false;
  {
    core::TextWriter qc(*file);
    complete = WriteQcStatements(project, qc, report);
  }
  if (!complete && core::FileExists(path)) return false;
  if (!KeepForeignScript(path, report)) return false;
  if (!file->Commit())
    return Refuse(report, "Unable to write \"" + path + "\": " + file->Error(), "QC Error", TroubleKind::Unwritable);
  if (complete) qcPath = std::move(path);
  return complete;
}

bool GenerateQc(const ModelProject& project, ProfileStore& store, core::AppSettings& settings, Report& report,
                std::string& qcPath) {
  SaveProjectToStore(project, store, settings);
  return WriteQcScript(project, report, qcPath);
}

}  // namespace tarnwick::project
