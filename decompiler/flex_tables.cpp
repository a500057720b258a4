#include "decompiler/flex_tables.h"

namespace tarnwick::decompiler {

std::optional<FlexTables> MakeFlexTables(JobContext& job) {
  const auto header = job.Model.Header();
  const auto descriptors =
      job.Table<StudioFlexDesc>("flex descriptor table", header->FlexDescOffset, header->FlexDescCount);
  if (!descriptors) return std::nullopt;
  FlexTables tables;
  for (const auto descriptor : *descriptors) {
    const auto name = job.NameOf("flex descriptor name", descriptor, descriptor->NameOffset);
    if (!name) return std::nullopt;
    tables.Names.push_back(*name);
  }
  tables.Frame.resize(tables.Names.size());
  tables.Used.resize(tables.Names.size());
  return tables;
}

std::optional<ModelFlexes> GatherFlexes(JobContext& job, const core::Record<StudioModel>& model,
                                        size_t descriptorCount) {
  const auto meshes = job.Table<StudioMesh>("mesh table", model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return std::nullopt;
  ModelFlexes flexes{*meshes, {}};
  flexes.ByDescriptor.resize(descriptorCount);
  for (int64_t i = 0; i < meshes->Count(); ++i) {
    const auto mesh = (*meshes)[i];
    const auto table = job.Table<StudioFlex>("flex table", mesh.Offset() + mesh->FlexOffset, mesh->FlexCount);
    if (!table || !job.Spend(RecordCost * (table->Count() + 1))) return std::nullopt;
    for (const auto flex : *table) {
      // A flex of a descriptor that the model does not have is named by nothing and left out.
      if (flex->FlexDesc < 0 || static_cast<size_t>(flex->FlexDesc) >= descriptorCount) continue;
      flexes.ByDescriptor[static_cast<size_t>(flex->FlexDesc)].push_back({i, flex});
    }
  }
  return flexes;
}

}  // namespace tarnwick::decompiler
