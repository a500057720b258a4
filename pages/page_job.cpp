#include "pages/page_job.h"

#include <condition_variable>
#include <mutex>
#include <utility>
#include <variant>
#include <vector>

#include "platform/dialog.h"
#include "platform/job_report.h"

namespace tarnwick::pages {

namespace {

/// As many lines wait for the window at most. A tool that prints faster than they can be shown is held up.
constexpr size_t MostWaiting = 4'000;

/// Keeps the events until the window's thread fetches them.
class WindowHost : public jobs::Host {
 public:
  explicit WindowHost(JobBoxes boxes) : m_boxes(boxes) {}

  /// Where boxes go, and what ends a wait for the window; set before the job starts.
  void Begin(platform::JobReport& report, const std::stop_token& stop) {
    m_report = &report;
    m_stop = stop;
  }

  void On(const jobs::Event& event) override {
    if (const auto* started = std::get_if<jobs::Started>(&event)) m_count = started->Count;
    {
      std::unique_lock lock(m_mutex);
      if (std::holds_alternative<jobs::Line>(event)) {
        m_taken.wait(lock, m_stop, [this] { return m_events.size() < MostWaiting; });
      }
      m_events.push_back(event);
    }
    const auto* told = std::get_if<jobs::Told>(&event);
    if (told != nullptr && HasBox(told->Trouble)) m_report->Tell(told->Trouble);
  }

  bool Ask(const jobs::Question& question) override {
    return m_report->Ask(BoxOf(question)) == platform::BoxAnswer::Ok;
  }

  std::vector<jobs::Event> Take() {
    const std::lock_guard lock(m_mutex);
    m_taken.notify_all();
    return std::exchange(m_events, {});
  }

 private:
  /// One table of a damaged file that is not there often takes many with it: the first has a box, the log has all.
  bool HasBox(const core::Trouble& trouble) {
    if (m_boxes == JobBoxes::OfTheOnlyItem && m_count != 1) return false;
    const bool isDamage = trouble.Kind == core::TroubleKind::Damaged && !trouble.Caption.empty();
    return !isDamage || !std::exchange(m_damageWasShown, true);
  }

  const JobBoxes m_boxes;
  platform::JobReport* m_report = nullptr;
  std::stop_token m_stop;
  size_t m_count = 0;
  bool m_damageWasShown = false;
  std::mutex m_mutex;
  std::condition_variable_any m_taken;
  std::vector<jobs::Event> m_events;
};

}  // namespace

PageJob::PageJob(platform::CDialog& page) : QObject(&page), m_runner(page) {}

bool PageJob::Start(Work work, PageJobView view) {
  const auto host = std::make_shared<WindowHost>(view.Boxes);
  const auto showEvents = [host, onEvent = std::move(view.OnEvent)] {
    for (const jobs::Event& event : host->Take()) onEvent(event);
  };
  return m_runner.Start(
      [host, work = std::move(work)](platform::JobReport& report, const std::stop_token& stop) {
        host->Begin(report, stop);
        work(*host, stop);
      },
      {.Bar = view.Bar, .Disabled = view.Disabled, .LogGrew = {}, .Tick = showEvents, .Done = showEvents});
}

platform::MessageBoxRequest BoxOf(const jobs::Question& question) {
  platform::MessageBoxRequest box{question.Text, question.Caption, question.Icon, platform::BoxButtons::OkCancel};
  box.Details = question.Details;
  box.OkLabel = question.Yes;
  // A yes by a slip of the hand would cost what cannot be had back.
  box.RefusalIsDefault =
      question.Kind == jobs::QuestionKind::Overwrite || question.Kind == jobs::QuestionKind::UseDamaged;
  return box;
}

}  // namespace tarnwick::pages
