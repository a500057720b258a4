#include "pages/entry_dialogs.h"

#include "pages/file_chooser.h"
#include "pages/refusal_box.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "project/entry_editors.h"
#include "tools/hlmv_command.h"
#include "ui_attach_dialog.h"
#include "ui_gib_dialog.h"
#include "ui_lod_dialog.h"
#include "ui_skin_dialog.h"

namespace tarnwick::pages {

using platform::ToQt;

namespace {

void ConnectBox(QDialogButtonBox& box, QDialog& dialog) {
  QObject::connect(&box, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(&box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
}

}  // namespace

CAttachDialog::CAttachDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::AttachDialog>()) {
  m_ui->setupUi(this);
  ConnectBox(*m_ui->buttonBox, *this);
}

CAttachDialog::~CAttachDialog() = default;

void CAttachDialog::OnInitDialog() {
  project::FillAttachment(Entry);
  CDialog::OnInitDialog();
}

void CAttachDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->nameEdit, Entry.name);
  DDX_Text(exchange, *m_ui->boneEdit, Entry.bone);
  DDX_Text(exchange, *m_ui->translationEdit, Entry.translation);
  DDX_Text(exchange, *m_ui->rotationEdit, Entry.rotation);
}

void CAttachDialog::OnOK() {
  UpdateData(true);
  const project::Verdict refused = project::CheckAttachment(Entry);
  UpdateData(false);
  if (!ShowRefusal(*this, refused)) EndDialog(Accepted);
}

CGibDialog::CGibDialog(platform::Desktop& desktop, QWidget* parent, std::string gameDirectory)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::GibDialog>()), m_gameDirectory(std::move(gameDirectory)) {
  m_ui->setupUi(this);
  ConnectBox(*m_ui->buttonBox, *this);
  connect(m_ui->browseButton, &QAbstractButton::clicked, this, &CGibDialog::OnBrowse);
}

CGibDialog::~CGibDialog() = default;

void CGibDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
}

void CGibDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->modelEdit, Entry.model);
  DDX_Text(exchange, *m_ui->healthEdit, Entry.health);
  DDX_Text(exchange, *m_ui->fadeTimeEdit, Entry.fadeTime);
}

void CGibDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::CheckGib(Entry))) EndDialog(Accepted);
}

void CGibDialog::OnBrowse() {
  const auto chosen = DesktopSeam().ChooseFileToOpen(
      this, {.Title = "Name of MDL File",
             .Filter = "MDL Files (*.mdl)|*.mdl|",
             .StartName = {},
             .StartDirectory = m_gameDirectory.empty() ? std::string() : m_gameDirectory + "/models"});
  if (chosen) {
    m_ui->modelEdit->setText(ToQt(tools::ModelFileOf(m_gameDirectory, *chosen)));
  } else if (m_ui->modelEdit->text().isEmpty()) {
    DesktopSeam().Box(this, platform::BoxIcon::Exclamation, "No MDL File Selected!");
  }
}

CLodDialog::CLodDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::LodDialog>()) {
  m_ui->setupUi(this);
  ConnectBox(*m_ui->buttonBox, *this);
  connect(m_ui->browseButton, &QAbstractButton::clicked, this, &CLodDialog::OnBrowse);
}

CLodDialog::~CLodDialog() = default;

void CLodDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  AcceptFiles();
}

void CLodDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->smdEdit, Entry.smdFile);
  DDX_Text(exchange, *m_ui->distanceEdit, Entry.distance);
}

void CLodDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::CheckLod(Entry))) EndDialog(Accepted);
}

void CLodDialog::OnBrowse() {
  BrowseForFile(*this, *m_ui->smdEdit, "Name of LOD SMD File", "All Files (*.smd)|*.smd|");
}

void CLodDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (drop.IsOver(*m_ui->smdEdit)) m_ui->smdEdit->setText(ToQt(drop.Paths.front()));
}

CSkinDialog::CSkinDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::SkinDialog>()) {
  m_ui->setupUi(this);
  ConnectBox(*m_ui->buttonBox, *this);
}

CSkinDialog::~CSkinDialog() = default;

void CSkinDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->skinEdit, Entry.skin);
}

void CSkinDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::CheckSkin(Entry))) EndDialog(Accepted);
}

}  // namespace tarnwick::pages
