#include "cli/decompile_plan.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "core/paths.h"

namespace tarnwick::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ModelExtension = ".mdl";

bool IsModelFile(const fs::path& path) {
  return core::EqualIgnoringCase(core::PathText(path.extension()), ModelExtension);
}

template <typename Iterator>
std::vector<fs::path> ModelsOf(const fs::path& folder, std::string& problem) {
  std::vector<fs::path> models;
  std::error_code error;
  Iterator entries(folder, fs::directory_options::skip_permission_denied, error);
  for (; !error && entries != Iterator(); entries.increment(error)) {
    std::error_code ignored;
    if (IsModelFile(entries->path()) && entries->is_regular_file(ignored)) models.push_back(entries->path());
  }
  if (error) problem = core::PathText(folder) + ": " + error.message();
  std::sort(models.begin(), models.end());
  return models;
}

std::string WithoutExtension(std::string name) {
  if (name.size() >= ModelExtension.size() &&
      core::EqualIgnoringCase(std::string_view(name).substr(name.size() - ModelExtension.size()), ModelExtension)) {
    name.resize(name.size() - ModelExtension.size());
  }
  return name;
}

/// Gives out folders below the output directory, each once.
class Folders {
 public:
  explicit Folders(std::string output) : m_output(std::move(output)) {}

  std::string Take(const std::string& name) {
    std::string folder = name;
    for (int number = 2; !m_taken.insert(core::LowerAscii(folder)).second; ++number) {
      folder = name + "_" + std::to_string(number);
    }
    return m_output + core::PathSeparator + folder;
  }

 private:
  std::string m_output;
  std::set<std::string> m_taken;
};

}  // namespace

DecompilePlan PlanDecompile(const std::vector<std::string>& inputs, const std::string& output, bool recursive) {
  DecompilePlan plan;
  std::error_code ignored;
  if (inputs.size() == 1 && !fs::is_directory(core::NativePath(inputs[0]), ignored)) {
    plan.Models.push_back({inputs[0], output});
    return plan;
  }
  Folders folders(output);
  for (const std::string& input : inputs) {
    const fs::path path = core::NativePath(input);
    if (!fs::is_directory(path, ignored)) {
      plan.Models.push_back({input, folders.Take(WithoutExtension(std::string(core::LastComponent(input))))});
      continue;
    }
    std::string problem;
    const auto models = recursive ? ModelsOf<fs::recursive_directory_iterator>(path, problem)
                                  : ModelsOf<fs::directory_iterator>(path, problem);
    if (problem.empty() && models.empty()) {
      problem = input + ": the folder holds no .mdl file" +
                (recursive ? "" : " (--recursive also looks into the folders below it)");
    }
    if (!problem.empty()) plan.Problems.push_back(problem);
    for (const fs::path& model : models) {
      const std::string name = core::PathText(model.lexically_relative(path));
      plan.Models.push_back({core::PathText(model), folders.Take(WithoutExtension(name))});
    }
  }
  return plan;
}

}  // namespace tarnwick::cli
