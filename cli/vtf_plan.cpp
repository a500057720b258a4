#include "cli/vtf_plan.h"

#include <filesystem>

#include "core/paths.h"
#include "jobs/input_files.h"

namespace tarnwick::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view TextureExtension = ".vtf";
constexpr const char* DefaultFormat = "tga";

/// A texture whose images are named after `path`, which has no extension.
PlannedTexture PlanOne(const std::string& input, const fs::path& path, const std::string& format) {
  const fs::path folder = path.parent_path();
  return {input, folder.empty() ? "." : core::PathText(folder), core::PathText(path.filename()), format};
}

}  // namespace

VtfPlan PlanVtf(const std::vector<std::string>& inputs, const std::string& output, const std::string& format,
                bool recursive) {
  VtfPlan plan;
  std::error_code ignored;
  const fs::path target = core::NativePath(output);
  const std::string extension = core::PathText(target.extension());
  const bool oneFile = inputs.size() == 1 && !fs::is_directory(core::NativePath(inputs[0]), ignored);
  if (oneFile && extension.size() > 1 && format.empty() && !fs::is_directory(target, ignored)) {
    plan.Textures.push_back(PlanOne(inputs[0], fs::path(target).replace_extension(), extension.substr(1)));
    return plan;
  }
  jobs::InputFiles found = jobs::FindInputFiles(inputs, TextureExtension, recursive);
  for (core::Trouble& trouble : found.Troubles) plan.Problems.push_back(std::move(trouble.Text));
  jobs::UniqueNames names;
  for (const jobs::InputFile& file : found.Files) {
    const std::string name = names.Take(jobs::WithoutExtension(file.Name, TextureExtension));
    plan.Textures.push_back(
        PlanOne(file.Path, target / core::NativePath(name), format.empty() ? DefaultFormat : format));
  }
  return plan;
}

}  // namespace tarnwick::cli
