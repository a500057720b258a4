#include "jobs/result.h"

#include <algorithm>

namespace tarnwick::jobs {

size_t ItemResult::Count(core::Severity level) const {
  const size_t more =
      level == core::Severity::Error ? MoreErrors : (level == core::Severity::Warning ? MoreWarnings : 0);
  return more +
         static_cast<size_t>(std::count_if(Troubles.begin(), Troubles.end(),
                                           [level](const core::Trouble& trouble) { return trouble.Level == level; }));
}

const core::Trouble* ItemResult::First(core::Severity level) const {
  const auto found = std::find_if(Troubles.begin(), Troubles.end(),
                                  [level](const core::Trouble& trouble) { return trouble.Level == level; });
  return found == Troubles.end() ? nullptr : &*found;
}

uint64_t ItemResult::Bytes() const {
  uint64_t bytes = 0;
  for (const core::WrittenFile& file : Files) bytes += file.Size;
  return bytes;
}

bool JobResult::Succeeded() const {
  return Count(Verdict::Succeeded) == Items.size() &&
         std::none_of(Troubles.begin(), Troubles.end(),
                      [](const core::Trouble& trouble) { return trouble.Level == core::Severity::Error; });
}

size_t JobResult::Count(Verdict verdict) const {
  return static_cast<size_t>(
      std::count_if(Items.begin(), Items.end(), [verdict](const ItemResult& item) { return item.Judged == verdict; }));
}

}  // namespace tarnwick::jobs
