#pragma once

#include <string>

#include "core/report.h"

namespace tarnwick::project {

/// Whether `text` has the shape of a script that this program writes for a project, whole or as far as it got.
bool IsOwnScript(std::string text);

/// Before a script is written over the file at `path`: one that is not our own is copied beside itself, to the first
/// free name of "crate.qc.bak", "crate.qc.bak2", ..., and the user is told. False, after an error box, if that is not
/// possible; the file is not to be overwritten then.
bool KeepForeignScript(const std::string& path, core::Report& report);

}  // namespace tarnwick::project
