#include "cli/decompile_summary.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "core/byte_size.h"
#include "core/paths.h"

namespace tarnwick::cli {

namespace {

/// Replaces `path` where it stands as a path of its own (at the start or behind a blank or a quote, before `behind`)
/// by `word`, and with `wholeName` what follows it up to ": ", a quote or the end of the line.
void ReplacePath(std::string& text, const std::string& path, std::string_view behind, std::string_view word,
                 bool wholeName) {
  if (path.empty()) return;
  for (size_t at = text.find(path); at != std::string::npos; at = text.find(path, at + 1)) {
    const size_t next = at + path.size();
    const bool begins = at == 0 || text[at - 1] == ' ' || text[at - 1] == '"';
    if (!begins || next == text.size() || behind.find(text[next]) == std::string_view::npos) continue;
    const size_t end = wholeName ? std::min({text.find(": ", next), text.find('"', next), text.find('\n', next),
                                             text.find(" is not complete", next), text.size()})
                                 : next;
    text.replace(at, end - at, word);
  }
}

/// Each number becomes N: models that are damaged alike differ in them.
std::string WithoutNumbers(const std::string& text) {
  std::string plain;
  for (const char c : text) {
    const bool digit = c >= '0' && c <= '9';
    if (!digit) plain += c;
    if (digit && (plain.empty() || plain.back() != 'N')) plain += 'N';
  }
  return plain;
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
  model["warnings"] = outcome.Result.Warnings;
  model["errors"] = outcome.Result.Errors;
  // Names inside models are bytes in no known encoding; JSON takes UTF-8 only.
  return model.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string FailureReason(const ModelOutcome& outcome) {
  if (outcome.Result.Errors.empty()) return "it did not come to its end";
  std::string reason = outcome.Result.Errors.front();
  const std::string& path = outcome.Model.ModelPath;
  ReplacePath(reason, outcome.Model.OutputDirectory, "/\\", "FILE", true);
  ReplacePath(reason, path.substr(0, path.find_last_of('.')), ".", "MODEL", false);
  reason = WithoutNumbers(reason);
  for (char& c : reason) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  return reason.substr(0, reason.find_last_not_of(' ') + 1);
}

void DecompileSummary::Add(const ModelOutcome& outcome) {
  ++m_models;
  m_files += outcome.Result.Files.size();
  m_bytes += outcome.Bytes();
  if (!outcome.Result.Warnings.empty()) ++m_warnings;
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
