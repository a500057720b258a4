#include "pages/content_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDrag>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLocale>
#include <QMimeData>
#include <QShortcut>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <numeric>
#include <thread>

#include "archives/archive_name.h"
#include "archives/content_extraction.h"
#include "core/byte_size.h"
#include "core/paths.h"
#include "core/settings_table.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "ui_content_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using archives::ContentKind;
using platform::FromQt;
using platform::ToQt;

namespace {

constexpr uint64_t MostDragBytes = uint64_t{512} << 20;
constexpr size_t MostDragFiles = 2000;
constexpr size_t KeptDragFolders = 8;
constexpr int TreeShare = 1;
constexpr int ListShare = 3;

struct KindRow {
  const char* Text;
  std::optional<ContentKind> Kind;
};
const KindRow KindRows[] = {{"All files", {}},
                            {"Models", ContentKind::Model},
                            {"Textures", ContentKind::Texture},
                            {"Materials", ContentKind::Material}};

QString FilesText(size_t count) {
  return count == 1 ? QString("1 file") : QLocale(QLocale::English).toString(qulonglong{count}) + " files";
}

uint64_t BytesOf(const archives::ContentIndex& index, const std::vector<uint32_t>& files) {
  return std::accumulate(files.begin(), files.end(), uint64_t{0},
                         [&](uint64_t sum, uint32_t file) { return sum + index.Size(file); });
}

/// Keeps the first of the troubles for the box, and counts.
class FirstTroubles : public core::TroubleSink {
 public:
  void Tell(const core::Trouble& trouble) override {
    constexpr size_t Most = 5;
    if (Texts.size() < Most) Texts.push_back(trouble.Text);
  }
  std::vector<std::string> Texts;
};

QByteArray Decoded(const std::string& text) {
  return QByteArray::fromBase64(QByteArray::fromStdString(text));
}

}  // namespace

/// An extraction, told from its thread to the window's.
struct CContentDialog::Extracting {
  Extracting(std::shared_ptr<const archives::ContentIndex> index, std::vector<uint32_t> files, std::string folder)
      : Index(std::move(index)), Files(std::move(files)), Folder(std::move(folder)) {}

  const std::shared_ptr<const archives::ContentIndex> Index;
  const std::vector<uint32_t> Files;
  const std::string Folder;
  std::atomic<size_t> Done = 0;
  bool Refused = false;  // by the user, who was asked about older files
  archives::Extraction Result = {};
  FirstTroubles Troubles = {};
};

CContentDialog::CContentDialog(const ContentContext& context, QWidget* parent)
    : CDialog(context.Desktop, parent), m_context(context), m_ui(std::make_unique<Ui::ContentDialog>()), m_jobs(*this) {
  m_ui->setupUi(this);
  setWindowFlags(Qt::Window);
  for (const KindRow& row : KindRows) m_ui->kindCombo->addItem(row.Text);
  m_ui->splitter->setStretchFactor(0, TreeShare);
  m_ui->splitter->setStretchFactor(1, ListShare);
  m_ui->splitter->setSizes({260, 780});
  m_ui->progressBar->hide();
  m_ui->stopButton->hide();
  m_ui->folderButton->hide();
  m_ui->noticeLabel->hide();
  m_ui->list->OnDrag = [this] { Drag(); };
  m_ui->searchEdit->installEventFilter(this);
  connect(m_ui->searchEdit, &QLineEdit::textChanged, this, &CContentDialog::Search);
  connect(m_ui->belowCheck, &QAbstractButton::toggled, this, &CContentDialog::Search);
  connect(m_ui->kindCombo, &QComboBox::currentIndexChanged, this, [this] {
    m_ui->tree->Show(m_reader.Index(), Kind());
    Search();
  });
  connect(m_ui->tree, &QTreeWidget::currentItemChanged, this, &CContentDialog::Search);
  connect(m_ui->list, &CContentList::OrderChanged, this, &CContentDialog::Search);
  connect(m_ui->list, &QAbstractItemView::doubleClicked, this, &CContentDialog::OnOpen);
  connect(m_ui->list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    m_outcome.clear();
    ShowState();
  });
  connect(&m_reader, &ContentReader::Opened, this, &CContentDialog::OnOpened);
  connect(&m_reader, &ContentReader::Found, this, &CContentDialog::OnFound);
  connect(m_ui->openButton, &QAbstractButton::clicked, this, &CContentDialog::OnOpen);
  connect(m_ui->extractButton, &QAbstractButton::clicked, this, &CContentDialog::OnExtract);
  connect(m_ui->stopButton, &QAbstractButton::clicked, this, [this] { m_jobs.RequestStop(); });
  connect(m_ui->folderButton, &QAbstractButton::clicked, this, [this] { DesktopSeam().Open(m_outputFolder); });
  connect(m_ui->archiveButton, &QAbstractButton::clicked, this, &CContentDialog::OnOpenArchive);
  connect(m_ui->gameButton, &QAbstractButton::clicked, this, [this] { Show(GameSource(), Kind()); });
  connect(m_ui->refreshButton, &QAbstractButton::clicked, this, &CContentDialog::Refresh);
  connect(m_ui->configureButton, &QAbstractButton::clicked, this, &CContentDialog::OnConfigure);
  connect(m_ui->closeButton, &QAbstractButton::clicked, this, &QDialog::reject);
  connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, &CContentDialog::Refresh);
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
    m_ui->searchEdit->setFocus(Qt::ShortcutFocusReason);
    m_ui->searchEdit->selectAll();
  });
  connect(new QShortcut(QKeySequence::Copy, m_ui->list, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated,
          this, [this] {
            QStringList names;
            for (const uint32_t file : m_ui->list->SelectedFiles()) names << ToQt(NameOf(file));
            QGuiApplication::clipboard()->setText(names.join('\n'));
          });
}

CContentDialog::~CContentDialog() = default;

void CContentDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  restoreGeometry(Decoded(setting::ContentGeometry.Read(m_context.Settings)));
  m_ui->splitter->restoreState(Decoded(setting::ContentSplit.Read(m_context.Settings)));
  AcceptFiles();
}

void CContentDialog::SaveSettings() {
  if (!IsCreated()) return;
  const auto write = [this](const core::TextSetting& value, const QByteArray& bytes) {
    value.Write(m_context.Settings, bytes.toBase64().toStdString());
  };
  write(setting::ContentGeometry, saveGeometry());
  write(setting::ContentSplit, m_ui->splitter->saveState());
}

void CContentDialog::OnCancel() {
  SaveSettings();
  CDialog::OnCancel();
}

ContentSource CContentDialog::GameSource() const {
  return {.GameDirectory = setting::GameDirectory.Read(m_context.Settings)};
}

std::optional<ContentKind> CContentDialog::Kind() const {
  return KindRows[static_cast<size_t>(std::max(m_ui->kindCombo->currentIndex(), 0))].Kind;
}

void CContentDialog::BrowseGame(std::optional<ContentKind> kind) {
  Show(GameSource(), kind);
}

void CContentDialog::BrowseArchives(const std::vector<std::string>& paths) {
  Show({.Archives = paths}, {});
}

void CContentDialog::Show(const ContentSource& source, std::optional<ContentKind> kind) {
  Create();
  const bool same = source == m_source && (m_reader.Index() != nullptr || m_reader.IsOpening());
  if (!same) {
    m_source = source;
    m_ui->tree->Forget();
    m_ui->searchEdit->clear();
    Read();
  }
  for (size_t i = 0; i < std::size(KindRows); ++i) {
    if (KindRows[i].Kind == kind) m_ui->kindCombo->setCurrentIndex(static_cast<int>(i));
  }
  show();
  raise();
  activateWindow();
  m_ui->searchEdit->setFocus();
}

void CContentDialog::Read() {
  const bool isGame = m_source.Archives.empty();
  m_outcome.clear();
  m_ui->gameButton->setEnabled(!isGame);
  setWindowTitle(isGame ? QString("Game content") : ShownName(core::LastComponent(m_source.Archives.front())));
  m_ui->noticeLabel->hide();
  m_ui->tree->Show(nullptr, {});
  m_ui->list->ShowIndex(nullptr);
  if (isGame && m_source.GameDirectory.empty()) {
    m_reader.Open({});  // ends what is read for another source
    return ShowMessage(
        "No game directory is set.\nConfigure tells the program where the game's gameinfo.txt lies; its "
        "models, textures and materials are then shown here, those in its archives too.",
        true);
  }
  ShowMessage("Reading " + ShownName(isGame ? m_source.GameDirectory : m_source.Archives.front()) + " ...");
  m_reader.Open(m_source);
}

void CContentDialog::Refresh() {
  if (m_source.Archives.empty()) m_source = GameSource();
  Read();
}

void CContentDialog::OnConfigure() {
  if (m_context.Configure) m_context.Configure();
  Refresh();
}

void CContentDialog::OnOpened() {
  if (m_source == ContentSource()) return;  // there is no game directory, which has been told
  const auto& index = m_reader.Index();
  if (index == nullptr) {
    const bool isGame = m_source.Archives.empty();
    const QString what = isGame ? "The game's content cannot be shown." : "The archive cannot be shown.";
    return ShowMessage(what + "\n" + ShownName(m_reader.Reason()), isGame);
  }
  const std::vector<std::string>& notes = m_reader.Notes();
  if (!notes.empty()) {
    QString text = ShownName(notes.front());
    if (notes.size() > 1) text += QString("\n... and %1 more places that cannot be read").arg(notes.size() - 1);
    m_ui->noticeLabel->setText(text);
    m_ui->noticeLabel->show();
  }
  m_ui->list->ShowIndex(index);
  m_ui->tree->Show(index, Kind());
  Search();
}

void CContentDialog::Search() {
  if (m_reader.Index() == nullptr) return;
  m_outcome.clear();
  m_reader.Search({.Place = m_ui->tree->Place(),
                   .Folder = m_ui->tree->Folder(),
                   .Below = m_ui->belowCheck->isChecked(),
                   .Words = FromQt(m_ui->searchEdit->text()),
                   .Kind = Kind(),
                   .Order = m_ui->list->Order(),
                   .Backwards = m_ui->list->Backwards()});
}

void CContentDialog::OnFound(const std::vector<uint32_t>& files) {
  m_ui->list->Rows().SetFiles(files);
  m_ui->list->scrollToTop();
  if (!files.empty()) {
    m_ui->stack->setCurrentWidget(m_ui->listPage);
    return ShowState();
  }
  const QString what = Kind() ? m_ui->kindCombo->currentText().toLower() : "files";
  if (!m_ui->searchEdit->text().trimmed().isEmpty()) {
    ShowMessage("No " + what + " in this folder or below have these words in their names.");
  } else {
    ShowMessage(m_ui->belowCheck->isChecked() ? "There are no " + what + " here."
                                              : "There are no " + what + " in this folder itself.");
  }
}

void CContentDialog::ShowMessage(const QString& text, bool configure) {
  m_ui->messageLabel->setText(text);
  m_ui->configureButton->setVisible(configure && m_context.Configure);
  m_ui->stack->setCurrentWidget(m_ui->messagePage);
  ShowState();
}

/// What the status line says, and which buttons are of use.
void CContentDialog::ShowState() {
  const size_t listed = m_ui->list->Rows().Files().size();
  const auto index = m_reader.Index();
  const std::vector<uint32_t> selected = listed > 0 ? m_ui->list->SelectedFiles() : std::vector<uint32_t>();
  m_ui->openButton->setEnabled(!selected.empty());
  m_ui->extractButton->setEnabled(listed > 0 && !m_jobs.IsRunning());
  m_ui->extractButton->setText(selected.empty() ? "E&xtract All..." : "E&xtract...");
  if (m_jobs.IsRunning()) return;
  if (!m_outcome.isEmpty()) return m_ui->statusLabel->setText(m_outcome);
  m_ui->folderButton->hide();
  QString text = listed > 0 ? FilesText(listed) : QString();
  if (!selected.empty()) {
    text +=
        ", " + FilesText(selected.size()) + " selected (" + ToQt(core::FormatByteSize(BytesOf(*index, selected))) + ")";
  }
  m_ui->statusLabel->setText(text);
}

std::string CContentDialog::NameOf(uint32_t file) const {
  const archives::ContentIndex& index = *m_reader.Index();
  // Of a game the program finds what the game finds, companions too; of one place, what lies there.
  const bool throughGame = m_source.Archives.empty() && !m_ui->tree->Place() && !index.IsHidden(file);
  return throughGame ? "game:" + index.Name(file) : index.FullName(file);
}

std::vector<uint32_t> CContentDialog::ChosenFiles() const {
  const auto& index = m_reader.Index();
  if (index == nullptr) return {};
  std::vector<uint32_t> files = m_ui->list->SelectedFiles();
  if (files.empty()) files = m_ui->list->Rows().Files();
  if (m_ui->companionsCheck->isChecked()) files = index->WithCompanions(files, !m_ui->tree->Place());
  return files;
}

void CContentDialog::OnOpen() {
  const std::vector<uint32_t> files = m_ui->list->SelectedFiles();
  if (files.empty()) return;
  std::vector<std::string> names;
  std::vector<std::string> archives;
  for (const uint32_t file : files) {
    const bool isLoose = m_reader.Index()->Places()[m_reader.Index()->PlaceOf(file)].InArchive == nullptr;
    const std::string path = m_reader.Index()->FullName(file);
    if (isLoose && archives::HasArchiveExtension(path)) {
      archives.push_back(path);
    } else {
      names.push_back(NameOf(file));
    }
  }
  if (names.empty()) return BrowseArchives(archives);
  if (m_context.Open && m_context.Open(names) > 0) return;
  m_outcome = "No page works on files of this kind: extract them to use them elsewhere.";
  ShowState();
}

void CContentDialog::OnOpenArchive() {
  const auto chosen =
      DesktopSeam().ChooseFilesToOpen(this, {.Title = "Open Archive",
                                             .Filter = "Archives (*.vpk;*.gma)|*.vpk;*.gma|All Files|*|",
                                             .StartName = {},
                                             .StartDirectory = setting::GameDirectory.Read(m_context.Settings)});
  if (chosen) BrowseArchives(*chosen);
}

void CContentDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  std::vector<std::string> archives;
  std::copy_if(drop.Paths.begin(), drop.Paths.end(), std::back_inserter(archives), [](const std::string& path) {
    return archives::ReadContentName(path).Where == archives::ContentName::Place::Disk &&
           archives::HasArchiveExtension(path);
  });
  if (!archives.empty()) BrowseArchives(archives);
}

void CContentDialog::OnExtract() {
  const std::vector<uint32_t> files = ChosenFiles();
  if (files.empty() || m_jobs.IsRunning()) return;
  const auto folder = DesktopSeam().ChooseFolder(this, "Folder to Extract " + FromQt(FilesText(files.size())) + " To",
                                                 setting::ContentOutput.Read(m_context.Settings));
  if (!folder) return;
  setting::ContentOutput.Write(m_context.Settings, *folder);
  const auto state = std::make_shared<Extracting>(m_reader.Index(), files, *folder);
  m_ui->progressBar->setRange(0, static_cast<int>(files.size()));
  m_ui->progressBar->setValue(0);
  m_ui->progressBar->show();
  m_ui->stopButton->show();
  m_ui->folderButton->hide();
  m_ui->statusLabel->setText("Extracting " + FilesText(files.size()) + " to " + ShownName(*folder));
  m_jobs.Start(
      [state](platform::JobReport& report, const std::stop_token& stop) {
        const size_t older = archives::CountExisting(*state->Index, state->Files, state->Folder);
        if (older > 0) {
          platform::MessageBoxRequest box;
          box.Text = FromQt(FilesText(older)) + (older == 1 ? " is" : " are") +
                     " there already and will be replaced:\n" + state->Folder;
          box.Caption = "Extract";
          box.Icon = platform::BoxIcon::Question;
          box.Buttons = platform::BoxButtons::OkCancel;
          box.OkLabel = "Replace";
          box.RefusalIsDefault = true;
          state->Refused = report.Ask(box) != platform::BoxAnswer::Ok;
          if (state->Refused) return;
        }
        state->Result = archives::ExtractContent(*state->Index, state->Files, state->Folder, state->Troubles, stop,
                                                 [&](const std::string&, size_t done) { state->Done = done; });
      },
      {.Disabled = m_ui->extractButton,
       .LogGrew = {},
       .Tick = [this, state] { m_ui->progressBar->setValue(static_cast<int>(state->Done)); },
       .Done = [this, state] { OnExtracted(*state); }});
}

void CContentDialog::OnExtracted(const Extracting& done) {
  m_ui->progressBar->hide();
  m_ui->stopButton->hide();
  const std::vector<archives::ExtractedFile>& files = done.Result.Files;
  uint64_t bytes = 0;
  for (const archives::ExtractedFile& file : files) bytes += file.Size;
  m_outcome =
      FilesText(files.size()) + " (" + ToQt(core::FormatByteSize(bytes)) + ") extracted to " + ShownName(done.Folder);
  if (done.Refused) m_outcome = "Nothing was extracted.";
  if (done.Result.Stopped) m_outcome = "Stopped: " + m_outcome;
  m_outputFolder = done.Folder;
  m_ui->folderButton->setVisible(!files.empty());
  ShowState();
  if (done.Result.Failed == 0) return;
  platform::MessageBoxRequest box;
  box.Text = FromQt(FilesText(done.Result.Failed)) + " could not be extracted.";
  box.Caption = "Error";
  box.Icon = platform::BoxIcon::Stop;
  for (const std::string& text : done.Troubles.Texts) box.Details += (box.Details.empty() ? "" : "\n") + text;
  if (done.Result.Failed > done.Troubles.Texts.size()) box.Details += "\n...";
  DesktopSeam().ShowBox(this, box);
}

std::vector<std::string> CContentDialog::WriteForDrag(const archives::ContentIndex& index,
                                                      const std::vector<uint32_t>& files, const std::stop_token& stop,
                                                      std::string& reason) {
  auto folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + "/tarnwick-drag-XXXXXX");
  if (!folder->isValid()) {
    reason = FromQt(folder->errorString());
    return {};
  }
  FirstTroubles troubles;
  const archives::Extraction done = archives::ExtractContent(index, files, FromQt(folder->path()), troubles, stop, {});
  if (!troubles.Texts.empty()) reason = troubles.Texts.front();
  std::vector<std::string> paths;
  for (const archives::ExtractedFile& file : done.Files) paths.push_back(file.Path);
  m_dragFolders.push_back(std::move(folder));
  // The program that the files were dropped on may still be reading the last ones.
  if (m_dragFolders.size() > KeptDragFolders) m_dragFolders.pop_front();
  if (done.Stopped) paths.clear();
  return paths;
}

std::unique_ptr<QMimeData> CContentDialog::DragData(const std::vector<uint32_t>& files,
                                                    const std::vector<std::string>& paths) const {
  auto dragged = std::make_unique<QMimeData>();
  QList<QUrl> urls;
  for (const std::string& path : paths) urls << QUrl::fromLocalFile(ToQt(path));
  dragged->setUrls(urls);
  std::vector<std::string> names;
  for (const uint32_t file : files) names.push_back(NameOf(file));
  platform::PutNames(*dragged, names);
  return dragged;
}

/// Drags the selected files. They are written first, beside the window, while the user holds the button.
void CContentDialog::Drag() {
  const auto index = m_reader.Index();
  const std::vector<uint32_t> selected = m_ui->list->SelectedFiles();
  if (index == nullptr || selected.empty() || m_dragging) return;
  const std::vector<uint32_t> files = ChosenFiles();
  if (files.size() > MostDragFiles || BytesOf(*index, files) > MostDragBytes) {
    m_outcome = "That is too much to be dragged: extract it.";
    return ShowState();
  }
  m_dragging = true;
  std::vector<std::string> paths;
  std::string reason;
  std::atomic<bool> ended = false;
  std::jthread writer([&](const std::stop_token& stop) {
    paths = WriteForDrag(*index, files, stop, reason);
    ended = true;
  });
  QEventLoop loop;
  QTimer timer;
  connect(&timer, &QTimer::timeout, &loop, [&] {
    if (QApplication::mouseButtons() == Qt::NoButton) writer.request_stop();  // let go too early
    if (ended) loop.quit();
  });
  timer.start(10);
  loop.exec(QEventLoop::ExcludeSocketNotifiers);
  writer.join();
  if (!reason.empty()) {
    m_outcome = ShownName(reason);
    ShowState();
  }
  if (!paths.empty() && QApplication::mouseButtons() != Qt::NoButton) {
    auto* drag = new QDrag(m_ui->list);
    drag->setMimeData(DragData(selected, paths).release());
    drag->exec(Qt::CopyAction);
  }
  m_dragging = false;
}

bool CContentDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_ui->searchEdit && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    const bool goesDown = key->key() == Qt::Key_Down || key->key() == Qt::Key_PageDown;
    if (key->key() == Qt::Key_Escape && !m_ui->searchEdit->text().isEmpty()) {
      m_ui->searchEdit->clear();
      return true;
    }
    if ((isEnter || goesDown) && !m_reader.IsSearching() && !m_ui->list->Rows().Files().empty() &&
        m_ui->list->SelectedFiles().empty()) {
      m_ui->list->setCurrentIndex(m_ui->list->Rows().index(0, 0));
      m_ui->list->setFocus(Qt::ShortcutFocusReason);
      return true;
    }
    if (goesDown) {
      m_ui->list->setFocus(Qt::ShortcutFocusReason);
      return true;
    }
  }
  return CDialog::eventFilter(watched, event);
}

}  // namespace tarnwick::pages
