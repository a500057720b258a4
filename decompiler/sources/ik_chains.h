#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $ikchain and $ikautoplaylock.
void WriteIkStatements(JobContext& job);

/// The name by which statements call IK chain `number`; nothing if there is no such chain, or none that has a
/// statement.
[[nodiscard]] std::optional<std::string_view> ChainName(JobContext& job, int64_t number);

}  // namespace tarnwick::decompiler::sources
