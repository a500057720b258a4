#include "app/kilndesk_dlg.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>
#include <algorithm>
#include <iterator>

#include "app/about_dlg.h"
#include "app/game_config_dialog.h"
#include "app/game_directory_help_dialog.h"
#include "app/help_window.h"
#include "app/page_area.h"
#include "archives/archive_name.h"
#include "core/paths.h"
#include "core/settings_table.h"
#include "pages/web_addresses.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/job_runner.h"
#include "platform/look.h"
#include "platform/tab_order.h"
#include "platform/text.h"
#include "project/project_store.h"
#include "ui_kilndesk_dlg.h"

namespace tarnwick::app {

namespace setting = core::setting;
using platform::JobRunner;
using platform::ToQt;

namespace {

/// What the document about the window calls the pages, by tab.
constexpr std::array<const char*, 4> HelpHeadings = {"Compiling models", "Compiling materials", "Decompiling a model",
                                                     "Exporting textures"};

bool IsMaterial(const std::string& path) {
  return core::LowerAscii(path).ends_with(".vmt");
}

/// The archives among files on the disk.
std::vector<std::string> ArchivesOf(const std::vector<std::string>& paths) {
  std::vector<std::string> archives;
  std::copy_if(paths.begin(), paths.end(), std::back_inserter(archives), [](const std::string& path) {
    return archives::ReadContentName(path).Where == archives::ContentName::Place::Disk &&
           archives::HasArchiveExtension(path);
  });
  return archives;
}

}  // namespace

CKilndeskDlg::CKilndeskDlg(core::AppSettings& settings, platform::Desktop& desktop)
    : CDialog(desktop),
      m_settings(settings),
      m_ui(std::make_unique<Ui::KilndeskDlg>()),
      m_context{settings,
                desktop,
                m_modelOptions,
                &m_pageLog,
                [this] { OnConfigure(); },
                [this](pages::CPage& page, std::optional<archives::ContentKind> kind) { OnBrowseContent(page, kind); },
                [this](std::optional<archives::ContentKind> kind, const pages::ContentTaker& take) {
                  OnBrowseContentFor(kind, take);
                }},
      m_modelPage(m_context),
      m_materialPage(m_context),
      m_decompilerPage(m_context),
      m_texturePage(m_context),
      m_pages{&m_modelPage, &m_materialPage, &m_decompilerPage, &m_texturePage} {
  m_ui->setupUi(this);
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
  platform::ShowAsReadOnly(*m_ui->gameDirectoryLabel);
  connect(m_ui->exitButton, &QAbstractButton::clicked, this, &QDialog::reject);
  connect(m_ui->aboutButton, &QAbstractButton::clicked, this, &CKilndeskDlg::OnAbout);
  connect(m_ui->updatesButton, &QAbstractButton::clicked, this, &CKilndeskDlg::OnCheckForUpdates);
  connect(m_ui->helpButton, &QAbstractButton::clicked, this, &CKilndeskDlg::OnHelp);
  connect(m_ui->configureButton, &QAbstractButton::clicked, this, &CKilndeskDlg::OnConfigure);
  connect(m_ui->gameDirectoryHelpButton, &QAbstractButton::clicked, this, &CKilndeskDlg::OnGameDirectoryHelp);
  connect(&m_materialPage, &pages::CMatDialog::MaterialDirectoryChanged, &m_modelPage,
          &pages::CMDLSelDialog::SetMaterialDirectory);
  // Ctrl-Tab belongs to the inner tabs while the focus is there.
  connect(new QShortcut(QKeySequence("Ctrl+PgDown"), this), &QShortcut::activated, this, [this] { TurnTo(1); });
  connect(new QShortcut(QKeySequence("Ctrl+PgUp"), this), &QShortcut::activated, this, [this] { TurnTo(-1); });
  connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this, &CKilndeskDlg::OnHelp);
}

CKilndeskDlg::~CKilndeskDlg() = default;

void CKilndeskDlg::TurnTo(int step) {
  const int count = m_ui->tabs->count();
  m_ui->tabs->setCurrentIndex((m_ui->tabs->currentIndex() + count + step) % count);
}

void CKilndeskDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  platform::LoadCaptionBitmaps(*m_ui->gameDirectoryHelpButton);
  ShowGameDirectory();
  project::LoadOptionsFromSettings(m_settings, m_modelOptions);
  // The order counts: the material page pushes its directory into the model page's form as it starts.
  AddPage(m_modelPage, "Model Compile");
  AddPage(m_materialPage, "Material Compile");
  AddPage(m_decompilerPage, "Model Decompile");
  AddPage(m_texturePage, "VTF Export");
  m_ui->tabs->setCurrentIndex(setting::TabSelect.Read(m_settings));  // no such tab: the first one stays
  AcceptFiles();
  RestoreGeometry();
  // Once the window shows: a box that opened before it would stand alone.
  if (!m_startFiles.empty()) QMetaObject::invokeMethod(this, &CKilndeskDlg::OpenStartFiles, Qt::QueuedConnection);
}

/// Hands files to the pages that work on them, and shows the first of those. Gives how many are taken.
size_t CKilndeskDlg::OpenInPages(const std::vector<std::string>& files) {
  size_t opened = 0;
  for (size_t i = m_pages.size(); i-- > 0;) {
    const size_t here = m_pages[i]->OpenFiles(files);
    if (here > 0) m_ui->tabs->setCurrentIndex(static_cast<int>(i));
    opened += here;
  }
  return opened;
}

void CKilndeskDlg::OpenStartFiles() {
  const std::vector<std::string> archives = ArchivesOf(m_startFiles);
  if (!archives.empty()) Content().BrowseArchives(archives);
  if (OpenInPages(m_startFiles) + archives.size() > 0 || OfferEditor(m_startFiles)) return;
  DesktopSeam().Box(this, platform::BoxIcon::Exclamation,
                    "Tarnwick opens models (.mdl), textures (.vtf), scripts (.qc), meshes (.smd) and archives (.vpk, "
                    ".gma), not\r\n" +
                        m_startFiles.front(),
                    "Warning");
}

pages::CContentDialog& CKilndeskDlg::Content() {
  if (!m_content) {
    m_content = std::make_unique<pages::CContentDialog>(
        pages::ContentContext{m_settings, DesktopSeam(), [this] { OnConfigure(); },
                              [this](const std::vector<std::string>& names) { return OpenContent(names); }},
        this);
  }
  return *m_content;
}

void CKilndeskDlg::OnBrowseContent(pages::CPage& page, std::optional<archives::ContentKind> kind) {
  m_contentWish = &page;
  m_contentTaker = {};
  Content().BrowseGame(kind);
}

void CKilndeskDlg::OnBrowseContentFor(std::optional<archives::ContentKind> kind, const pages::ContentTaker& take) {
  m_contentTaker = take;
  Content().BrowseGame(kind);
}

size_t CKilndeskDlg::OpenContent(const std::vector<std::string>& names) {
  size_t opened = m_contentTaker ? m_contentTaker(names) : 0;
  if (opened > 0) return opened;
  for (size_t i = 0; i < m_pages.size(); ++i) {
    if (m_pages[i] != m_contentWish || !m_pages[i]->isEnabled()) continue;
    opened = m_pages[i]->OpenFiles(names);
    if (opened > 0) m_ui->tabs->setCurrentIndex(static_cast<int>(i));
  }
  if (opened == 0) opened = OpenInPages(names);
  if (opened == 0) return 0;
  // To what was filled, so that Enter goes on from there.
  if (QWidget* field = platform::FirstField(*m_ui->tabs->currentWidget())) field->setFocus(Qt::OtherFocusReason);
  raise();
  activateWindow();
  return opened;
}

/// A material is text: offers to edit the first one of `paths` if there are but materials.
bool CKilndeskDlg::OfferEditor(const std::vector<std::string>& paths) {
  if (paths.empty() || !std::all_of(paths.begin(), paths.end(), IsMaterial)) return false;
  platform::MessageBoxRequest box;
  box.Text = paths.front() + "\nis a material: text that names a shader and textures.";
  box.Details =
      "It can be edited as text. To export a texture, open the .vtf file that it names behind $basetexture, "
      "below the folder materials.";
  box.Caption = "Material";
  box.Icon = platform::BoxIcon::Information;
  box.Buttons = platform::BoxButtons::OkCancel;
  box.OkLabel = "Edit";
  if (DesktopSeam().ShowBox(this, box) != platform::BoxAnswer::Ok) return true;
  if (DesktopSeam().Edit(paths.front()) != platform::EditStart::Begun) {
    DesktopSeam().Box(this, platform::BoxIcon::Exclamation, "No editor could be started for\n" + paths.front(),
                      "Warning");
  }
  return true;
}

void CKilndeskDlg::AddPage(pages::CPage& page, const char* tabText) {
  page.Create();
  auto* area = new CPageArea(page, m_ui->tabs);
  page.show();
  m_ui->tabs->addTab(area, tabText);
}

void CKilndeskDlg::OnDropFiles(const platform::DroppedFiles& drop) {
  const std::vector<std::string> archives = ArchivesOf(drop.Paths);
  if (!archives.empty()) return Content().BrowseArchives(archives);
  const bool isTexturePage = m_ui->tabs->currentIndex() == 3;  // whose field has a material's name for an output
  if (!isTexturePage && OfferEditor(drop.Paths)) return;
  pages::CPage& page = *m_pages[static_cast<size_t>(m_ui->tabs->currentIndex())];
  if (page.isEnabled()) page.OnDropFiles(drop);
}

void CKilndeskDlg::OnCancel() {
  if (!MayClose()) return;
  m_modelPage.SaveSettings();
  m_materialPage.SaveSettings();
  m_texturePage.SaveSettings();
  if (m_content) m_content->SaveSettings();
  setting::TabSelect.Write(m_settings, m_ui->tabs->currentIndex());
  SaveGeometry();
  CDialog::OnCancel();
}

bool CKilndeskDlg::MayClose() {
  bool isRunning = false;
  for (const JobRunner* jobs : findChildren<JobRunner*>()) isRunning = isRunning || jobs->IsRunning();
  if (!isRunning) return true;
  const platform::BoxAnswer answer =
      DesktopSeam().ShowBox(this, {"A job is still running.\nStop it and close Tarnwick?",
                                   {},
                                   platform::BoxIcon::Question,
                                   platform::BoxButtons::YesNo,
                                   {},
                                   {},
                                   true});
  return answer == platform::BoxAnswer::Yes;  // the runners stop their jobs as they go
}

void CKilndeskDlg::OnAbout() {
  CAboutDlg(DesktopSeam(), this).DoModal();
}

void CKilndeskDlg::OnGameDirectoryHelp() {
  CGameDirectoryHelpDialog(DesktopSeam(), this).DoModal();
}

void CKilndeskDlg::OnConfigure() {
  CGameConfigDialog(m_settings, DesktopSeam(), this).DoModal();
  ShowGameDirectory();  // also after Cancel: a browse button stores at once
}

void CKilndeskDlg::OnHelp() {
  if (!m_help) m_help = std::make_unique<CHelpWindow>(DesktopSeam(), this, [this] { OpenPage(pages::HelpPage); });
  m_help->ShowAt(HelpHeadings[static_cast<size_t>(m_ui->tabs->currentIndex())]);
}

void CKilndeskDlg::OnCheckForUpdates() {
  platform::MessageBoxRequest box{"This is Tarnwick " TARNWICK_VERSION
                                  ".\nIt does not look for a newer version by itself: the maker's page tells "
                                  "whether there is one.",
                                  "Check For Updates", platform::BoxIcon::Information, platform::BoxButtons::OkCancel};
  box.OkLabel = "Open the Page";
  box.Details = pages::UpdatePage;
  if (!pages::HasWebHost()) {
    box.Details =
        std::string("No maker's host was set when this program was built; the page would be ") + pages::UpdatePage;
  }
  if (DesktopSeam().ShowBox(this, box) == platform::BoxAnswer::Ok) OpenPage(pages::UpdatePage);
}

void CKilndeskDlg::OpenPage(const char* address) {
  if (!DesktopSeam().Open(address)) DesktopSeam().Box(this, platform::BoxIcon::None, "Error starting Explorer");
}

void CKilndeskDlg::ShowGameDirectory() {
  const QString directory = ToQt(setting::GameDirectory.Read(m_settings));
  m_ui->gameDirectoryLabel->setText(directory);
  m_ui->gameDirectoryLabel->setCursorPosition(0);
  m_ui->gameDirectoryLabel->setToolTip(directory);
}

void CKilndeskDlg::RestoreGeometry() {
  restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(setting::WindowGeometry.Read(m_settings))));
  m_startGeometry = saveGeometry();
}

void CKilndeskDlg::SaveGeometry() {
  const QByteArray geometry = saveGeometry();
  if (geometry != m_startGeometry) setting::WindowGeometry.Write(m_settings, geometry.toBase64().toStdString());
}

void CKilndeskDlg::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return event->accept();  // a key pressed by mistake does not end the program
  CDialog::keyPressEvent(event);
}

void CKilndeskDlg::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  connect(menu.addAction("&About Tarnwick..."), &QAction::triggered, this, &CKilndeskDlg::OnAbout);
  menu.exec(event->globalPos());
}

}  // namespace tarnwick::app
