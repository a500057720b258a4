#include "cli/decompile_plan.h"

#include <filesystem>

#include "cli/input_files.h"
#include "core/paths.h"

namespace tarnwick::cli {

namespace {

constexpr std::string_view ModelExtension = ".mdl";

}  // namespace

DecompilePlan PlanDecompile(const std::vector<std::string>& inputs, const std::string& output, bool recursive) {
  DecompilePlan plan;
  std::error_code ignored;
  if (inputs.size() == 1 && !std::filesystem::is_directory(core::NativePath(inputs[0]), ignored)) {
    plan.Models.push_back({inputs[0], output});
    return plan;
  }
  InputFiles found = FindInputFiles(inputs, ModelExtension, recursive);
  plan.Problems = std::move(found.Problems);
  UniqueNames folders;
  for (const InputFile& file : found.Files) {
    const std::string folder = folders.Take(WithoutExtension(file.Name, ModelExtension));
    plan.Models.push_back({file.Path, output + core::PathSeparator + folder});
  }
  return plan;
}

}  // namespace tarnwick::cli
