#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/decompile_plan.h"
#include "core/report.h"
#include "decompiler/decompile_job.h"

namespace tarnwick::cli {

/// What came of one model.
struct ModelOutcome {
  PlannedModel Model;
  decompiler::DecompileResult Result;
  double Seconds = 0;
  std::string LogText;  // everything it told, boxes as "caption: text" lines

  uint64_t Bytes() const;
};

/// Told of each model as it is done, one call at a time, in the order in which they end.
using ModelDone = std::function<void(const ModelOutcome& outcome, size_t done, size_t all)>;

/// Decompiles the models, `jobs` (at least 1) at a time, with `options` (DecompileOption bits); threads that find no
/// further model help with the files of those under way. Makes the output folders. A model that fails never stops the
/// others. `live`, if given, hears the log as it grows (sensible for one model only).
void RunDecompileBatch(const std::vector<PlannedModel>& models, uint32_t options, int jobs, core::Report* live,
                       const ModelDone& modelDone);

}  // namespace tarnwick::cli
