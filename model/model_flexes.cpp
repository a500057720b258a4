#include "model/model_flexes.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace tarnwick::model {

namespace {

/// Distances between vertex animations that are tried: from the ordinary one on, up to twice as much, by whole words.
constexpr int64_t SmallestVertAnim = sizeof(StudioVertAnim);
constexpr int64_t VertAnimStep = sizeof(int16_t);
constexpr size_t VertAnimSizes = SmallestVertAnim / VertAnimStep + 1;

/// Finds out how far vertex animations stand apart where the ordinary distance gives vertices that the mesh does not
/// have. The tables of a mesh's flexes follow one another, so the distances
/// between them tell: they are the counts times one size, up to the alignment of the tables.
class SizeFinder {
 public:
  SizeFinder() { m_fits.fill(true); }

  void AddMesh(const core::ImageView& mdl, const StudioMesh& mesh, const core::RecordArray<StudioFlex>& flexes) {
    std::vector<std::pair<int64_t, int64_t>> tables;
    for (const auto flex : flexes) {
      if (flex->VertAnimKind == VertAnimWrinkle || flex->VertAnimCount <= 0) continue;
      const int64_t offset = flex.Offset() + flex->VertAnimOffset;
      tables.emplace_back(offset, int64_t{flex->VertAnimCount});
      const auto anims = mdl.Array<StudioVertAnim>(offset, flex->VertAnimCount);
      for (int64_t i = 0; anims && !m_ordinaryFails && i < anims->Count(); ++i) {
        m_ordinaryFails = static_cast<uint16_t>((*anims)[i]->Vertex) >= mesh.VertexCount;
      }
    }
    std::sort(tables.begin(), tables.end());
    for (size_t i = 0; i + 1 < tables.size(); ++i) {
      for (size_t size = 0; size < m_fits.size(); ++size) {
        const int64_t free = tables[i + 1].first - tables[i].first - tables[i].second * SizeAt(size);
        m_fits[size] = m_fits[size] && free >= 0 && free < Alignment;
      }
    }
  }

  /// The first size that all meshes fit; the ordinary one where none does.
  int64_t Size() const {
    if (!m_ordinaryFails) return SmallestVertAnim;
    const auto fit = std::find(m_fits.begin(), m_fits.end(), true);
    return SizeAt(fit == m_fits.end() ? 0 : static_cast<size_t>(fit - m_fits.begin()));
  }

 private:
  static constexpr int64_t Alignment = 4;

  static constexpr int64_t SizeAt(size_t number) {
    return SmallestVertAnim + VertAnimStep * static_cast<int64_t>(number);
  }

  std::array<bool, VertAnimSizes> m_fits;
  bool m_ordinaryFails = false;
};

}  // namespace

std::optional<ModelFlexes> GatherFlexes(ModelReader& reader, const core::Record<StudioModel>& model,
                                        size_t descriptorCount) {
  const auto meshes = reader.Table<StudioMesh>("mesh table", model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return std::nullopt;
  ModelFlexes flexes{*meshes, {}};
  flexes.ByDescriptor.resize(descriptorCount);
  SizeFinder size;
  for (int64_t i = 0; i < meshes->Count(); ++i) {
    const auto mesh = (*meshes)[i];
    const auto table = reader.Table<StudioFlex>("flex table", mesh.Offset() + mesh->FlexOffset, mesh->FlexCount);
    if (!table || !reader.Spend(RecordCost * (table->Count() + 1))) return std::nullopt;
    size.AddMesh(reader.Model.View(), *mesh, *table);
    for (const auto flex : *table) {
      // A flex of a descriptor that the model does not have is named by nothing and left out.
      if (flex->FlexDesc < 0 || static_cast<size_t>(flex->FlexDesc) >= descriptorCount) continue;
      flexes.ByDescriptor[static_cast<size_t>(flex->FlexDesc)].push_back({i, flex});
    }
  }
  flexes.VertAnimSize = size.Size();
  if (flexes.VertAnimSize != SmallestVertAnim) {
    reader.Note(reader.Model.Mdl.Path(),
                "Reading vertex animations of " + std::to_string(flexes.VertAnimSize) + " bytes");
  }
  return flexes;
}

}  // namespace tarnwick::model
