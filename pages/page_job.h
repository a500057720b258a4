#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <stop_token>

#include "jobs/host.h"
#include "platform/job_runner.h"

namespace tarnwick::pages {

/// Which troubles of a job are shown in boxes.
enum class JobBoxes {
  Always,
  OfTheOnlyItem,  // where there are several items their list tells
};

/// What is seen of a job, on the window's thread; all but OnEvent may be left out.
struct PageJobView {
  QProgressBar* Bar = nullptr;  // as in platform::JobView
  QWidget* Disabled = nullptr;  // the same
  JobBoxes Boxes = JobBoxes::OfTheOnlyItem;
  std::function<void(const jobs::Event&)> OnEvent;  // each event in its order
};

/// A page as the host of jobs: runs one on a thread of its own, brings its events to the window's thread, and shows its
/// boxes and questions there.
///
///     m_job.Start([job](jobs::Host& host, const std::stop_token& stop) { jobs::Run(job, host, stop); },
///                 {.Bar = ui->progress, .OnEvent = [this](const jobs::Event& event) { Show(event); }});
class PageJob : public QObject {
  Q_OBJECT

 public:
  using Work = std::function<void(jobs::Host& host, const std::stop_token& stop)>;

  /// A runner for `page`, which becomes its parent and owns the boxes.
  explicit PageJob(platform::CDialog& page);

  /// Starts `work`; false, and nothing done, if a job is running.
  bool Start(Work work, PageJobView view);
  bool IsRunning() const { return m_runner.IsRunning(); }
  void RequestStop() { m_runner.RequestStop(); }

 private:
  platform::JobRunner m_runner;
};

/// The box that asks `question`.
platform::MessageBoxRequest BoxOf(const jobs::Question& question);

}  // namespace tarnwick::pages
