#pragma once

#include <QPointer>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "jobs/compile_models.h"
#include "pages/page_job.h"
#include "tools/output_wrapping.h"
#include "tools/page_log.h"
#include "tools/whole_log.h"

class QAbstractButton;
class QLabel;
class QProgressBar;

namespace tarnwick::pages {

class CWholeLogDialog;

/// The controls in which a run of a tool is seen and steered.
struct ToolRunControls {
  QProgressBar* Bar;
  QAbstractButton* StopButton;
  QAbstractButton* CopyCommandButton;
  QAbstractButton* WholeLogButton;
  QLabel* Verdict;            // says in the end what became of the model
  QWidget* Inputs = nullptr;  // what cannot be used during a run; null for the whole page
};

/// Compiles a model for a page: the tool's text goes to a log as it comes, wrapped as the job's rule says, and the run
/// can be stopped. Its verdict stands behind the text and in a label. One run at a time for each runner.
class ToolRunner : public QObject {
  Q_OBJECT

 public:
  using Done = std::function<void(const jobs::ItemResult& result)>;

  /// `page` owns the boxes and becomes the parent; during a run it, or the controls' `Inputs`, is disabled.
  ToolRunner(platform::CDialog& page, const ToolRunControls& controls);
  /// Stops a run that is going on.
  ~ToolRunner() override = default;

  bool IsRunning() const { return m_job.IsRunning(); }

  /// Starts `job`, which has one item. Its text is added to `log`; `done`, if given, gets what became of the item when
  /// the run is over and all its text is in the log.
  void Start(const jobs::CompileModels& job, tools::PageLog& log, Done done = {});

 private:
  void Show(const jobs::Event& event);
  void OnLine(const jobs::Line& line);
  void OnEnd(const jobs::ItemResult& result);
  void ToLog(std::string_view text);
  void OnCopyCommand();
  void OnWholeLog();

  platform::CDialog& m_page;
  ToolRunControls m_controls;
  std::string m_shellLine;  // of the last run
  std::string m_gameDirectory;
  std::string m_firstError;  // the line of the tool
  tools::WholeLog m_wholeLog;
  QPointer<CWholeLogDialog> m_shownLog;  // while it is open
  std::optional<tools::OutputWrapper> m_wrapper;
  tools::PageLog* m_log = nullptr;
  Done m_done;
  size_t m_logged = 0;  // bytes of the run's text that are in the log
  PageJob m_job;        // behind what its callbacks use
};

}  // namespace tarnwick::pages
