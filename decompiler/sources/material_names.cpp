#include "decompiler/sources/material_names.h"

#include <set>
#include <string>

#include "core/paths.h"
#include "decompiler/sources/script_values.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Whether a model keeps the folders that materials of its meshes are typed with.
bool KeepsFolders(const JobContext& job) {
  const auto header = job.Model.Header();
  const auto folders =
      job.Model.View().Array<StudioOffset>(header->MaterialDirectoryOffset, header->MaterialDirectoryCount);
  if (!folders) return false;
  for (const auto folder : *folders) {
    const auto name = job.Model.Name(folder->Offset);
    if (name && name->empty()) return true;
  }
  return false;
}

/// Whether a line of a mesh file gives the name back.
bool IsGivenBack(std::string_view name, bool keepsFolders) {
  if (name.starts_with("//") || name.starts_with(' ') || name.starts_with('\t')) return false;
  if (name.find_first_of("\r\n:") != std::string_view::npos) return false;
  const bool isAbsolute = name.starts_with('/') || name.starts_with('\\');
  return !isAbsolute && (keepsFolders || name.find_first_of("/\\") == std::string_view::npos);
}

}  // namespace

void FindMaterialNames(JobContext& job) {
  const int32_t count = job.Model.Header()->TextureCount;
  const bool keepsFolders = KeepsFolders(job);
  std::set<std::string> taken;
  for (int32_t i = 0; i < count; ++i) {
    const auto name = TextureName(job.Model, i);
    if (!name || !job.Spend(RecordCost + 2 * static_cast<int64_t>(name->size()))) return;
    taken.insert(core::LowerAscii(*name));
  }
  std::set<std::string> met;
  for (int32_t i = 0; i < count; ++i) {
    const std::string name(TextureName(job.Model, i).value_or(""));
    if (met.insert(core::LowerAscii(name)).second && IsGivenBack(name, keepsFolders)) continue;
    const std::string wanted = "material" + std::to_string(i);
    std::string other = wanted;
    for (int number = 2; !taken.insert(other).second; ++number) other = wanted + "_" + std::to_string(number);
    job.MaterialNames.emplace(i, std::move(other));
  }
}

void WriteRenamedMaterials(JobContext& job) {
  for (const auto& [texture, name] : job.MaterialNames) {
    if (!job.ScriptWithinBounds()) return;
    job.Script().Text("$renamematerial \"" + name + "\" " +
                      QuotedMaterial(job, TextureName(job.Model, texture).value_or("")) + "\n");
  }
}

}  // namespace tarnwick::decompiler::sources
