#include "view/materials/material_files.h"

#include <algorithm>
#include <filesystem>

#include "archives/archive_name.h"
#include "archives/folded_text.h"
#include "core/paths.h"

namespace tarnwick::view {

namespace fs = std::filesystem;

namespace {

std::string Joined(const std::string& place, const std::string& name) {
  if (archives::HasArchiveExtension(place)) return place + ":" + name;
  const bool slash = place.ends_with('/') || place.ends_with('\\');
  return place + (slash ? "" : std::string(1, core::PathSeparator)) + name;
}

/// The folder above the last one called `models` in the path of a file; "" if there is none.
fs::path AboveModels(fs::path folder) {
  while (folder.has_relative_path()) {
    const fs::path above = folder.parent_path();
    if (core::EqualIgnoringCase(core::PathText(folder.filename()), "models")) return above;
    if (above == folder) break;
    folder = above;
  }
  return {};
}

bool IsOnDisk(const std::string& name) {
  return archives::ReadContentName(name).Where == archives::ContentName::Place::Disk;
}

}  // namespace

GameMaterials::GameMaterials(const std::string& gameDirectory, core::TroubleSink& sink) {
  if (gameDirectory.empty()) return;
  std::string reason;
  m_files = archives::GameFiles::Open(gameDirectory, sink, reason);
  if (m_files != nullptr) return;
  std::error_code error;
  const bool there = fs::is_directory(core::NativePath(gameDirectory), error);
  sink.Tell({.Level = core::Severity::Warning,
             .Kind = core::TroubleKind::Missing,
             .File = gameDirectory,
             .Text = there ? reason + "; the game's folder alone is searched for materials"
                           : "There is no game directory " + gameDirectory});
  m_files = archives::GameFiles::Open(std::vector<archives::SearchPath>{{.Path = gameDirectory}}, sink);
}

std::shared_ptr<const archives::LooseFolder> GameMaterials::Folder(const std::string& path) const {
  const std::lock_guard lock(m_lock);
  std::shared_ptr<archives::LooseFolder>& folder = m_folders[path];
  if (folder == nullptr) folder = std::make_shared<archives::LooseFolder>(path);
  return folder;
}

void GameMaterials::Refresh() {
  if (m_files != nullptr) m_files->Refresh();
  const std::lock_guard lock(m_lock);
  for (const auto& [path, folder] : m_folders) folder->Refresh();
}

MaterialFiles::MaterialFiles(const GameMaterials& game, const std::string& modelPath) : m_game(game) {
  if (modelPath.empty()) return;
  std::error_code error;
  const fs::path model = fs::absolute(core::NativePath(modelPath), error).lexically_normal();
  if (error) return;
  const auto add = [&](const fs::path& folder) {
    const auto place = game.Folder(core::PathText(folder));
    if (std::find(m_folders.begin(), m_folders.end(), place) == m_folders.end()) m_folders.push_back(place);
  };
  const fs::path above = AboveModels(model.parent_path());
  if (!above.empty()) add(above);
  add(model.parent_path());
}

MaterialFiles::MaterialFiles(const GameMaterials& game, const archives::ContentFiles& content, std::string modelName)
    : MaterialFiles(game, IsOnDisk(modelName) ? modelName : std::string()) {
  if (IsOnDisk(modelName)) return;
  m_content = &content;
  m_modelName = std::move(modelName);
}

MaterialFile MaterialFiles::Read(const std::string& name) const {
  MaterialFile result;
  const std::string plain = archives::PlainName("materials/" + name);
  const auto take = [&](std::optional<core::FileImage> image, const std::string& path) {
    result.Image = std::move(image);
    if (!result.Image) result.Tried.push_back(path);
  };
  if (const archives::GameFiles* files = m_game.Files()) {
    if (const auto found = files->Find(plain)) {
      take(found->InArchive != nullptr ? found->InArchive->Read(found->Number, result.Reason)
                                       : core::FileImage::Read(found->Name, &result.Reason),
           found->Name);
      return result;
    }
    for (const std::string& place : files->Places()) result.Tried.push_back(Joined(place, plain));
  }
  for (const auto& folder : m_folders) {
    if (const auto path = folder->Find(plain)) {
      take(core::FileImage::Read(*path, &result.Reason), *path);
      return result;
    }
    result.Tried.push_back(Joined(folder->Path(), plain));
  }
  if (m_content != nullptr) {
    if (const auto found = m_content->FindGameFile(m_modelName, plain)) {
      take(m_content->Read(*found, &result.Reason), *found);
      return result;
    }
    if (const std::string places = m_content->PlacesFor(m_modelName); !places.empty()) result.Tried.push_back(places);
  }
  result.Reason = "it was not found";
  return result;
}

}  // namespace tarnwick::view
