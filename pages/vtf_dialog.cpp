#include "pages/vtf_dialog.h"

#include <QScrollBar>
#include <algorithm>
#include <filesystem>

#include "core/paths.h"
#include "core/settings_table.h"
#include "pages/thumbnail_loader.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "settings/documents_folder.h"
#include "ui_vtf_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::ToQt;

namespace {

constexpr const char* InputFilter = "VTF Files (*.vtf)|*.vtf|";
constexpr const char* OutputFilter =
    "TGA/VMT Files (*.tga,*.vmt)|*.tga;*.vmt|All Files (*.tga,*.jpg,*.gif,*.bmp,*.vmt,*.png,*.dds)|"
    "*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds;*.vmt|";

std::vector<std::string> TexturesOf(const platform::DroppedFiles& drop) {
  std::vector<std::string> textures;
  std::copy_if(drop.Paths.begin(), drop.Paths.end(), std::back_inserter(textures),
               [](const std::string& path) { return core::LowerAscii(path).ends_with(".vtf"); });
  return textures;
}

}  // namespace

CVTFDialog::CVTFDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent), m_ui(std::make_unique<Ui::VtfDialog>()), m_jobs(*this) {
  m_ui->setupUi(this);
  m_ui->picture->ShowText("The exported texture is shown here");
  m_ui->progressRow->hide();
  connect(m_ui->browseInputButton, &QAbstractButton::clicked, this, &CVTFDialog::OnBrowseInput);
  connect(m_ui->browseOutputButton, &QAbstractButton::clicked, this, &CVTFDialog::OnBrowseOutput);
  connect(m_ui->extractButton, &QAbstractButton::clicked, this, &CVTFDialog::ExtractVtf);
  connect(m_ui->wholeLogButton, &QAbstractButton::toggled, this, &CVTFDialog::ShowLog);
  connect(m_ui->stopButton, &QAbstractButton::clicked, this, [this] { m_jobs.RequestStop(); });
}

CVTFDialog::~CVTFDialog() = default;

void CVTFDialog::OnInitDialog() {
  CPage::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->inputEdit->setText(ToQt(setting::VtfExportFile.Read(Settings())));
  m_ui->outputEdit->setText(ToQt(setting::TgaExportFile.Read(Settings())));
}

void CVTFDialog::SaveSettings() {
  setting::VtfExportFile.Write(Settings(), FromQt(m_ui->inputEdit->text()));
  setting::TgaExportFile.Write(Settings(), FromQt(m_ui->outputEdit->text()));
}

void CVTFDialog::SetOutput(const std::string& path) {
  m_ui->outputEdit->setText(ToQt(path));
  setting::TgaExportFile.Write(Settings(), path);
}

void CVTFDialog::SuggestOutputName(const std::string& input) {
  SetOutput(tools::SuggestOutputName(input));
}

void CVTFDialog::OnBrowseInput() {
  const auto chosen = DesktopSeam().ChooseFileToOpen(this, {.Title = "Name of Input File",
                                                            .Filter = InputFilter,
                                                            .StartName = FromQt(m_ui->inputEdit->text()),
                                                            .StartDirectory = {}});
  if (!chosen) return;
  m_ui->inputEdit->setText(ToQt(*chosen));
  setting::VtfExportFile.Write(Settings(), *chosen);
  SuggestOutputName(*chosen);
}

void CVTFDialog::OnBrowseOutput() {
  const std::string output = FromQt(m_ui->outputEdit->text());
  const auto chosen = DesktopSeam().ChooseFileToSave(
      this, {.Title = "Name of TGA or VMT Output File",
             .Filter = OutputFilter,
             .StartName = output,
             .StartDirectory = output.empty() ? settings::DocumentsFolder() : std::string()});
  if (chosen) SetOutput(*chosen);
}

void CVTFDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (m_jobs.IsRunning()) return;
  const std::string& first = drop.Paths.front();
  if (drop.IsOver(*m_ui->outputEdit)) return m_ui->outputEdit->setText(ToQt(first));
  const std::vector<std::string> textures = TexturesOf(drop);
  if (textures.size() > 1) return ExtractAll(textures);
  if (!drop.IsOver(*m_ui->inputEdit)) return;
  m_ui->inputEdit->setText(ToQt(first));
  SuggestOutputName(first);
}

void CVTFDialog::ExtractVtf() {
  const std::string output = FromQt(m_ui->outputEdit->text());
  OfferMissingDirectory(output);
  Start({{setting::SdkDirectory.Read(Settings()), FromQt(m_ui->inputEdit->text()), output}});
}

void CVTFDialog::OfferMissingDirectory(const std::string& output) {
  const auto missing = MissingDirectoryOf(output);
  if (!missing) return;
  platform::MessageBoxRequest box{"The directory " + *missing + " does not exist.", "VTF Export",
                                  platform::BoxIcon::Exclamation, platform::BoxButtons::OkCancel};
  box.OkLabel = "Create Directory";
  if (DesktopSeam().ShowBox(this, box) != platform::BoxAnswer::Ok) return;  // the tool says what it thinks of that
  std::error_code error;
  std::filesystem::create_directories(core::NativePath(*missing), error);
  if (error) {
    DesktopSeam().Box(this, platform::BoxIcon::Stop, *missing + " cannot be created: " + error.message(), "Error");
  }
}

void CVTFDialog::ExtractAll(const std::vector<std::string>& inputs) {
  std::vector<tools::VtfExport> exports =
      PlanExports(inputs, FromQt(m_ui->outputEdit->text()), setting::SdkDirectory.Read(Settings()));
  const size_t overwriting = CountOverwriting(exports);
  if (overwriting != 0) {
    const std::string text = std::to_string(overwriting) + " of " + std::to_string(exports.size()) +
                             " textures have been exported before.\nReplace their images?";
    const auto answer = DesktopSeam().ShowBox(
        this, {text, "VTF Export", platform::BoxIcon::Exclamation, platform::BoxButtons::OkCancel});
    if (answer != platform::BoxAnswer::Ok) return;
  }
  Start(std::move(exports));
}

void CVTFDialog::Start(std::vector<tools::VtfExport> exports) {
  const VtfJob job{std::move(exports), setting::WineProgram.Read(Settings())};
  const auto events = std::make_shared<VtfEvents>();
  const auto work = [job, events](platform::JobReport& report, const std::stop_token& stop) {
    RunVtfJob(job, report, stop, *events);
  };
  m_finishedLog.clear();
  m_wholeLog.clear();
  m_runningLog.clear();
  m_ui->logEdit->clear();
  m_ui->progressLabel->setText("Progress:");
  m_ui->progressRow->show();
  m_jobs.Start(work, {.Bar = m_ui->progressBar,
                      .Disabled = m_ui->controls,  // not the rest: the user can stop the job
                      .LogGrew = {},
                      .Tick = [this, events, exported = job.Exports] { ShowEvents(*events, exported); },
                      .Done =
                          [this, events, exported = job.Exports] {
                            ShowEvents(*events, exported);
                            m_ui->progressRow->hide();
                          }});
}

void CVTFDialog::ShowEvents(VtfEvents& events, const std::vector<tools::VtfExport>& exports) {
  using Kind = JobEvent<VtfOutcome>::Kind;
  bool logChanged = false;
  for (const JobEvent<VtfOutcome>& event : events.Take()) {
    if (event.Told == Kind::Started && event.Count > 1) {
      m_ui->inputEdit->setText(ToQt(event.Text));
      SetOutput(exports[event.Index].Output);
      m_ui->progressLabel->setText(QString("Texture %1 of %2:").arg(event.Index + 1).arg(event.Count));
    } else if (event.Told == Kind::Text) {
      m_runningLog += event.Text;
      logChanged = true;
    } else if (event.Told == Kind::Finished) {
      m_runningLog.clear();
      const std::string end = event.Count > 1 ? "\r\n" : "";
      m_finishedLog += event.Text + end;
      m_wholeLog += event.What.WholeLog + end;
      logChanged = true;
      if (event.What.Picture) {
        m_ui->picture->ShowPicture(ToQtImage(*event.What.Picture), ToQt(event.What.File));
      } else {
        m_ui->picture->ShowText(ToQt(event.What.Trouble));
      }
    }
  }
  if (logChanged) ShowLog();
}

void CVTFDialog::ShowLog() {
  const std::string& finished = m_ui->wholeLogButton->isChecked() ? m_wholeLog : m_finishedLog;
  m_ui->logEdit->setPlainText(ToQt(finished + m_runningLog).remove('\r'));
  m_ui->logEdit->verticalScrollBar()->setValue(m_ui->logEdit->verticalScrollBar()->maximum());
}

}  // namespace tarnwick::pages
