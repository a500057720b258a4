#include "pages/tool_runner.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <algorithm>
#include <utility>
#include <variant>

#include "pages/compile_verdict.h"
#include "pages/whole_log_dialog.h"
#include "platform/dialog.h"
#include "platform/text.h"

namespace tarnwick::pages {

ToolRunner::ToolRunner(platform::CDialog& page, const ToolRunControls& controls)
    : QObject(&page), m_page(page), m_controls(controls), m_job(page) {
  connect(m_controls.StopButton, &QAbstractButton::clicked, this, [this] {
    m_controls.StopButton->setEnabled(false);
    m_job.RequestStop();
  });
  connect(m_controls.CopyCommandButton, &QAbstractButton::clicked, this, &ToolRunner::OnCopyCommand);
  connect(m_controls.WholeLogButton, &QAbstractButton::clicked, this, &ToolRunner::OnWholeLog);
}

void ToolRunner::Start(const jobs::CompileModels& job, tools::PageLog& log, Done done) {
  if (IsRunning()) return;
  m_shellLine = tools::ShellLine(jobs::CommandOf(job, job.Inputs.front()), job.Start);
  m_gameDirectory = job.GameDirectory;
  m_firstError.clear();
  m_wholeLog = tools::WholeLog();
  m_controls.Verdict->hide();
  m_wrapper.emplace(tools::RuleOf(job.Shown));
  m_log = &log;
  m_done = std::move(done);
  m_logged = 0;
  m_job.Start([job](jobs::Host& host, const std::stop_token& stop) { jobs::Run(job, host, stop); },
              {.Bar = m_controls.Bar,
               .Disabled = m_controls.Inputs,
               .Boxes = JobBoxes::Always,
               .OnEvent = [this](const jobs::Event& event) { Show(event); }});
  m_controls.StopButton->setEnabled(true);
  m_controls.CopyCommandButton->setEnabled(true);
  m_controls.WholeLogButton->setEnabled(true);
}

void ToolRunner::Show(const jobs::Event& event) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Line& line) { OnLine(line); },
                 [this](const jobs::ItemFinished& finished) { OnEnd(finished.Result); },
                 [](const auto&) {},
             },
             event);
}

void ToolRunner::OnLine(const jobs::Line& line) {
  // Which tool runs, told ahead of the run.
  if (line.Source == jobs::LineSource::Log && line.Item == jobs::NoItem) m_log->AppendPageLog(line.Text);
  if (line.Source == jobs::LineSource::Command) ToLog(line.Text);
  if (line.Source != jobs::LineSource::Tool) return;
  if (line.Kind == tools::LineKind::Error && m_firstError.empty()) {
    m_firstError = line.Text.substr(0, line.Text.find_last_not_of("\r\n") + 1);
  }
  m_wholeLog.Append(line.Text);
  if (m_shownLog) m_shownLog->Grow(line.Text);
  ToLog(m_wrapper->Wrap(line.Text));
}

void ToolRunner::ToLog(std::string_view text) {
  m_logged += text.size();
  m_log->AppendPageLog(text);
}

void ToolRunner::OnEnd(const jobs::ItemResult& result) {
  ToLog(std::string_view(result.Shown).substr(std::min(m_logged, result.Shown.size())));
  ToLog(VerdictLines(result, m_gameDirectory));
  std::string verdict = CompileVerdict(result, m_gameDirectory);
  const core::Trouble* error = result.First(core::Severity::Error);
  if (error != nullptr) verdict += "\nThe first error: " + error->Text;
  m_controls.Verdict->setText(platform::ToQt(verdict));
  m_controls.Verdict->show();
  m_controls.StopButton->setEnabled(false);
  if (m_done) m_done(result);
}

void ToolRunner::OnCopyCommand() {
  QGuiApplication::clipboard()->setText(platform::ToQt(m_shellLine));
}

void ToolRunner::OnWholeLog() {
  CWholeLogDialog dialog(m_page.DesktopSeam(), m_controls.WholeLogButton->window(), m_shellLine, m_wholeLog,
                         m_firstError);
  m_shownLog = &dialog;
  dialog.DoModal();
}

}  // namespace tarnwick::pages
