#include "cli/console_host.h"

#include <utility>
#include <variant>
#include <vector>

#include "cli/invocation.h"
#include "jobs/summary.h"

namespace tarnwick::cli {

namespace {

/// A trouble in a line. A warning without a caption says that it is one, unless it is in a tool's own words.
std::string TroubleLine(const core::Trouble& trouble) {
  const bool isBare = trouble.Level == core::Severity::Warning && trouble.Caption.empty();
  return (isBare && trouble.Kind != core::TroubleKind::Tool ? "Warning: " : "") + LineOf(trouble);
}

}  // namespace

ConsoleHost::ConsoleHost(std::ostream& out, std::ostream& err, ConsoleStyle style)
    : m_out(out),
      m_err(err),
      m_style(std::move(style)),
      m_progress(err, m_style.ShowsProgress && !m_style.Quiet && ErrorIsTerminal()) {}

void ConsoleHost::On(const jobs::Event& event) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Started& started) { m_count = started.Count; },
                 [this](const jobs::Line& line) { OnLine(line); },
                 [this](const jobs::Told& told) { OnTold(told); },
                 [this](const jobs::ItemFinished& finished) { OnItemFinished(finished); },
                 [this](const jobs::Finished& finished) { OnFinished(finished.Result); },
                 [](const auto&) {},
             },
             event);
}

void ConsoleHost::OnTold(const jobs::Told& told) {
  if (told.Item == jobs::NoItem) {
    m_err << (told.Trouble.Level == core::Severity::Error ? "Error: " : "Warning: ") << LineOf(told.Trouble) << '\n';
  } else if (!told.Trouble.Caption.empty()) {  // the log has a line of every other
    ToLog(told.Item, LineOf(told.Trouble) + '\n');
  }
}

void ConsoleHost::OnLine(const jobs::Line& line) {
  if (m_style.Quiet) return;
  if (m_style.ToolLines == nullptr || line.Source == jobs::LineSource::Log)
    return ToLog(line.Item, PlainLines(line.Text));
  if (line.Text.empty()) return;
  *m_style.ToolLines << PlainLines(line.Text) << std::flush;
  m_lineIsOpen = line.Text.back() != '\n';
}

void ConsoleHost::ToLog(size_t item, const std::string& text) {
  if (m_style.Quiet || !m_style.ShowsLog) return;
  if (m_count == 1 || m_style.ToolLines != nullptr) {
    m_err << text << std::flush;
  } else {
    m_logs[item] += text;
  }
}

void ConsoleHost::PrintTroubles(const jobs::ItemResult& result) {
  if (m_style.ResultsSayAll) return;
  for (const core::Trouble& trouble : result.Troubles) {
    m_err << result.Input << ": " << TroubleLine(trouble) << '\n';
  }
  if (result.MoreErrors > 0) m_err << result.Input << ": " << jobs::Counted(result.MoreErrors, "more error") << '\n';
  if (result.MoreWarnings > 0) {
    m_err << result.Input << ": " << jobs::Counted(result.MoreWarnings, "more warning") << '\n';
  }
}

void ConsoleHost::PrintResult(const jobs::ItemResult& result) {
  if (const std::string line = m_style.ResultLine(result); !line.empty()) m_out << line << std::endl;
}

void ConsoleHost::PrintVerdict(const jobs::ItemResult& result) {
  if (std::exchange(m_lineIsOpen, false)) *m_style.ToolLines << std::endl;
  if (result.Judged == jobs::Verdict::Stopped) {
    m_err << result.Input << ": stopped\n";
  } else if (const core::Trouble* error = result.First(core::Severity::Error)) {
    m_err << result.Input << ": Error: " << LineOf(*error) << '\n';
  } else if (m_count > 1 && result.Succeeded()) {
    m_err << result.Input << " -> " << (result.Target.empty() ? "unknown" : result.Target) << '\n';
  }
}

void ConsoleHost::OnItemFinished(const jobs::ItemFinished& finished) {
  const bool several = m_count > 1;
  m_progress.Clear();
  if (m_style.Quiet || !m_style.ShowsLog || (several && m_progress.IsShown())) {
    PrintTroubles(finished.Result);
  } else if (several) {
    m_err << m_logs[finished.Item];
  }
  m_logs.erase(finished.Item);
  if (m_style.ToolLines != nullptr && !m_style.Quiet) PrintVerdict(finished.Result);
  PrintResult(finished.Result);
  if (several) m_progress.Show(++m_done, m_count, finished.Result.Input);
}

void ConsoleHost::OnFinished(const jobs::JobResult& result) {
  m_progress.Clear();
  for (const jobs::ItemResult& item : result.Items) {
    if (item.Judged == jobs::Verdict::NotBegun) PrintResult(item);
  }
  if (m_style.Quiet) return;
  const auto groups = jobs::GroupFailures(result);
  m_err << jobs::SummaryLine(result, m_style.Item) << (groups.empty() ? "" : ":") << '\n';
  for (const jobs::FailureGroup& group : groups) m_err << "  " << group.Count << " x " << OneLine(group.Reason) << '\n';
}

int ExitCodeOf(const jobs::JobResult& result) {
  return result.Succeeded() ? ExitSuccess : ExitFailure;
}

const char* OutcomeWord(jobs::Verdict verdict) {
  switch (verdict) {
    case jobs::Verdict::Succeeded:
      return "ok";
    case jobs::Verdict::Stopped:
      return "stopped";
    case jobs::Verdict::NotBegun:
      return "not begun";
    case jobs::Verdict::Failed:
      break;
  }
  return "failed";
}

std::string FileLines(const jobs::ItemResult& result) {
  std::string lines;
  for (const core::WrittenFile& file : result.Files) lines += (lines.empty() ? "" : "\n") + file.Path;
  return lines;
}

std::vector<std::string> TroubleLines(const jobs::ItemResult& result, core::Severity level) {
  std::vector<std::string> lines;
  for (const core::Trouble& trouble : result.Troubles) {
    if (trouble.Level == level) lines.push_back(LineOf(trouble));
  }
  return lines;
}

}  // namespace tarnwick::cli
