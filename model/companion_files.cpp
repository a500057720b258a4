#include "model/companion_files.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "core/paths.h"
#include "model/vtx_records.h"

namespace tarnwick::model {

namespace {

constexpr std::string_view VtxExtensions[] = {".dx80.vtx", ".vtx", ".dx90.vtx", ".sw.vtx"};

std::array<std::string, std::size(VtxExtensions)> VtxPaths(const std::string& modelPath) {
  const std::string stem = modelPath.substr(0, modelPath.size() - std::min<size_t>(4, modelPath.size()));
  std::array<std::string, std::size(VtxExtensions)> paths;
  for (size_t i = 0; i < paths.size(); ++i) paths[i] = stem + std::string(VtxExtensions[i]);
  return paths;
}

/// The checksum in the head of the .vtx file at `path`; nothing if it has no head.
std::optional<int32_t> ReadVtxChecksum(const std::string& path) {
  VtxHeader header{};
  std::ifstream file(core::NativePath(path), std::ios::binary);
  file.read(reinterpret_cast<char*>(&header), sizeof header);
  return file ? std::optional(int32_t{header.Checksum}) : std::nullopt;
}

}  // namespace

std::optional<std::string> FindCompanion(ModelReader& reader, std::span<const std::string> paths) {
  for (const std::string& path : paths) {
    if (core::FileExists(path)) return path;
  }
  for (const std::string& path : paths) {
    if (auto found = core::FindIgnoringCase(path)) {
      reader.Note(*found, "Using " + *found + " for " + std::string(core::LastComponent(path)));
      return found;
    }
  }
  std::string names;
  for (const std::string& path : paths) {
    names += names.empty() ? "" : ", ";
    names += core::LastComponent(path);
  }
  const std::string_view folder = core::DirectoryWithSeparator(paths.front());
  reader.Note(paths.front(), "Found none of " + names + " in " + std::string(folder.empty() ? "." : folder));
  return std::nullopt;
}

std::optional<std::string> FindVtxFile(ModelReader& reader, const std::string& modelPath) {
  return FindCompanion(reader, VtxPaths(modelPath));
}

std::optional<std::string> FindMatchingVtxFile(ModelReader& reader, const std::string& modelPath) {
  const auto paths = VtxPaths(modelPath);
  const auto first = FindCompanion(reader, paths);
  if (!first || ReadVtxChecksum(*first) == reader.Model.Header()->Checksum) return first;
  for (const std::string& path : paths) {
    const auto found = core::FileExists(path) ? path : core::FindIgnoringCase(path);
    if (!found || ReadVtxChecksum(*found) != reader.Model.Header()->Checksum) continue;
    reader.Note(*first, *first + " was made with another model; " + *found + " was made with this one and is used");
    return found;
  }
  return first;
}

void CheckChecksum(ModelReader& reader, const std::string& path, int32_t checksum) {
  if (checksum == reader.Model.Header()->Checksum) return;
  reader.Tell({core::Severity::Warning,
               core::TroubleKind::Mismatch,
               path,
               std::nullopt,
               path + " was not made together with " + reader.Model.Mdl.Path() +
                   " (they have different checksums); the meshes may be wrong",
               {}});
}

}  // namespace tarnwick::model
