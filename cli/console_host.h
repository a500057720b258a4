#pragma once

#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "cli/terminal.h"
#include "jobs/host.h"

namespace tarnwick::cli {

/// How a verb shows its job.
struct ConsoleStyle {
  std::string Item;      // what the verb calls an item: "model"
  bool Quiet = false;    // troubles only
  bool ShowsLog = true;  // the program's own lines, on standard error; of several items each whole, behind its end
  /// Where command lines and the tools' lines go as they come, of a job that does its items one after the other; the
  /// log then comes as it is told as well. Null: they are part of the log.
  std::ostream* ToolLines = nullptr;
  bool ShowsProgress = true;   // a bar at the bottom of a terminal, in place of the log of several items
  bool ResultsSayAll = false;  // the result line of an item tells its troubles, so nothing else need
  /// The line that standard output gets for an item that has ended or was not begun, or "" for none.
  std::function<std::string(const jobs::ItemResult&)> ResultLine;
};

/// The command line as the host of a job: results on standard output, the log, troubles and a summary on standard
/// error. Questions are answered as the job assumes.
class ConsoleHost : public jobs::Host {
 public:
  ConsoleHost(std::ostream& out, std::ostream& err, ConsoleStyle style);

  void On(const jobs::Event& event) override;
  bool Ask(const jobs::Question& question) override { return question.Assumed; }

 private:
  void OnTold(const jobs::Told& told);
  void OnItemFinished(const jobs::ItemFinished& finished);
  void OnFinished(const jobs::JobResult& result);
  void OnLine(const jobs::Line& line);
  void ToLog(size_t item, const std::string& text);
  void PrintVerdict(const jobs::ItemResult& result);
  void PrintResult(const jobs::ItemResult& result);
  void PrintTroubles(const jobs::ItemResult& result);

  std::ostream& m_out;
  std::ostream& m_err;
  const ConsoleStyle m_style;
  ProgressLine m_progress;
  size_t m_count = 0;
  size_t m_done = 0;
  bool m_lineIsOpen = false;             // the last of the tool's lines has no end yet
  std::map<size_t, std::string> m_logs;  // of the items that are at work, where there are several
};

/// The exit code of a verb whose job came to this.
[[nodiscard]] int ExitCodeOf(const jobs::JobResult& result);

/// The word of a verdict in JSON: "ok", "failed", "stopped", "not begun".
const char* OutcomeWord(jobs::Verdict verdict);

/// The files that were written, a line each without the last line end.
std::string FileLines(const jobs::ItemResult& result);

/// The troubles of one severity, a line each.
std::vector<std::string> TroubleLines(const jobs::ItemResult& result, core::Severity level);

}  // namespace tarnwick::cli
