#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::plain {

/// What the commands of one model's face share.
struct FlexTables {
  std::vector<int32_t> Frame;           // of each flex descriptor in the VTA file, 0 for none
  std::vector<bool> Used;               // whether a frame or a partner makes the descriptor known
  std::vector<std::string_view> Names;  // of each descriptor
  std::string VtaName;                  // file name of the VTA file
};

/// Empty tables with the descriptors' names. Nothing, told, if the descriptor table is damaged.
[[nodiscard]] std::optional<FlexTables> MakeFlexTables(JobContext& job);

}  // namespace tarnwick::decompiler::plain
