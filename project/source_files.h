#pragma once

#include <optional>
#include <string>
#include <vector>

#include "project/model_project.h"

namespace tarnwick::project {

/// Where the reference SMD lies: a path with a folder of its own from the root on stays as it is, any other is meant
/// from the folder of the project's file. Nothing if it is such a path and the project is in no file yet: the process's
/// own folder is never meant.
std::optional<std::string> ReferencePathOf(const ModelProject& project);

/// A warning for each mesh, sequence and collision file of the project that the compiler will
/// look for and not find, by name. Paths from the root of a Windows drive are not looked for on other systems.
std::vector<std::string> MissingSources(const ModelProject& project);

}  // namespace tarnwick::project
