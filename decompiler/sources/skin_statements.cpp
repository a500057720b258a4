#include "decompiler/sources/skin_statements.h"

#include <algorithm>
#include <vector>

#include "decompiler/sources/script_values.h"

namespace tarnwick::decompiler::sources {

void WriteSkinStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const int64_t families = header->SkinFamilyCount;
  const int64_t references = header->SkinReferenceCount;
  if (families <= 1 || references <= 0) return;
  const auto skins = job.Table<StudioShort>("skin table", header->SkinOffset, references * families);
  if (!skins || !job.Spend(skins->Count() * RecordCost)) return;

  std::vector<int64_t> columns;
  for (int64_t column = 0; column < references; ++column) {
    bool differs = false;
    for (int64_t family = 1; family < families && !differs; ++family) {
      differs = (*skins)[family * references + column]->Value != (*skins)[column]->Value;
    }
    if (differs) columns.push_back(column);
  }
  // Families that are all alike are families all the same.
  if (columns.empty()) columns.push_back(0);

  job.Script().Text("$texturegroup \"skinfamilies\" {\n");
  for (int64_t family = 0; family < families && job.ScriptWithinBounds(); ++family) {
    std::string row = "  {";
    for (const int64_t column : columns) {
      const auto entry = (*skins)[family * references + column];
      auto name = TextureName(job.Model, entry->Value);
      if (!name) {
        job.Damaged(job.Model.Mdl.Path(), "skin table entry", entry.Offset(),
                    "names texture " + std::to_string(entry->Value) + ", which is not in the file");
        name = TextureName(job.Model, (*skins)[column]->Value).value_or("");
      }
      row += " " + Quoted(job, *name);
    }
    job.Script().Text(row + " }\n");
  }
  job.Script().Text("}\n");
}

}  // namespace tarnwick::decompiler::sources
