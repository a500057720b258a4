#pragma once

#include <string>
#include <vector>

#include "core/output_file.h"

namespace tarnwick::compiler {

/// Gives all files their names, or none: where one cannot get its name, those that have theirs give it back, and what
/// stood there before stands there again. False then, with the path and the system's words in `path` and `reason`.
[[nodiscard]] bool CommitTogether(std::vector<core::OutputFile>& files, std::string& path, std::string& reason);

}  // namespace tarnwick::compiler
