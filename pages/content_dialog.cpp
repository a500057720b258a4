#include "pages/content_dialog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QShortcut>
#include <QTimer>
#include <algorithm>

#include "archives/archive_name.h"
#include "core/byte_size.h"
#include "core/paths.h"
#include "core/settings_table.h"
#include "pages/content_extraction_job.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "ui_content_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using archives::ContentKind;
using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int MillisecondsBetweenLooks = 1000;  // for archives that changed on the disk
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

QByteArray Decoded(const std::string& text) {
  return QByteArray::fromBase64(QByteArray::fromStdString(text));
}

}  // namespace

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
  m_changes.setInterval(MillisecondsBetweenLooks);
  connect(&m_changes, &QTimer::timeout, &m_reader, &ContentReader::LookForChanges);
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
  connect(&m_reader, &ContentReader::Changed, this, &CContentDialog::Refresh);
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

void CContentDialog::showEvent(QShowEvent* event) {
  CDialog::showEvent(event);
  m_changes.start();
}

void CContentDialog::hideEvent(QHideEvent* event) {
  CDialog::hideEvent(event);
  m_changes.stop();
}

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
  return {.GameDirectory = GameDirectory()};
}

std::string CContentDialog::GameDirectory() const {
  return m_context.GameDirectory ? *m_context.GameDirectory : setting::GameDirectory.Read(m_context.Settings);
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
  m_ui->list->ShowIndex(nullptr, {});
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
  m_ui->list->Rows().Pictures().Forget();
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
  m_ui->list->ShowIndex(index, GameDirectory());
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
                                             .StartDirectory = GameDirectory()});
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
  const auto job = std::make_shared<ContentExtractionJob>(m_reader.Index(), files, *folder);
  m_ui->progressBar->setRange(0, static_cast<int>(files.size()));
  m_ui->progressBar->setValue(0);
  m_ui->progressBar->show();
  m_ui->stopButton->show();
  m_ui->folderButton->hide();
  m_ui->statusLabel->setText("Extracting " + FilesText(files.size()) + " to " + ShownName(*folder));
  m_jobs.Start([job](platform::JobReport& report, const std::stop_token& stop) { job->Run(report, stop); },
               {.Disabled = m_ui->extractButton,
                .LogGrew = {},
                .Tick = [this, job] { m_ui->progressBar->setValue(static_cast<int>(job->Done())); },
                .Done = [this, job] { OnExtracted(*job); }});
}

void CContentDialog::OnExtracted(const ContentExtractionJob& done) {
  m_ui->progressBar->hide();
  m_ui->stopButton->hide();
  m_outcome = done.Outcome();
  m_outputFolder = done.Folder();
  m_ui->folderButton->setVisible(done.WroteAny());
  ShowState();
  if (const auto failures = done.Failures(); !failures.Text.empty()) DesktopSeam().ShowBox(this, failures);
}

void CContentDialog::Drag() {
  const auto index = m_reader.Index();
  const std::vector<uint32_t> selected = m_ui->list->SelectedFiles();
  if (index == nullptr || selected.empty()) return;
  std::vector<std::string> names;
  names.reserve(selected.size());
  for (const uint32_t file : selected) names.push_back(NameOf(file));
  const QString problem = m_drags.Drag(*m_ui->list, *index, ChosenFiles(), names);
  if (problem.isEmpty()) return;
  m_outcome = ShownName(FromQt(problem));
  ShowState();
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
