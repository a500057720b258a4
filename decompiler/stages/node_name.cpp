#include "decompiler/stages/node_name.h"

#include <string>

namespace tarnwick::decompiler {

std::optional<std::string_view> NodeName(JobContext& job, const core::Record<model::StudioSeqDesc>& sequence,
                                         int32_t number) {
  const int64_t offset =
      job.Model.Header()->NodeNameOffset + (int64_t{number} - 1) * int64_t{sizeof(model::StudioOffset)};
  const auto entry = number > 0 ? job.Model.View().At<model::StudioOffset>(offset) : std::nullopt;
  const auto name = entry ? job.Model.Name((*entry)->Offset) : std::nullopt;
  if (!name) {
    job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(),
                "names transition node " + std::to_string(number) + ", which has no name in the file");
  }
  return name;
}

}  // namespace tarnwick::decompiler
