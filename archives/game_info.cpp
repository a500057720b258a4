#include "archives/game_info.h"

#include <filesystem>

#include "core/key_values.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace {

constexpr std::string_view GameInfoPath = "|gameinfo_path|";
constexpr std::string_view EnginePaths = "|all_source_engine_paths|";

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

/// Whether the words of a key, which `+` joins, tell of a place for ordinary files.
bool IsForContent(std::string_view key) {
  while (!key.empty()) {
    const size_t end = key.find('+');
    const std::string_view word = Trimmed(key.substr(0, end));
    if (core::EqualIgnoringCase(word, "game") || core::EqualIgnoringCase(word, "mod")) return true;
    key.remove_prefix(end == std::string_view::npos ? key.size() : end + 1);
  }
  return false;
}

bool StartsIgnoringCase(std::string_view text, std::string_view start) {
  return core::EqualIgnoringCase(text.substr(0, start.size()), start);
}

bool IsAbsolute(std::string_view path) {
  if (!path.empty() && (path.front() == '/' || path.front() == '\\')) return true;
  return core::NativePath(path).is_absolute();
}

std::string Joined(const std::string& folder, std::string_view path) {
  while (!path.empty() && (path.front() == '/' || path.front() == '\\')) path.remove_prefix(1);
  while (!path.empty() && (path.back() == '/' || path.back() == '\\')) path.remove_suffix(1);
  if (path.empty() || path == ".") return folder;
  const bool slash = folder.ends_with('/') || folder.ends_with('\\');
  return folder + (slash ? "" : std::string(1, core::PathSeparator)) + std::string(path);
}

/// The folder in which `folder` lies.
std::string Above(const std::string& folder) {
  std::error_code error;
  std::filesystem::path path = core::NativePath(folder);
  // "." and ".." tell the folder above only once they are taken out.
  if (path.is_relative()) path = std::filesystem::absolute(path, error);
  path = path.lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  return core::PathText(path.parent_path());
}

}  // namespace

std::optional<std::vector<SearchPath>> ReadSearchPaths(std::string_view text, const std::string& gameDirectory,
                                                       std::string& reason) {
  const core::KeyValues keys = core::ReadKeyValues(text);
  const core::KeyValue* list = keys.Find("GameInfo");
  if (list != nullptr) list = list->Find("FileSystem");
  if (list != nullptr) list = list->Find("SearchPaths");
  if (list == nullptr) {
    reason = keys.Error.empty() ? "it has no list GameInfo, FileSystem, SearchPaths" : keys.Error;
    return std::nullopt;
  }
  const std::string engine = Above(gameDirectory);
  std::vector<SearchPath> paths;
  for (const core::KeyValue& entry : list->Children) {
    if (entry.IsBlock || !IsForContent(entry.Key) || !core::ConditionHolds(entry.Condition)) continue;
    std::string_view value = Trimmed(entry.Value);
    SearchPath path;
    if (value.ends_with('*')) {
      path.What = SearchPath::Kind::AllBelow;
      value.remove_suffix(1);
    }
    if (StartsIgnoringCase(value, GameInfoPath)) {
      path.Path = Joined(gameDirectory, value.substr(GameInfoPath.size()));
    } else if (StartsIgnoringCase(value, EnginePaths)) {
      path.Path = Joined(engine, value.substr(EnginePaths.size()));
    } else {
      path.Path = IsAbsolute(value) ? std::string(value) : Joined(engine, value);
    }
    paths.push_back(std::move(path));
  }
  return paths;
}

}  // namespace tarnwick::archives
