#include "pages/page_job.h"

#include <mutex>
#include <utility>
#include <variant>
#include <vector>

#include "platform/dialog.h"
#include "platform/job_report.h"

namespace tarnwick::pages {

namespace {

/// Keeps the events until the window's thread fetches them.
class WindowHost : public jobs::Host {
 public:
  explicit WindowHost(JobBoxes boxes) : m_boxes(boxes) {}

  /// Where boxes go; set before the job starts.
  void SetReport(platform::JobReport& report) { m_report = &report; }

  void On(const jobs::Event& event) override {
    if (const auto* started = std::get_if<jobs::Started>(&event)) m_count = started->Count;
    {
      const std::lock_guard lock(m_mutex);
      m_events.push_back(event);
    }
    const auto* told = std::get_if<jobs::Told>(&event);
    if (told != nullptr && (m_boxes == JobBoxes::Always || m_count == 1)) m_report->Tell(told->Trouble);
  }

  bool Ask(const jobs::Question& question) override {
    return m_report->Ask(BoxOf(question)) == platform::BoxAnswer::Ok;
  }

  std::vector<jobs::Event> Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_events, {});
  }

 private:
  const JobBoxes m_boxes;
  platform::JobReport* m_report = nullptr;
  size_t m_count = 0;
  std::mutex m_mutex;
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
        host->SetReport(report);
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
