#include "pages/vtf_dialog.h"

#include <QFileInfo>
#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <variant>

#include "archives/archive_name.h"
#include "core/paths.h"
#include "core/settings_table.h"
#include "images/preview.h"
#include "jobs/summary.h"
#include "pages/thumbnail_loader.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "settings/documents_folder.h"
#include "tools/vtf_export.h"
#include "ui_vtf_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int PictureSide = 512;  // pixels
constexpr const char* InputFilter = "VTF Files (*.vtf)|*.vtf|";
constexpr const char* OutputFilter =
    "TGA/VMT Files (*.tga,*.vmt)|*.tga;*.vmt|All Files (*.tga,*.jpg,*.gif,*.bmp,*.vmt,*.png,*.dds)|"
    "*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds;*.vmt|";

bool IsTexture(const std::string& path) {
  return core::LowerAscii(path).ends_with(".vtf");
}

/// Whether a name is a path, and not one in an archive or a game.
bool IsOnDisk(const std::string& name) {
  return archives::ReadContentName(name).Where == archives::ContentName::Place::Disk;
}

std::vector<std::string> TexturesOf(const platform::DroppedFiles& drop) {
  std::vector<std::string> textures;
  std::copy_if(drop.Paths.begin(), drop.Paths.end(), std::back_inserter(textures), IsTexture);
  return textures;
}

}  // namespace

/// Pictures of the textures that are done, on their way from the job's thread to the window's.
struct CVTFDialog::Pictures {
  struct Each {
    std::optional<images::PreviewImage> Picture;
    std::string Reason;  // why there is none
  };
  void Add(size_t item, Each each) {
    const std::lock_guard lock(m_mutex);
    m_pictures[item] = std::move(each);
  }
  Each Take(size_t item) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_pictures.extract(item);
    return found.empty() ? Each() : found.mapped();
  }

 private:
  std::mutex m_mutex;
  std::map<size_t, Each> m_pictures;
};

/// Passes everything on, and has a picture ready of each texture that is told to be done.
class CVTFDialog::PicturingHost : public jobs::Host {
 public:
  PicturingHost(jobs::Host& inner, Pictures& pictures, const std::stop_token& stop)
      : m_inner(inner), m_pictures(pictures) {
    m_worker.StopWith(stop);
  }
  void On(const jobs::Event& event) override {
    const auto* finished = std::get_if<jobs::ItemFinished>(&event);
    if (finished != nullptr && !finished->Result.Files.empty()) {
      Pictures::Each each;
      // An image of an uncommon format has a TGA file beside it that shows the same.
      each.Picture =
          images::LoadPreview(tools::SuggestOutputName(finished->Result.Target), PictureSide, m_worker, &each.Reason);
      m_pictures.Add(finished->Item, std::move(each));
    }
    m_inner.On(event);
  }
  bool Ask(const jobs::Question& question) override { return m_inner.Ask(question); }

 private:
  jobs::Host& m_inner;
  Pictures& m_pictures;
  images::ImageWorker m_worker;
};

CVTFDialog::CVTFDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent), m_ui(std::make_unique<Ui::VtfDialog>()), m_job(*this) {
  m_ui->setupUi(this);
  m_ui->picture->ShowText("The exported texture is shown here");
  m_ui->progressRow->hide();
  connect(m_ui->browseInputButton, &QAbstractButton::clicked, this, &CVTFDialog::OnBrowseInput);
  connect(m_ui->browseOutputButton, &QAbstractButton::clicked, this, &CVTFDialog::OnBrowseOutput);
  connect(m_ui->extractButton, &QAbstractButton::clicked, this, &CVTFDialog::ExtractVtf);
  AddContentButton(*m_ui->browseInputButton, "Game co&ntent...", archives::ContentKind::Texture);
  connect(m_ui->wholeLogButton, &QAbstractButton::toggled, this, &CVTFDialog::ShowLog);
  connect(m_ui->inputEdit, &QLineEdit::textChanged, this, &CVTFDialog::ShowTexture);
  connect(m_ui->stopButton, &QAbstractButton::clicked, this, [this] { m_job.RequestStop(); });
}

CVTFDialog::~CVTFDialog() = default;

void CVTFDialog::OnInitDialog() {
  CPage::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->inputEdit->setText(ToQt(setting::VtfExportFile.Read(Settings())));
  m_ui->outputEdit->setText(ToQt(setting::TgaExportFile.Read(Settings())));
}

void CVTFDialog::ShowTexture() {
  const auto content = NewContent();
  m_ui->texture->ShowFile(m_ui->inputEdit->text(), {content, &content->Files()});
  if (!m_job.IsRunning()) m_ui->pictureTabs->setCurrentWidget(m_ui->texture);
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
  if (IsOnDisk(input)) return SetOutput(tools::SuggestOutputName(input));
  // Nothing can be written beside it: it goes where the last one went.
  const std::string last = FromQt(m_ui->outputEdit->text());
  std::string folder(core::DirectoryWithSeparator(last));
  if (folder.empty() || !IsOnDisk(folder)) folder = settings::DocumentsFolder() + core::PathSeparator;
  SetOutput(folder + tools::SuggestOutputName(core::LastComponent(input.substr(input.find_last_of(':') + 1))));
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
  if (m_job.IsRunning()) return;
  const std::string& first = drop.Paths.front();
  if (drop.IsOver(*m_ui->outputEdit)) return m_ui->outputEdit->setText(ToQt(first));
  const std::vector<std::string> textures = TexturesOf(drop);
  if (textures.size() > 1) return ExtractAll(textures);
  // A texture counts wherever it is dropped, anything else on the box alone.
  if (textures.empty() && !drop.IsOver(*m_ui->inputEdit)) return;
  const std::string& input = drop.IsOver(*m_ui->inputEdit) ? first : textures.front();
  m_ui->inputEdit->setText(ToQt(input));
  SuggestOutputName(input);
}

size_t CVTFDialog::OpenFiles(const std::vector<std::string>& paths) {
  const auto first = std::find_if(paths.begin(), paths.end(), IsTexture);
  if (first == paths.end()) return 0;
  m_ui->inputEdit->setText(ToQt(*first));  // further ones are not exported unasked
  SuggestOutputName(*first);
  return 1;
}

void CVTFDialog::ExtractVtf() {
  Start({.Inputs = {FromQt(m_ui->inputEdit->text())},
         .Place = jobs::ImagePlace::ExactlyOutput,
         .Output = FromQt(m_ui->outputEdit->text())});
}

void CVTFDialog::ExtractAll(const std::vector<std::string>& inputs) {
  if (std::all_of(inputs.begin(), inputs.end(), IsOnDisk)) {
    return Start(
        {.Inputs = inputs, .Place = jobs::ImagePlace::BesideInput, .Output = FromQt(m_ui->outputEdit->text())});
  }
  const auto folder = DesktopSeam().ChooseFolder(
      this, "Folder for the Images", std::string(core::DirectoryWithSeparator(FromQt(m_ui->outputEdit->text()))));
  if (!folder) return;
  const QString ending = QFileInfo(m_ui->outputEdit->text()).suffix();
  Start({.Inputs = inputs, .Place = jobs::ImagePlace::Output, .Output = *folder, .Format = FromQt(ending.toLower())});
}

void CVTFDialog::Start(jobs::ExportTextures job) {
  job.Content = NewContent();
  job.KeepTga = true;
  job.SdkDirectory = setting::SdkDirectory.Read(Settings());
  job.Start.WineProgram = setting::WineProgram.Read(Settings());
  m_finishedLog.clear();
  m_wholeLog = m_runningLog = tools::WholeLog(KeptBytes);
  m_note.clear();
  m_count = 0;
  m_ui->logEdit->Clear();
  m_ui->progressLabel->setText("Progress:");
  m_ui->progressRow->show();
  const auto pictures = std::make_shared<Pictures>();
  m_job.Start(
      [job, pictures](jobs::Host& host, const std::stop_token& stop) {
        PicturingHost picturing(host, *pictures, stop);
        jobs::Run(job, picturing, stop);
      },
      {.Bar = m_ui->progressBar,
       .Disabled = m_ui->controls,  // not the rest: the user can stop the job
       .Boxes = JobBoxes::Always,
       .OnEvent = [this, pictures](const jobs::Event& event) { Show(event, *pictures); }});
}

void CVTFDialog::Show(const jobs::Event& event, Pictures& pictures) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Started& started) { m_count = started.Count; },
                 [this](const jobs::ItemStarted& started) {
                   if (m_count < 2) return;
                   m_ui->inputEdit->setText(ToQt(started.Input));
                   SetOutput(started.Target);
                   m_ui->progressLabel->setText(QString("Texture %1 of %2:").arg(started.Item + 1).arg(m_count));
                 },
                 [this](const jobs::Line& line) {
                   if (line.Item == jobs::NoItem) {
                     m_note += line.Text;
                     return;
                   }
                   m_runningLog.Append(line.Text);
                   m_ui->logEdit->Append(line.Text);
                 },
                 [&](const jobs::ItemFinished& finished) { OnItemFinished(finished, pictures); },
                 [this](const jobs::Finished& finished) { OnFinished(finished.Result); },
                 [](const auto&) {},
             },
             event);
}

void CVTFDialog::OnItemFinished(const jobs::ItemFinished& finished, Pictures& pictures) {
  const jobs::ItemResult& result = finished.Result;
  const std::string end = m_count > 1 ? "\r\n" : "";
  m_finishedLog += result.Shown + end;
  m_wholeLog.Append(m_runningLog.Text() + result.Notes + end);
  m_runningLog = tools::WholeLog(KeptBytes);
  ShowLog();
  const Pictures::Each each = pictures.Take(finished.Item);
  m_ui->pictureTabs->setCurrentWidget(m_ui->picture);
  if (each.Picture) {
    m_ui->picture->ShowPicture(ToQtImage(*each.Picture), ToQt(result.Files.front().Path));
  } else {
    m_ui->picture->ShowText(each.Reason.empty() ? "No texture was exported" : "No picture: " + ToQt(each.Reason));
  }
}

void CVTFDialog::OnFinished(const jobs::JobResult& result) {
  m_ui->progressRow->hide();
  std::string last = m_note;
  if (result.Items.size() > 1) {
    last += jobs::SummaryLine(result, "texture") + "\r\n";
    for (const jobs::ItemResult& item : result.Items) {
      const core::Trouble* error = item.First(core::Severity::Error);
      if (error != nullptr)
        last += item.Input + ": " + (error->Details.empty() ? error->Text : error->Details) + "\r\n";
    }
  }
  if (last.empty()) return;
  m_finishedLog += last;
  m_wholeLog.Append(last);
  ShowLog();
}

void CVTFDialog::ShowLog() {
  m_ui->logEdit->Clear();
  m_ui->logEdit->Append((m_ui->wholeLogButton->isChecked() ? m_wholeLog.Text() : m_finishedLog) + m_runningLog.Text());
}

}  // namespace tarnwick::pages
