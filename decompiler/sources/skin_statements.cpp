#include "decompiler/sources/skin_statements.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "decompiler/sources/script_values.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Tables with more columns than this are written in the order in which they stand.
constexpr size_t MostOrderedColumns = 256;

using Skins = core::RecordArray<StudioShort>;

/// The textures that meshes show.
std::set<int32_t> TexturesOfMeshes(JobContext& job) {
  std::set<int32_t> textures;
  const auto header = job.Model.Header();
  const core::ImageView view = job.Model.View();
  const auto parts = view.Array<StudioBodyPart>(header->BodyPartOffset, header->BodyPartCount);
  if (!parts || !job.Spend(parts->Count() * RecordCost)) return textures;
  for (const auto part : *parts) {
    const auto models = view.Array<StudioModel>(part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models || !job.Spend(models->Count() * RecordCost)) continue;
    for (const auto model : *models) {
      const auto meshes = view.Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
      if (!meshes || !job.Spend(meshes->Count() * RecordCost)) continue;
      for (const auto mesh : *meshes) textures.insert(+mesh->Material);
    }
  }
  return textures;
}

/// The columns in which some family differs from the first, and those of textures that are in the model for no other
/// reason than that they stand in its table.
std::vector<int64_t> ColumnsToTell(const Skins& skins, int64_t families, int64_t references,
                                   const std::set<int32_t>& shown) {
  std::vector<int64_t> columns;
  std::set<int32_t> told = shown;
  const auto differs = [&](int64_t column) {
    for (int64_t family = 1; family < families; ++family) {
      if (skins[family * references + column]->Value != skins[column]->Value) return true;
    }
    return false;
  };
  for (int64_t column = 0; column < references; ++column) {
    if (!differs(column)) continue;
    columns.push_back(column);
    for (int64_t family = 0; family < families; ++family) told.insert(skins[family * references + column]->Value);
  }
  for (int64_t column = 0; column < references; ++column) {
    if (told.insert(skins[column]->Value).second) columns.push_back(column);
  }
  std::sort(columns.begin(), columns.end());
  // Families that are all alike are families all the same.
  if (columns.empty() && families > 1) columns.push_back(0);
  return columns;
}

/// A compile numbers the textures that no mesh shows as it meets them, row by row. The columns in an order in which
/// that gives the numbers that they have, as far as one does.
std::vector<int64_t> InOrderOfTextures(const Skins& skins, int64_t families, int64_t references,
                                       std::set<int32_t> known, std::vector<int64_t> columns) {
  if (columns.size() > MostOrderedColumns) return columns;
  std::map<int64_t, std::set<int64_t>> ahead;  // of each column
  for (int64_t family = 0; family < families; ++family) {
    std::map<int32_t, int64_t> met;
    for (const int64_t column : columns) {
      const int32_t texture = skins[family * references + column]->Value;
      if (!known.contains(texture)) met.try_emplace(texture, column);
    }
    std::optional<int64_t> before;
    for (const auto& [texture, column] : met) {
      if (before && *before != column) ahead[column].insert(*before);
      before = column;
      known.insert(texture);
    }
  }
  std::vector<int64_t> ordered;
  while (!columns.empty()) {
    auto next = std::ranges::find_if(columns, [&](int64_t column) {
      return std::ranges::none_of(columns, [&](int64_t other) { return ahead[column].contains(other); });
    });
    if (next == columns.end()) next = columns.begin();  // they wait for each other
    ordered.push_back(*next);
    columns.erase(next);
  }
  return ordered;
}

/// The textures that no mesh shows, in the order of the file, if a compile of the columns would number them otherwise.
std::vector<int32_t> TexturesToSayAhead(const Skins& skins, int64_t families, int64_t references,
                                        const std::set<int32_t>& shown, const std::vector<int64_t>& columns) {
  std::vector<int32_t> met;
  std::set<int32_t> known = shown;
  for (int64_t family = 0; family < families; ++family) {
    for (const int64_t column : columns) {
      const int32_t texture = skins[family * references + column]->Value;
      if (known.insert(texture).second) met.push_back(texture);
    }
  }
  if (std::ranges::is_sorted(met)) return {};
  std::ranges::sort(met);
  return met;
}

void CountTexturesOfNoUse(JobContext& job, const Skins& skins, std::set<int32_t> used) {
  for (const auto entry : skins) used.insert(entry->Value);
  const int32_t textures = job.Model.Header()->TextureCount;
  const auto held = std::ranges::count_if(used, [&](int32_t texture) { return texture >= 0 && texture < textures; });
  job.Lose("textures that no mesh and no skin shows", textures - held);
}

}  // namespace

void WriteSkinStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const int64_t families = header->SkinFamilyCount;
  const int64_t references = header->SkinReferenceCount;
  if (families <= 0 || references <= 0) return;
  const auto skins = job.Table<StudioShort>("skin table", header->SkinOffset, references * families);
  if (!skins || !job.Spend(skins->Count() * RecordCost)) return;

  const std::set<int32_t> shown = TexturesOfMeshes(job);
  CountTexturesOfNoUse(job, *skins, shown);
  const std::vector<int64_t> columns =
      InOrderOfTextures(*skins, families, references, shown, ColumnsToTell(*skins, families, references, shown));
  if (columns.empty()) return;

  // A group of one row makes no skin, and all the same its names become textures.
  std::string ahead;
  for (const int32_t texture : TexturesToSayAhead(*skins, families, references, shown, columns)) {
    if (const auto name = job.MaterialName(texture)) ahead += " " + QuotedMaterial(job, *name);
  }
  if (!ahead.empty()) job.Script().Text("$texturegroup \"textures\" {\n  {" + ahead + " }\n}\n");
  job.Script().Text("$texturegroup \"skinfamilies\" {\n");
  for (int64_t family = 0; family < families && job.ScriptWithinBounds(); ++family) {
    std::string row = "  {";
    for (const int64_t column : columns) {
      const auto entry = (*skins)[family * references + column];
      auto name = job.MaterialName(entry->Value);
      if (!name) {
        job.Damaged(job.Model.Mdl.Path(), "skin table entry", entry.Offset(),
                    "names texture " + std::to_string(entry->Value) + ", which is not in the file");
        name = job.MaterialName((*skins)[column]->Value).value_or("");
      }
      row += " " + QuotedMaterial(job, *name);
    }
    job.Script().Text(row + " }\n");
  }
  job.Script().Text("}\n");
}

}  // namespace tarnwick::decompiler::sources
