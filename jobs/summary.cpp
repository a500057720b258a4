#include "jobs/summary.h"

#include <array>
#include <cstdio>
#include <map>

#include "core/byte_size.h"

namespace tarnwick::jobs {

namespace {

std::string SecondsText(double seconds) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.2f s", seconds);
  return text.data();
}

void AddCount(std::string& line, size_t count, const char* what) {
  if (count > 0) line += ", " + std::to_string(count) + what;
}

}  // namespace

std::vector<FailureGroup> GroupFailures(const JobResult& result) {
  std::map<std::string, size_t> counts;
  for (const ItemResult& item : result.Items) {
    if (item.Judged != Verdict::Failed) continue;
    const core::Trouble* error = item.First(core::Severity::Error);
    ++counts[error == nullptr ? "no reason was told" : error->SharedText()];
  }
  std::vector<FailureGroup> groups;
  groups.reserve(counts.size());
  for (const auto& [reason, count] : counts) groups.push_back({reason, count});
  return groups;
}

std::string SummaryLine(const JobResult& result, const std::string& item) {
  size_t files = 0;
  size_t withWarnings = 0;
  uint64_t bytes = 0;
  for (const ItemResult& each : result.Items) {
    files += each.Files.size();
    bytes += each.Bytes();
    if (each.Count(core::Severity::Warning) > 0) ++withWarnings;
  }
  std::string line = Counted(result.Items.size(), item);
  // A job that only looks writes none, nor does one that failed.
  if (files > 0) line += ", " + Counted(files, "file") + ", " + core::FormatByteSize(bytes);
  line += " in " + SecondsText(result.Seconds);
  AddCount(line, withWarnings, " with warnings");
  line += ", " + std::to_string(result.Count(Verdict::Failed)) + " failed";
  AddCount(line, result.Count(Verdict::Stopped), " stopped");
  AddCount(line, result.Count(Verdict::NotBegun), " not begun");
  return line;
}

std::string Counted(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace tarnwick::jobs
