#include "jobs/item_run.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <thread>

namespace tarnwick::jobs {

namespace {

/// A line that is longer comes in pieces, so that a tool that never ends one cannot fill the memory.
constexpr size_t LongestPiece = 64 << 10;

/// So many errors, and so many warnings, of a tool are kept one by one.
constexpr size_t MostToolTroubles = 100;

class Clock {
 public:
  double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_started).count(); }

 private:
  std::chrono::steady_clock::time_point m_started = std::chrono::steady_clock::now();
};

Verdict JudgementOf(const ItemResult& result) {
  bool failed = false;
  for (const core::Trouble& trouble : result.Troubles) {
    if (trouble.Kind == core::TroubleKind::Stopped) return Verdict::Stopped;
    failed = failed || trouble.Level == core::Severity::Error;
  }
  return failed ? Verdict::Failed : Verdict::Succeeded;
}

}  // namespace

void ItemRun::Log(std::string_view text) {
  Feed(LineSource::Log, text);
}

void ItemRun::ToolText(std::string_view piece) {
  Feed(LineSource::Tool, piece);
}

void ItemRun::Command(const std::string& line) {
  Flush();
  Result.CommandLine = line;
  m_channel.Tell(Line{m_item, LineSource::Command, tools::LineKind::Plain, line + "\r\n"});
}

void ItemRun::Tell(const core::Trouble& trouble) {
  Flush();
  Result.Troubles.push_back(trouble);
  m_channel.Tell(Told{m_item, trouble});
}

void ItemRun::Fail(core::TroubleKind kind, std::string text, std::string file) {
  Tell({.Kind = kind, .File = std::move(file), .Text = std::move(text)});
}

void ItemRun::Progressed(std::string file, size_t done, size_t begun) {
  m_channel.Tell(Progress{m_item, std::move(file), done, begun});
}

void ItemRun::Feed(LineSource source, std::string_view text) {
  if (source != m_source) Flush();
  m_source = source;
  while (!text.empty()) {
    const size_t end = std::min({text.find('\n'), text.size() - 1, LongestPiece - 1 - m_line.size()});
    m_line += text.substr(0, end + 1);
    text.remove_prefix(end + 1);
    if (m_line.back() == '\n' || m_line.size() >= LongestPiece) Cut();
  }
}

void ItemRun::Flush() {
  if (!m_line.empty()) Cut();
}

void ItemRun::Cut() {
  const std::string_view bare = std::string_view(m_line).substr(0, m_line.find_last_not_of("\r\n") + 1);
  const tools::LineKind kind = m_source == LineSource::Tool ? tools::ClassifyLine(bare) : tools::LineKind::Plain;
  std::string text = kind == tools::LineKind::Plain ? std::string() : std::string(bare);
  m_channel.Tell(Line{m_item, m_source, kind, std::exchange(m_line, {})});
  if (ToolLinesAreTroubles && kind != tools::LineKind::Plain) TakeToolTrouble(kind, std::move(text));
}

void ItemRun::TakeToolTrouble(tools::LineKind kind, std::string text) {
  const bool isError = kind == tools::LineKind::Error;
  const core::Severity level = isError ? core::Severity::Error : core::Severity::Warning;
  if (Result.Count(level) >= MostToolTroubles) {
    ++(isError ? Result.MoreErrors : Result.MoreWarnings);
  } else {
    Tell({.Level = level, .Kind = core::TroubleKind::Tool, .Text = std::move(text)});
  }
}

JobResult RunItems(const JobPlan& plan, const ThreadUse& use, Host& host, const std::stop_token& stop,
                   const ItemWork& work) {
  const Clock clock;
  Channel channel(host);
  JobResult result;
  result.Troubles = plan.Troubles;
  for (const PlannedItem& item : plan.Items) {
    ItemResult& each = result.Items.emplace_back();
    each.Input = each.Source = item.Input;
    each.Target = item.Target;
  }
  channel.Tell(Started{plan.Items.size()});
  for (const core::Trouble& trouble : plan.Troubles) channel.Tell(Told{NoItem, trouble});

  core::WorkQueue helpers;
  std::atomic<size_t> next{0};
  std::atomic<size_t> busy{0};
  const auto runOne = [&](size_t index) {
    const Clock itemClock;
    ItemResult& item = result.Items[index];
    channel.Tell(ItemStarted{index, item.Input, item.Target});
    ItemRun run(channel, index, item, helpers, stop);
    try {
      work(index, run);
    } catch (const std::exception& error) {  // memory ran out, at the latest
      run.ErrorBox(core::TroubleKind::Limit, error.what(), "Error");
    }
    run.Flush();
    item.Judged = JudgementOf(item);
    item.Seconds = itemClock.Seconds();
    channel.Tell(ItemFinished{index, item});
  };
  const auto takeItems = [&] {
    ++busy;
    for (size_t i = next++; i < result.Items.size() && !stop.stop_requested(); i = next++) runOne(i);
    if (--busy == 0) helpers.Close();  // nobody posts any more: a thread that comes later finds no item
    helpers.RunUntilClosed();
  };
  std::vector<std::jthread> others;
  for (int i = 1; i < use.Threads && !result.Items.empty(); ++i) {
    if (i < use.AtATime) {
      others.emplace_back(takeItems);
    } else {
      others.emplace_back([&helpers] { helpers.RunUntilClosed(); });
    }
  }
  takeItems();
  others.clear();
  result.Seconds = clock.Seconds();
  channel.Tell(Finished{result});
  return result;
}

}  // namespace tarnwick::jobs
