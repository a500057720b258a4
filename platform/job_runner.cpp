#include "platform/job_runner.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProgressBar>
#include <QWidget>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/dialog.h"
#include "platform/page_report.h"

namespace tarnwick::platform {

namespace {

constexpr int TickMilliseconds = 10;

/// A worker's sink. It keeps what the worker says until the user-interface thread fetches it.
class WorkerReport : public JobReport {
 public:
  void Log(std::string_view text) override {
    const std::lock_guard lock(m_mutex);
    m_grown += text;
  }

  void Tell(const core::Trouble& trouble) override {
    if (!trouble.Caption.empty()) Ask(BoxOf(trouble));
  }

  BoxAnswer Ask(const MessageBoxRequest& request) override {
    std::unique_lock lock(m_mutex);
    if (m_abandoned) return BoxAnswer::Cancel;
    m_box = request;
    m_answered.wait(lock, [this] { return !m_box || m_abandoned; });
    return m_abandoned ? BoxAnswer::Cancel : m_answer;
  }

  std::string TakeLog() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_grown, {});
  }

  std::optional<MessageBoxRequest> WaitingBox() {
    const std::lock_guard lock(m_mutex);
    return m_box;
  }

  void AnswerBox(BoxAnswer answer) {
    const std::lock_guard lock(m_mutex);
    m_answer = answer;
    m_box.reset();
    m_answered.notify_all();
  }

  /// From now on nobody answers: the worker's boxes return at once.
  void Abandon() {
    const std::lock_guard lock(m_mutex);
    m_abandoned = true;
    m_answered.notify_all();
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_answered;
  std::string m_grown;
  std::optional<MessageBoxRequest> m_box;
  BoxAnswer m_answer = BoxAnswer::Cancel;
  bool m_abandoned = false;
};

}  // namespace

struct JobRunner::Job {
  WorkerReport Report;
  std::atomic<bool> Ended = false;
  QPointer<QWidget> FocusMeanwhile;  // to which the focus has gone from what cannot have it now
  std::jthread Thread;               // last, so that it ends before what it uses
};

JobRunner::JobRunner(CDialog& page) : QObject(&page), m_page(page) {}

JobRunner::~JobRunner() {
  if (!m_job) return;
  m_job->Report.Abandon();
  m_job->Thread.request_stop();
  m_job->Thread.join();
}

bool JobRunner::Start(Work work, JobView view) {
  if (m_job) return false;
  m_view = std::move(view);
  m_sweep = 1;
  if (m_view.Bar != nullptr) {
    m_view.Bar->setRange(0, 100);
    m_view.Bar->setValue(0);
  }
  m_focus = m_page.window()->focusWidget();  // not that of a status window, in which the job may have been started
  if (m_view.Disabled == nullptr) m_view.Disabled = &m_page;
  m_view.Disabled->setEnabled(false);
  // Where it is nowhere, the first button of the window would get it as soon as the window is in front again.
  if (m_page.window()->focusWidget() == nullptr) m_page.window()->setFocus();
  const QPointer<QWidget> focusMeanwhile = m_page.window()->focusWidget();
  qApp->installEventFilter(this);  // a disabled button keeps a click from the page
  // A page's status windows are disabled with it; they are what the user looks at meanwhile.
  for (QWidget* child : m_view.Disabled->findChildren<QWidget*>()) {
    if (child->isWindow()) child->setEnabled(true);
  }
  m_job = std::make_unique<Job>();
  m_job->FocusMeanwhile = focusMeanwhile;
  m_job->Thread = std::jthread([job = m_job.get(), work = std::move(work)](const std::stop_token& stop) {
    try {
      work(job->Report, stop);
    } catch (const std::exception& error) {  // memory ran out, at the latest
      job->Report.ErrorBox(core::TroubleKind::Limit, error.what(), "Error");
    }
    job->Ended = true;
  });
  m_timer = startTimer(TickMilliseconds);
  return true;
}

void JobRunner::RequestStop() {
  if (m_job) m_job->Thread.request_stop();
}

void JobRunner::timerEvent(QTimerEvent*) {
  OnTick();
}

/// Whether Enter has reached what the focus has gone to by itself: it was meant for the page, such as a second one.
bool JobRunner::IsStrayEnter(const QObject* watched, const QEvent* event) const {
  if (event->type() != QEvent::KeyPress || !m_job || m_job->FocusMeanwhile == m_focus) return false;
  const int key = static_cast<const QKeyEvent*>(event)->key();
  return (key == Qt::Key_Return || key == Qt::Key_Enter) && watched == m_job->FocusMeanwhile;
}

bool JobRunner::eventFilter(QObject* watched, QEvent* event) {
  if (IsStrayEnter(watched, event)) return true;
  if (event->type() != QEvent::MouseButtonPress || m_view.Bar == nullptr) return false;
  const auto* clicked = qobject_cast<const QWidget*>(watched);
  QWidget* status = m_view.Bar->window();
  if (clicked == nullptr || status == m_view.Disabled->window()) return false;
  if (clicked != m_view.Disabled && !m_view.Disabled->isAncestorOf(clicked)) return false;
  status->show();
  status->raise();
  status->activateWindow();
  return true;
}

void JobRunner::OnTick() {
  const bool ended = m_job->Ended;  // before the log is fetched, so that the last words are not missed
  const std::string grown = m_job->Report.TakeLog();
  if (!grown.empty() && m_view.LogGrew) m_view.LogGrew(grown);
  if (m_showingBox) return;
  if (ended) return Finish();
  if (m_view.Bar != nullptr) m_view.Bar->setValue(m_sweep);
  m_sweep = m_sweep >= 100 ? 0 : m_sweep + 1;
  if (m_view.Tick) m_view.Tick();
  ShowWaitingBox();
}

void JobRunner::ShowWaitingBox() {
  const std::optional<MessageBoxRequest> box = m_job->Report.WaitingBox();
  if (!box) return;
  m_showingBox = true;
  const QPointer<JobRunner> alive(this);
  // Over the window that the user looks at, which has the focus again when the box is closed.
  QWidget* status = m_view.Bar != nullptr ? m_view.Bar->window() : nullptr;
  QWidget* owner = status != nullptr && status->isVisible() ? status : &m_page;
  const BoxAnswer answer = m_page.DesktopSeam().ShowBox(owner, *box);
  if (!alive) return;
  m_showingBox = false;
  m_job->Report.AnswerBox(answer);
}

void JobRunner::Finish() {
  killTimer(m_timer);
  const QWidget* focusNow = m_page.window()->focusWidget();
  const bool userMovedIt = focusNow != nullptr && focusNow != m_job->FocusMeanwhile;
  m_job.reset();
  qApp->removeEventFilter(this);
  m_view.Disabled->setEnabled(true);
  if (m_focus && !userMovedIt) m_focus->setFocus();
  if (m_view.Bar != nullptr) m_view.Bar->setValue(100);
  const JobView view = std::exchange(m_view, {});
  if (view.Done) view.Done();
}

}  // namespace tarnwick::platform
