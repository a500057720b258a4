#pragma once

#include <functional>
#include <string>
#include <vector>

#include "pages/tool_output.h"
#include "platform/job_runner.h"
#include "tools/page_log.h"
#include "tools/tool_run.h"

class QAbstractButton;
class QProgressBar;

namespace tarnwick::pages {

/// The controls in which a run of a tool is seen and steered.
struct ToolRunControls {
  QProgressBar* Bar;
  QAbstractButton* StopButton;
  QAbstractButton* CopyCommandButton;
  QAbstractButton* WholeLogButton;
  QWidget* Inputs = nullptr;  // what cannot be used during a run; null for the whole page
};

/// One run.
struct ToolRunJob {
  tools::ToolRun Run;
  process::Command Command;
  tools::StartSettings Start;
  std::vector<std::string> Warnings;  // what the checks before the run found
};

/// Runs a console tool for a page: its text goes to a log as it comes, wrapped as the run's rule says, and the run can
/// be stopped. One run at a time for each runner.
class ToolRunner : public QObject {
  Q_OBJECT

 public:
  /// `page` owns the boxes and becomes the parent; during a run it, or the controls' `Inputs`, is disabled.
  ToolRunner(platform::CDialog& page, const ToolRunControls& controls);
  /// Stops a run that is going on.
  ~ToolRunner() override = default;

  bool IsRunning() const { return m_jobs.IsRunning(); }

  /// Starts `job`, whose text is added to `log`; `done`, if given, is called when the run is over and all its text is
  /// in the log. A tool that could not be started is told in a box after that.
  void Start(const ToolRunJob& job, tools::PageLog& log, std::function<void()> done = {});

 private:
  void OnEnd(const tools::FinishedRun& run, const std::function<void()>& done);
  void OnCopyCommand();
  void OnWholeLog();

  platform::CDialog& m_page;
  ToolRunControls m_controls;
  std::string m_shellLine;  // of the last run
  tools::WholeLog m_wholeLog;
  tools::PageLog* m_log = nullptr;
  size_t m_logged = 0;         // bytes of the run's text that are in the log
  platform::JobRunner m_jobs;  // behind what its callbacks use
};

}  // namespace tarnwick::pages
