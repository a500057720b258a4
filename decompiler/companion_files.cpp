#include "decompiler/companion_files.h"

#include <algorithm>
#include <array>

#include "core/paths.h"

namespace tarnwick::decompiler {

namespace {

constexpr std::string_view VtxExtensions[] = {".dx80.vtx", ".vtx", ".dx90.vtx", ".sw.vtx"};

}  // namespace

std::optional<std::string> FindCompanion(JobContext& job, std::span<const std::string> paths) {
  for (const std::string& path : paths) {
    if (core::FileExists(path)) return path;
  }
  for (const std::string& path : paths) {
    if (auto found = core::FindIgnoringCase(path)) {
      job.Log("Using " + *found + " for " + std::string(core::LastComponent(path)) + "\r\n");
      return found;
    }
  }
  std::string names;
  for (const std::string& path : paths) {
    names += names.empty() ? "" : ", ";
    names += core::LastComponent(path);
  }
  const std::string_view folder = core::DirectoryWithSeparator(paths.front());
  job.Log("Found none of " + names + " in " + std::string(folder.empty() ? "." : folder) + "\r\n");
  return std::nullopt;
}

std::optional<std::string> FindVtxFile(JobContext& job, const std::string& modelPath) {
  const std::string stem = modelPath.substr(0, modelPath.size() - std::min<size_t>(4, modelPath.size()));
  std::array<std::string, std::size(VtxExtensions)> paths;
  for (size_t i = 0; i < paths.size(); ++i) paths[i] = stem + std::string(VtxExtensions[i]);
  return FindCompanion(job, paths);
}

void CheckChecksum(JobContext& job, const std::string& path, int32_t checksum) {
  if (checksum == job.Model.Header()->Checksum) return;
  job.Advise(path + " was not made together with " + job.Model.Mdl.Path() +
             " (they have different checksums); the meshes may be wrong");
}

}  // namespace tarnwick::decompiler
