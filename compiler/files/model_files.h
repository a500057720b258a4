#pragma once

#include <string>

#include "compiler/compile_options.h"

namespace tarnwick::compiler {

/// Writes the files of a model into `store`, below `<gameDirectory>/models`, where `modelName` says: each under a
/// temporary name, all renamed when all are whole. False, told in the report, if the name is no place below that folder
/// or a file cannot be written; then none of them is.
bool WriteModelFiles(const CompiledFiles& files, const std::string& modelName, const std::string& gameDirectory,
                     core::FileStore& store, CompileReport& report);

}  // namespace tarnwick::compiler
