#include "pages/recent_paths.h"

#include <algorithm>

namespace tarnwick::pages {

std::vector<std::string> RecentPaths(const core::AppSettings& settings, const core::TextSetting& value) {
  const std::string kept = value.Read(settings);
  std::vector<std::string> paths;
  for (size_t begin = 0; begin < kept.size();) {
    const size_t end = std::min(kept.find('\n', begin), kept.size());
    if (end > begin) paths.push_back(kept.substr(begin, end - begin));
    begin = end + 1;
  }
  return paths;
}

void RememberPath(core::AppSettings& settings, const core::TextSetting& value, std::string_view path) {
  if (path.empty() || path.find('\n') != std::string_view::npos) return;
  std::vector<std::string> paths = RecentPaths(settings, value);
  if (!paths.empty() && paths.front() == path) return;
  std::erase(paths, path);
  paths.insert(paths.begin(), std::string(path));
  if (paths.size() > RecentPathLimit) paths.resize(RecentPathLimit);
  std::string kept;
  for (const std::string& each : paths) kept += each + '\n';
  value.Write(settings, kept);
}

}  // namespace tarnwick::pages
