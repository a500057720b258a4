#include "decompiler/plain/flex_tables.h"

#include "model/face_records.h"

namespace tarnwick::decompiler::plain {

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

}  // namespace tarnwick::decompiler::plain
