#include "project/source_files.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/paths.h"
#include "core/whole_path.h"
#include "project/qc_names.h"

namespace tarnwick::project {

namespace fs = std::filesystem;

namespace {

bool IsDrivePath(std::string_view path) {
  return path.size() > 1 && path[1] == ':';
}

bool StartsAtTheRoot(std::string_view path) {
  return path.starts_with('/') || path.starts_with('\\') || IsDrivePath(path);
}

/// Whether the compiler finds `path`, also without its extension, from `folder` on.
bool IsThere(const std::string& folder, const std::string& path) {
  if (IsDrivePath(path) && core::PathSeparator != '\\') return true;  // nobody knows here
  const std::string whole = StartsAtTheRoot(path) ? path : folder + path;
  return core::FindIgnoringCase(whole) || core::FindIgnoringCase(whole + ".smd");
}

}  // namespace

std::optional<std::string> ReferencePathOf(const ModelProject& project) {
  if (project.referenceSmd.empty() || StartsAtTheRoot(project.referenceSmd)) return project.referenceSmd;
  if (project.configFile.empty()) return std::nullopt;
  std::error_code error;
  const fs::path file = fs::absolute(core::NativePath(project.configFile), error);
  if (error) return std::nullopt;
  const std::string whole = core::PathBelow(core::PathText(file.parent_path()), project.referenceSmd);
  return core::PathText(core::NativePath(whole).lexically_normal());
}

std::vector<std::string> MissingSources(const ModelProject& project) {
  std::vector<std::string> warnings;
  const std::string reference = ReferencePathOf(project).value_or(project.referenceSmd);
  const std::string folder(core::DirectoryWithSeparator(reference));
  const auto look = [&](const std::string& what, const std::string& path) {
    if (path.empty() || IsThere(folder, path)) return;
    warnings.push_back(what + " " + path + " is not there");
  };
  look("the Reference SMD", reference);
  if (!project.useReferenceAsCollision) {
    look(IsCollisionScript(project.collisionFile) ? "the collision script" : "the Collision SMD",
         project.collisionFile);
  }
  for (const LodEntry& lod : project.Lods) look("the LOD SMD File", lod.smdFile);
  if (project.useReferenceAsSequence || project.propType == PropStatic) return warnings;
  for (const SequenceEntry& sequence : project.Sequences) {
    look("of the sequence \"" + sequence.name + "\" the Animation SMD", sequence.smdFile);
  }
  return warnings;
}

}  // namespace tarnwick::project
