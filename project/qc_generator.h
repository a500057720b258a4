#pragma once

#include <string>

#include "core/app_settings.h"
#include "core/report.h"
#include "project/model_project.h"
#include "project/profile_store.h"

namespace tarnwick::project {

/// Checks `project`, writes its QC script beside the reference SMD (same folder and stem, ".qc", over an older script)
/// and sets `qcPath` to the script's path, with forward slashes. A relative reference SMD lies beside the project's
/// file (see `ReferencePathOf`) and stands in the script with its whole path. A file that is no script of ours is kept
/// under another name, which is told.
///
/// Every failure is shown as an error box, and false is returned: no model file, no reference SMD or one without a
/// full stop in its name, no collision file, a relative reference SMD of a project in no file, a script that cannot be
/// made or would overwrite a file that the project reads, no sequences. What the script leaves out is shown as warning
/// boxes, and the script is complete all the same. No field is validated: what is in it goes into the script unchanged.
///
/// A script that ends early, for want of sequences, stays on disk as far as it got, unless an older script stands in
/// its place, which then stays.
bool WriteQcScript(const ModelProject& formProject, core::Report& report, std::string& qcPath);

/// What a compile begins with: saves the project into `store` and `settings`, also if it then fails, and writes its
/// script as above. A page empties the text of its status window before it calls this.
bool GenerateQc(const ModelProject& project, ProfileStore& store, core::AppSettings& settings, core::Report& report,
                std::string& qcPath);

}  // namespace tarnwick::project
