#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "compiler/compile_options.h"

namespace tarnwick::compiler {

/// Compiles the script at `path` with all sources that it names into the bytes of a model's files. Every error and
/// warning is in the report, in the order in which it was met; nothing if there was an error.
std::optional<CompiledFiles> CompileToMemory(const std::string& path, const CompileOptions& options,
                                             CompileReport& report);
/// The same for a script in memory; its sources are asked from `options.Read` by the names that the script gives them,
/// with an ending where one was left out.
std::optional<CompiledFiles> CompileTextToMemory(std::string_view text, const std::string& path,
                                                 const CompileOptions& options, CompileReport& report);

/// Compiles the script at `path` and writes the model's files to where its $modelname says, below the folder `models`
/// of `options.GameDirectory`: all of them or none. False, told in the report, if nothing was written. A name that
/// would leave that folder is refused.
bool CompileModel(const std::string& path, const CompileOptions& options, CompileReport& report);

}  // namespace tarnwick::compiler
