#include "decompiler/sources/weight_lists.h"

#include <algorithm>
#include <map>

#include "decompiler/sources/script_values.h"

namespace tarnwick::decompiler::sources {

namespace {

/// An entry of a weight list.
#pragma pack(push, 1)
struct StoredWeight {
  float Value;
};
#pragma pack(pop)

}  // namespace

void WeightLists::Write(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences) {
  m_names.assign(static_cast<size_t>(sequences.Count()), {});
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return;
  std::map<std::vector<float>, std::string> lists;
  for (int64_t i = 0; i < sequences.Count(); ++i) {
    const auto sequence = sequences[i];
    if (sequence->WeightOffset == 0 || (sequence->Flags & SequenceFlagDeclared) != 0) continue;
    if (!job.Spend(skeleton->Count() * int64_t{sizeof(float)} + RecordCost)) return;
    const auto stored =
        job.Table<StoredWeight>("weight list", sequence.Offset() + sequence->WeightOffset, skeleton->Count());
    if (!stored) continue;
    std::vector<float> weights;
    for (const auto weight : *stored) weights.push_back(float{weight->Value});  // a copy: a record may lie at any byte
    if (std::all_of(weights.begin(), weights.end(), [](float weight) { return weight == 1; })) continue;
    const auto [list, added] = lists.try_emplace(weights, "weights_" + std::to_string(lists.size() + 1));
    m_names[static_cast<size_t>(i)] = list->second;
    if (!added) continue;
    std::string text = "$weightlist \"" + list->second + "\" {\n";
    for (size_t bone = 0; bone < weights.size(); ++bone) {
      text += "  " + Quoted(job, skeleton->Names[bone]) + " " + Number(job, weights[bone]) + "\n";
    }
    job.Script().Text(text + "}\n");
    if (!job.ScriptWithinBounds()) return;
  }
}

}  // namespace tarnwick::decompiler::sources
