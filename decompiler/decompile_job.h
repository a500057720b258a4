#pragma once

#include "core/report.h"
#include "decompiler/job/decompile_values.h"

namespace tarnwick::decompiler {

/// Runs the whole job on the calling thread: loads the model, writes the QC script, the SMD files and the VTA files
/// into the output directory. Every outcome is told through `report` as it happens (from the calling thread only) and
/// summed up in the result; nothing is thrown.
DecompileResult DecompileModel(const DecompileJob& job, core::Report& report);

}  // namespace tarnwick::decompiler
