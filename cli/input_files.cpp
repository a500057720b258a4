#include "cli/input_files.h"

#include <algorithm>
#include <filesystem>

#include "core/paths.h"

namespace tarnwick::cli {

namespace fs = std::filesystem;

namespace {

template <typename Iterator>
std::vector<fs::path> FilesOf(const fs::path& folder, std::string_view extension, std::string& problem) {
  std::vector<fs::path> files;
  std::error_code error;
  Iterator entries(folder, fs::directory_options::skip_permission_denied, error);
  for (; !error && entries != Iterator(); entries.increment(error)) {
    std::error_code ignored;
    const fs::path& path = entries->path();
    if (!core::EqualIgnoringCase(core::PathText(path.extension()), extension)) continue;
    if (entries->is_regular_file(ignored)) files.push_back(path);
  }
  if (error) problem = core::PathText(folder) + ": " + error.message();
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

InputFiles FindInputFiles(const std::vector<std::string>& inputs, std::string_view extension, bool recursive) {
  InputFiles found;
  for (const std::string& input : inputs) {
    const fs::path path = core::NativePath(input);
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) {
      found.Files.push_back({input, std::string(core::LastComponent(input))});
      continue;
    }
    std::string problem;
    const auto files = recursive ? FilesOf<fs::recursive_directory_iterator>(path, extension, problem)
                                 : FilesOf<fs::directory_iterator>(path, extension, problem);
    if (problem.empty() && files.empty()) {
      problem = input + ": the folder holds no " + std::string(extension) + " file" +
                (recursive ? "" : " (--recursive also looks into the folders below it)");
    }
    if (!problem.empty()) found.Problems.push_back(problem);
    for (const fs::path& file : files) {
      found.Files.push_back({core::PathText(file), core::PathText(file.lexically_relative(path))});
    }
  }
  return found;
}

std::string WithoutExtension(std::string name, std::string_view extension) {
  if (name.size() >= extension.size() &&
      core::EqualIgnoringCase(std::string_view(name).substr(name.size() - extension.size()), extension)) {
    name.resize(name.size() - extension.size());
  }
  return name;
}

std::string UniqueNames::Take(const std::string& name) {
  std::string taken = name;
  for (int number = 2; !m_taken.insert(core::LowerAscii(taken)).second; ++number) {
    taken = name + "_" + std::to_string(number);
  }
  return taken;
}

}  // namespace tarnwick::cli
