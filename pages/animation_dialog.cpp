#include "pages/animation_dialog.h"

#include "pages/file_chooser.h"
#include "pages/refusal_box.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "ui_animation_dialog.h"

namespace tarnwick::pages {

CAnimationDialog::CAnimationDialog(platform::Desktop& desktop, QWidget* parent, project::SequenceEntry& entry)
    : CDialog(desktop, parent),
      m_ui(std::make_unique<Ui::AnimationDialog>()),
      m_entry(entry),
      m_form(project::ShowSequence(entry)),
      m_commandPage(desktop, this, m_form.commands),
      m_eventPage(desktop, this, m_form.events) {
  m_ui->setupUi(this);
  m_ui->tabs->addTab(&m_commandPage, "Sequence Commands");
  m_ui->tabs->addTab(&m_eventPage, "Events");
  connect(m_ui->browseButton, &QAbstractButton::clicked, this, &CAnimationDialog::OnBrowse);
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

CAnimationDialog::~CAnimationDialog() = default;

void CAnimationDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_commandPage.Create();
  m_eventPage.Create();
  AcceptFiles();
}

void CAnimationDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->nameEdit, m_form.name);
  DDX_Text(exchange, *m_ui->smdEdit, m_form.smdFile);
  DDX_Text(exchange, *m_ui->fpsEdit, m_form.fps);
  DDX_Text(exchange, *m_ui->activityCombo, m_form.activity);
  DDX_Text(exchange, *m_ui->strengthEdit, m_form.activityStrength);
  DDX_CBIndex(exchange, *m_ui->directionCombo, m_form.rotateDirection);
  DDX_Text(exchange, *m_ui->amountEdit, m_form.rotateAmount);
  DDX_Check(exchange, *m_ui->loopCheck, m_form.loop);
}

void CAnimationDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::TakeSequence(m_form, m_entry))) EndDialog(Accepted);
}

void CAnimationDialog::OnBrowse() {
  BrowseForFile(*this, *m_ui->smdEdit, "Name of Animation SMD File", "All Files (*.smd)|*.smd|");
}

void CAnimationDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (drop.IsOver(*m_ui->smdEdit)) m_ui->smdEdit->setText(platform::ToQt(drop.Paths.front()));
}

}  // namespace tarnwick::pages
