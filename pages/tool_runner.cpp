#include "pages/tool_runner.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QProgressBar>

#include "pages/whole_log_dialog.h"
#include "platform/dialog.h"
#include "platform/page_report.h"
#include "platform/text.h"

namespace tarnwick::pages {

ToolRunner::ToolRunner(platform::CDialog& page, const ToolRunControls& controls)
    : QObject(&page), m_page(page), m_controls(controls), m_jobs(page) {
  connect(m_controls.StopButton, &QAbstractButton::clicked, this, [this] {
    m_controls.StopButton->setEnabled(false);
    m_jobs.RequestStop();
  });
  connect(m_controls.CopyCommandButton, &QAbstractButton::clicked, this, &ToolRunner::OnCopyCommand);
  connect(m_controls.WholeLogButton, &QAbstractButton::clicked, this, &ToolRunner::OnWholeLog);
}

void ToolRunner::Start(const ToolRunJob& job, tools::PageLog& log, std::function<void()> done) {
  if (m_jobs.IsRunning()) return;
  m_shellLine = tools::ShellLine(job.Command, job.Start);
  m_log = &log;
  const auto finished = std::make_shared<tools::FinishedRun>();
  const auto work = [job, finished](core::Report& report, const std::stop_token& stop) {
    tools::OutputWrapper wrapper(tools::RuleOf(job.Run));
    tools::ToolRunOptions options;
    options.Start = job.Start;
    options.Stop = stop;
    options.OnText = [&](std::string_view piece) { report.Log(wrapper.Wrap(piece)); };
    *finished = tools::RunTool(job.Run, job.Command, options, job.Warnings);
  };
  const std::string head = job.Command.Line() + "\r\n";
  m_logged = head.size();
  log.AppendPageLog(head);
  m_jobs.Start(work, {.Bar = m_controls.Bar,
                      .Disabled = m_controls.Inputs,
                      .LogGrew =
                          [this](const std::string& text) {
                            m_logged += text.size();
                            m_log->AppendPageLog(text);
                          },
                      .Tick = {},
                      .Done = [this, finished, done = std::move(done)] { OnEnd(*finished, done); }});
  m_controls.StopButton->setEnabled(true);
  m_controls.CopyCommandButton->setEnabled(true);
  m_controls.WholeLogButton->setEnabled(false);
}

void ToolRunner::OnEnd(const tools::FinishedRun& run, const std::function<void()>& done) {
  const std::string text = run.TextWithNotes();
  m_log->AppendPageLog(std::string_view(text).substr(std::min(m_logged, text.size())));
  m_wholeLog = run.Outcome.Log;
  m_controls.StopButton->setEnabled(false);
  m_controls.WholeLogButton->setEnabled(true);
  if (done) done();
  if (!run.Outcome.Failure) return;
  platform::PageReport report(m_page.DesktopSeam(), &m_page);
  tools::ReportFatalSystemError(*run.Outcome.Failure, report);
}

void ToolRunner::OnCopyCommand() {
  QGuiApplication::clipboard()->setText(platform::ToQt(m_shellLine));
}

void ToolRunner::OnWholeLog() {
  CWholeLogDialog(m_page.DesktopSeam(), m_controls.WholeLogButton->window(), m_shellLine, m_wholeLog).DoModal();
}

}  // namespace tarnwick::pages
