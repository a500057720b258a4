#pragma once

#include <string>
#include <vector>

#include "jobs/result.h"

namespace tarnwick::jobs {

/// Items that failed for one reason.
struct FailureGroup {
  std::string Reason;  // of the first error of each, without names and numbers
  size_t Count = 0;
  bool operator==(const FailureGroup&) const = default;
};

/// The failed items by their reason, in the order of the reasons' texts.
std::vector<FailureGroup> GroupFailures(const JobResult& result);

/// What was done, in one line; `item` is what the job calls an item, such as "model":
/// "12 models, 340 files, 12.3 MB in 1.25 s, 1 with warnings, 2 failed, 3 not begun"; without files where none were
/// written.
std::string SummaryLine(const JobResult& result, const std::string& item);

/// `count` of `noun`: "1 file", "2 files".
std::string Counted(size_t count, const std::string& noun);

}  // namespace tarnwick::jobs
