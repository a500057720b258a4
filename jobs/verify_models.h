#pragma once

#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "jobs/host.h"
#include "jobs/input_content.h"
#include "jobs/item_run.h"
#include "jobs/model_compile.h"

namespace tarnwick::jobs {

/// The proof that sources hold all of a model: each model is decompiled, compiled and decompiled again, and both the
/// models and the sources are compared.
struct VerifyModels {
  std::vector<std::string> Inputs = {};        // models, and folders that are searched for them
  std::shared_ptr<InputContent> Content = {};  // by which inputs are had; null: no game is known
  bool Recursive = false;                      // also the folders below a folder
  std::string KeepDirectory = {};              // where sources and compiled models stay; "" to leave nothing
  int Threads = 1;                             // models at a time
  /// Bytes that sources and compiled models may take in memory, those of all models at a time together. What is more
  /// lies in a folder for temporary files meanwhile; with 0 all does.
  int64_t MemoryLimit = int64_t{512} << 20;
  ModelCompiler Compiler = {};  // empty for the program's own
};

/// The models that the job finds. The target of each is its folder below KeepDirectory, "" without one.
JobPlan Plan(const VerifyModels& job);

/// Verifies every model. An item has succeeded if what came back is the same or differs by rounding alone; its result
/// holds the verification. A model that cannot be read, written, compiled or compared has failed with the reason. What
/// is made is held in memory, or lies below KeepDirectory: in `sources` the first sources, in `compiled` the model made
/// of them, in `again` the sources of that.
JobResult Run(const VerifyModels& job, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
