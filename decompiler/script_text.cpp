#include "decompiler/script_text.h"

#include <limits>

namespace tarnwick::decompiler {

std::string ScriptWord(const JobContext& job, std::string_view name) {
  const bool breaks = name.empty() || name.find_first_of(" \t;{}") != std::string_view::npos ||
                      name.find("//") != std::string_view::npos;
  if (!job.ReadyToCompile() || !breaks) return std::string(name);
  return "\"" + std::string(name) + "\"";
}

int32_t TruncateToInt(float value) {
  constexpr float Limit = 2147483648.0f;
  return value > -Limit && value < Limit ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
}

}  // namespace tarnwick::decompiler
