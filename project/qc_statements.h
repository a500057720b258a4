#pragma once

#include "core/report.h"
#include "core/text_writer.h"
#include "project/model_project.h"

namespace tarnwick::project {

/// Writes all statements of the project's script, in their order, and shows a warning box at each thing that it leaves
/// out. False, after an error box, if a sequence is needed and there is none; the script then ends there.
bool WriteQcStatements(const ModelProject& project, core::TextWriter& qc, core::Report& report);

}  // namespace tarnwick::project
