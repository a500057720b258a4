#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/report.h"
#include "core/work_queue.h"
#include "jobs/host.h"

namespace tarnwick::jobs {

/// A job's way to its host, shared by the threads of the job.
class Channel {
 public:
  explicit Channel(Host& host) : m_host(host) {}

  void Tell(const Event& event) {
    const std::lock_guard lock(m_mutex);
    m_host.On(event);
  }
  /// Asks the host. A question that got a no is not asked again in the same job: the answer stays.
  bool Ask(const Question& question) {
    const std::lock_guard lock(m_mutex);
    const std::pair key(question.Kind, question.About.empty() ? question.Text : question.About);
    if (m_refused.contains(key)) return false;
    const bool answer = m_host.Ask(question);
    if (!answer) m_refused.insert(key);
    return answer;
  }

 private:
  Host& m_host;
  std::mutex m_mutex;
  std::set<std::pair<QuestionKind, std::string>> m_refused;
};

/// One item while it is worked on, on one thread. It is the sink for every logic room that the work calls: what they
/// log becomes lines, what they tell becomes troubles, of this item and in its result.
class ItemRun : public core::Report {
 public:
  ItemRun(Channel& channel, size_t item, ItemResult& result, core::WorkQueue& helpers, std::stop_token stop)
      : Result(result), Helpers(helpers), Stop(std::move(stop)), m_channel(channel), m_item(item) {}

  ItemResult& Result;        // the work fills Source, Target, CommandLine and Files
  core::WorkQueue& Helpers;  // threads of the job that have no item of their own help here
  const std::stop_token Stop;
  /// Whether the lines in which a tool tells errors and warnings are troubles of the item as well, the first hundred
  /// of each; those behind are counted (`ItemResult::MoreErrors`, `MoreWarnings`).
  bool ToolLinesAreTroubles = false;

  void Log(std::string_view text) override;
  void Tell(const core::Trouble& trouble) override;
  /// Tells an error that has no box.
  void Fail(core::TroubleKind kind, std::string text, std::string file = {});

  /// A piece of what a tool prints; pieces may end anywhere.
  void ToolText(std::string_view piece);
  /// A tool starts with this command line, which goes into the result.
  void Command(const std::string& line);
  void Progressed(std::string file, size_t done, size_t begun);
  bool Ask(const Question& question) { return m_channel.Ask(question); }

  /// Tells the rest of a line that has no end. Called behind the work, and where a tool has ended before it.
  void Flush();

 private:
  void Feed(LineSource source, std::string_view text);
  void Cut();
  void TakeToolTrouble(tools::LineKind kind, std::string text);

  Channel& m_channel;
  const size_t m_item;
  LineSource m_source = LineSource::Log;
  std::string m_line;  // of m_source, without its end so far
};

/// An item before its turn.
struct PlannedItem {
  std::string Input;
  std::string Target;
};

/// What a job knows before it begins its first item.
struct JobPlan {
  std::vector<PlannedItem> Items;
  std::vector<core::Trouble> Troubles;  // of inputs that cannot be had
};

/// The threads of a job. Those that have no item of their own help with the tasks of the others.
struct ThreadUse {
  int Threads = 1;
  int AtATime = 1;  // items
};

/// Does the work of item number `item`. What it tells `run` as an error makes the item a failed one.
using ItemWork = std::function<void(size_t item, ItemRun& run)>;

/// Runs all items of `plan`, tells the host from Started to Finished, and judges: an item that
/// told an error has failed, one that a stop ended is stopped, every other has succeeded. After a stop no further item
/// is begun. An exception of the work is told as the item's error. Blocks until all is done.
JobResult RunItems(const JobPlan& plan, const ThreadUse& use, Host& host, const std::stop_token& stop,
                   const ItemWork& work);

}  // namespace tarnwick::jobs
