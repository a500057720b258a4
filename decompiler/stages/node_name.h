#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"
#include "model/studio_records.h"

namespace tarnwick::decompiler {

/// The name of transition node `number`, counted from 1, that `sequence` names; nothing, told, if there is none.
std::optional<std::string_view> NodeName(JobContext& job, const core::Record<model::StudioSeqDesc>& sequence,
                                         int32_t number);

}  // namespace tarnwick::decompiler
