#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "core/file_store.h"
#include "core/report.h"

namespace tarnwick::jobs {

/// Makes a model of a script, with nothing changed that the script says.
struct ModelCompile {
  core::FileStore& Files;  // has all of these, and takes the model
  std::string Script;
  std::string GameDirectory;  // the files come to lie below its folder "models", which is there
  int32_t Version = 48;       // of the model
  int32_t Threads = 0;        // that it may take; 0: one a core
  std::stop_token Stop = {};  // ends it soon, without a model
};
/// Compiles and gives the path of the .mdl file; nothing, told to the report as errors, if there is none.
using ModelCompiler = std::function<std::optional<std::string>(const ModelCompile&, core::Report&)>;

}  // namespace tarnwick::jobs
