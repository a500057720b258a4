#pragma once

#include <string>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

/// The weights that sequences give to bones, each distinct list once. A list of ones alone is none.
class WeightLists {
 public:
  /// Writes a $weightlist with every bone for each distinct list of `sequences`.
  void Write(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences);
  /// The name of the list of sequence `number`; empty for none.
  [[nodiscard]] const std::string& NameOf(int64_t number) const { return m_names[static_cast<size_t>(number)]; }

 private:
  std::vector<std::string> m_names;  // of each sequence
};

}  // namespace tarnwick::decompiler::sources
