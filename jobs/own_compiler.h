#pragma once

#include <optional>
#include <string>

#include "jobs/model_compile.h"

namespace tarnwick::jobs {

/// The program's own compiler, by which numbers of the sources stay as they are: no normals are joined, no weights cut.
std::optional<std::string> CompileUnchanged(const ModelCompile& compile, core::Report& report);

}  // namespace tarnwick::jobs
