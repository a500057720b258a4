#include "jobs/input_files.h"

#include <algorithm>
#include <filesystem>

#include "core/paths.h"

namespace tarnwick::jobs {

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

/// Whether `name`, as the system gave it, holds a backslash that is no separator there. It would be opened as a path,
/// and lead out of the folder of inputs and that of outputs.
bool HoldsForeignSeparator(std::string_view name) {
  return fs::path::preferred_separator != '\\' && name.find('\\') != std::string_view::npos;
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
    if (!problem.empty()) {
      found.Troubles.push_back({.Kind = core::TroubleKind::Unreadable, .File = input, .Text = problem});
    } else if (files.empty()) {
      const std::string text = input + ": the folder holds no " + std::string(extension) + " file" +
                               (recursive ? "" : " (those below it were not looked into)");
      found.Troubles.push_back({.Kind = core::TroubleKind::Missing, .File = input, .Text = text});
    }
    for (const fs::path& file : files) {
      const std::string name = core::PathText(file.lexically_relative(path));
      if (HoldsForeignSeparator(name)) {
        found.Troubles.push_back(
            {.Kind = core::TroubleKind::Refused,
             .File = core::PathText(file),
             .Text = core::PathText(file) + ": a name with a backslash would be taken for a path"});
        continue;
      }
      found.Files.push_back({core::PathText(file), name});
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

}  // namespace tarnwick::jobs
