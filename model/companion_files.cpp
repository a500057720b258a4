#include "model/companion_files.h"

#include <algorithm>
#include <array>
#include <span>

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

/// Whether the head of the .vtx file at `path` says that it was made with the reader's model.
bool IsMadeWithModel(const ModelReader& reader, const std::string& path) {
  VtxHeader header{};
  return reader.Files().ReadStart(path, std::as_writable_bytes(std::span(&header, 1))) &&
         header.Checksum == reader.Model.Header()->Checksum;
}

}  // namespace

std::optional<std::string> FindCompanion(ModelReader& reader, std::span<const std::string> paths) {
  for (const std::string& path : paths) {
    if (reader.Files().Holds(path)) return path;
  }
  // All that lies beside the model comes before what a game would find elsewhere.
  for (const auto find : {&core::FileSource::FindBeside, &core::FileSource::FindElsewhere}) {
    for (const std::string& path : paths) {
      if (auto found = (reader.Files().*find)(path)) {
        reader.Note(*found, "Using " + *found + " for " + std::string(core::LastComponent(path)));
        return found;
      }
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

std::optional<FoundFile> ReadMatchingVtxFile(ModelReader& reader, const std::string& modelPath, std::string& reason) {
  const auto paths = VtxPaths(modelPath);
  auto path = FindCompanion(reader, paths);
  if (!path) return std::nullopt;
  FoundFile first{*path, reader.Files().Read(*path, &reason)};
  const auto header = first.File ? first.File->View().At<VtxHeader>(0) : std::nullopt;
  if (header ? (*header)->Checksum == reader.Model.Header()->Checksum : IsMadeWithModel(reader, *path)) return first;
  for (const auto find : {&core::FileSource::FindBeside, &core::FileSource::FindElsewhere}) {
    for (const std::string& other : paths) {
      const auto found = (reader.Files().*find)(other);
      if (!found || !IsMadeWithModel(reader, *found)) continue;
      reader.Note(*path, *path + " was made with another model; " + *found + " was made with this one and is used");
      return FoundFile{*found, reader.Files().Read(*found, &reason)};
    }
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
