#include "cli/decompile_summary.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/terminal.h"
#include "core/byte_size.h"

namespace tarnwick::cli {

namespace {

std::vector<std::string> TextsOf(const ModelOutcome& outcome, core::Severity level) {
  std::vector<std::string> texts;
  for (const core::Trouble& trouble : outcome.Result.Told(level)) texts.push_back(LineOf(trouble));
  return texts;
}

std::string SecondsText(double seconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f s", seconds);
  return text;
}

}  // namespace

std::string ModelJson(const ModelOutcome& outcome) {
  nlohmann::ordered_json model;
  model["model"] = outcome.Model.ModelPath;
  model["outcome"] = outcome.Result.Succeeded() ? "ok" : "failed";
  model["output"] = outcome.Model.OutputDirectory;
  model["files"] = nlohmann::ordered_json::array();
  for (const decompiler::WrittenFile& file : outcome.Result.Files) {
    model["files"].push_back({{"path", file.Path}, {"bytes", file.Size}});
  }
  model["bytes"] = outcome.Bytes();
  model["seconds"] = outcome.Seconds;
  model["warnings"] = TextsOf(outcome, core::Severity::Warning);
  model["errors"] = TextsOf(outcome, core::Severity::Error);
  // Names inside models are bytes in no known encoding; JSON takes UTF-8 only.
  return model.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string FailureReason(const ModelOutcome& outcome) {
  const auto errors = outcome.Result.Told(core::Severity::Error);
  return errors.empty() ? "it did not come to its end" : OneLine(errors.front().SharedText());
}

void DecompileSummary::Add(const ModelOutcome& outcome) {
  ++m_models;
  m_files += outcome.Result.Files.size();
  m_bytes += outcome.Bytes();
  if (!outcome.Result.Told(core::Severity::Warning).empty()) ++m_warnings;
  if (outcome.Result.Succeeded()) return;
  ++m_failed;
  ++m_reasons[FailureReason(outcome)];
}

void DecompileSummary::Print(std::ostream& out, double seconds) const {
  out << m_models << (m_models == 1 ? " model, " : " models, ") << m_files << (m_files == 1 ? " file, " : " files, ")
      << core::FormatByteSize(m_bytes) << " in " << SecondsText(seconds);
  if (m_warnings > 0) out << ", " << m_warnings << " with warnings";
  out << ", " << m_failed << " failed" << (m_failed > 0 ? ":" : "") << '\n';
  for (const auto& [reason, count] : m_reasons) out << "  " << count << " x " << reason << '\n';
}

}  // namespace tarnwick::cli
