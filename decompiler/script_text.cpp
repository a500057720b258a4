#include "decompiler/script_text.h"

namespace tarnwick::decompiler {

std::string ScriptWord(const JobContext& job, std::string_view name) {
  const bool breaks = name.empty() || name.find_first_of(" \t;{}") != std::string_view::npos ||
                      name.find("//") != std::string_view::npos;
  if (!job.ReadyToCompile() || !breaks) return std::string(name);
  return "\"" + std::string(name) + "\"";
}

}  // namespace tarnwick::decompiler
