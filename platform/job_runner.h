#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

#include "platform/job_report.h"

class QProgressBar;
class QWidget;

namespace tarnwick::platform {

class CDialog;

/// What is done on the user-interface thread while a job runs; every member may be left out.
struct JobView {
  QProgressBar* Bar = nullptr;                      // sweeps from 0 to 100 about once a second, ends at 100
  QWidget* Disabled = nullptr;                      // what cannot be used meanwhile; null for the whole page
  std::function<void(const std::string&)> LogGrew;  // gets the text that was added to the log since the last call
  std::function<void()> Tick;                       // every 10 ms
  std::function<void()> Done;                       // once, after the last LogGrew; the page is enabled again
};

/// Runs the long work of one page on a thread of its own. Start returns at once and the window stays alive; the page is
/// disabled until the work has ended; a click on it brings back the status window, if the bar stands in one, in case
/// the user has closed it and wants to stop the job after all. One job at a time for each runner; runners of different
/// pages work side by side.
///
///     m_jobs.Start([path](core::Report& report, const std::stop_token&) { DoWork(path, report); },
///                  {.Bar = ui->progress, .LogGrew = [this](const std::string& text) { Append(text); }});
///
/// A box that the work shows through the report appears on the user-interface thread, owned by the page, and the work
/// waits for its answer; so does a question. The work must not touch a widget.
class JobRunner : public QObject {
  Q_OBJECT

 public:
  using Work = std::function<void(JobReport& report, const std::stop_token& stop)>;

  /// A runner for `page`, which becomes its parent.
  explicit JobRunner(CDialog& page);
  /// Asks a running job to stop and waits until it has ended; its boxes are no longer shown and Done is not called.
  ~JobRunner() override;

  /// Starts `work`; false, and nothing done, if a job is running.
  bool Start(Work work, JobView view);

  bool IsRunning() const { return m_job != nullptr; }
  /// Asks the running job to stop at its next chance.
  void RequestStop();

 private:
  struct Job;

  void OnTick();
  void ShowWaitingBox();
  bool IsStrayEnter(const QObject* watched, const QEvent* event) const;
  void Finish();

  CDialog& m_page;
  QPointer<QWidget> m_focus;
  JobView m_view;
  std::unique_ptr<Job> m_job;
  int m_sweep = 0;
  int m_timer = 0;
  bool m_showingBox = false;

 protected:
  void timerEvent(QTimerEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tarnwick::platform
