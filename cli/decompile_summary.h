#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "cli/decompile_batch.h"

namespace tarnwick::cli {

/// One line of JSON for a model; docs/command-line.md describes it.
std::string ModelJson(const ModelOutcome& outcome);

/// Why a model failed, without the names of its files, so that models that failed alike are counted together.
std::string FailureReason(const ModelOutcome& outcome);

/// Counts what was done, for the lines at the end of a run.
class DecompileSummary {
 public:
  void Add(const ModelOutcome& outcome);
  int FailedCount() const { return m_failed; }
  /// "12 models, 340 files, 12.3 MB in 1.25 s, 2 failed:" and a line for each reason.
  void Print(std::ostream& out, double seconds) const;

 private:
  int m_models = 0;
  int m_failed = 0;
  int m_warnings = 0;
  size_t m_files = 0;
  uint64_t m_bytes = 0;
  std::map<std::string, int> m_reasons;
};

}  // namespace tarnwick::cli
