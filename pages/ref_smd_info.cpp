#include "pages/ref_smd_info.h"

#include <QFontMetrics>
#include <QPushButton>
#include <algorithm>

#include "platform/page_report.h"
#include "platform/text.h"
#include "smd/material_replacement.h"
#include "smd/smd_info.h"
#include "ui_ref_smd_info.h"
#include "view/widget/model_view.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int TabStop = 20;  // quarters of an average character

}  // namespace

CRefSMDInfo::CRefSMDInfo(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent),
      m_ui(std::make_unique<Ui::RefSmdInfo>()),
      m_source(std::make_shared<view::ModelSource>()) {
  m_ui->setupUi(this);
  m_ui->infoEdit->setTabStopDistance(QFontMetrics(m_ui->infoEdit->font()).averageCharWidth() * TabStop / 4.0);
  m_ui->buttonBox->button(QDialogButtonBox::Ok)->setFocus();
  connect(m_ui->replaceButton, &QAbstractButton::clicked, this, &CRefSMDInfo::OnReplaceAll);
  connect(m_ui->materialCombo, &QComboBox::editTextChanged, this, &CRefSMDInfo::LightMaterial);
  connect(m_ui->mesh, &view::ModelView::Picked, this, &CRefSMDInfo::TakePicked);
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

CRefSMDInfo::~CRefSMDInfo() = default;

void CRefSMDInfo::OnInitDialog() {
  CDialog::OnInitDialog();
  m_ui->resultLabel->clear();
  ShowFigures();
  ShowMesh();
}

void CRefSMDInfo::ShowFigures() {
  const smd::SmdInfo info = smd::InspectSmd(SmdPath);
  m_infoText = info.Text;
  m_ui->infoEdit->setPlainText(ToQt(m_infoText).remove('\r'));
  m_ui->materialCombo->clear();
  for (const smd::SmdMaterialCount& material : info.Summary.Materials) {
    m_ui->materialCombo->addItem(ToQt(material.Name));
  }
  if (info.BadLine != 0) {
    m_ui->resultLabel->setText(QString("Line %1 is bad; the figures are those up to there.").arg(info.BadLine));
  } else if (info.Opened && !info.Error.empty()) {
    m_ui->resultLabel->setText(ToQt("The file could not be read to its end: " + info.Error));
  }
}

void CRefSMDInfo::ShowMesh() {
  if (SmdPath.empty()) return m_ui->mesh->ShowText("No mesh is named");
  if (!m_ui->mesh->HasModel()) m_ui->mesh->ShowText("Reading the mesh");
  m_loading.Run([source = m_source, path = SmdPath, game = GameDirectory] { return source->Load(path, game); },
                [this](const view::ShownModel& model) {
                  if (!model.Model) return m_ui->mesh->ShowText(ToQt(model.Error));
                  const bool isFirst = !m_ui->mesh->HasModel();
                  const view::ViewState before = m_ui->mesh->State();
                  m_ui->mesh->ShowModel(model, isFirst ? std::nullopt : std::optional(before));
                  LightMaterial();
                });
}

void CRefSMDInfo::LightMaterial() {
  const auto& scene = m_ui->mesh->Model().Model;
  if (!scene) return;
  const auto& names = scene->Materials;
  const auto chosen = std::find(names.begin(), names.end(), FromQt(m_ui->materialCombo->currentText()));
  m_ui->mesh->Change([&](view::ViewState& state) {
    state.HighlightedMaterial = chosen == names.end() ? -1 : static_cast<int32_t>(chosen - names.begin());
  });
}

void CRefSMDInfo::TakePicked(const view::PickedTriangle& triangle) {
  const auto& names = m_ui->mesh->Model().Model->Materials;
  const auto material = static_cast<size_t>(triangle.Material);
  if (material >= names.size()) return;
  m_ui->materialCombo->setEditText(ToQt(names[material]));
  m_ui->resultLabel->setText(QString("That triangle has the material \"%1\".").arg(ToQt(names[material])));
}

void CRefSMDInfo::OnReplaceAll() {
  const smd::MaterialReplacement replacement{SmdPath, FromQt(m_ui->materialCombo->currentText()),
                                             FromQt(m_ui->replaceEdit->text())};
  platform::PageReport report(DesktopSeam(), this);
  m_ui->resultLabel->clear();
  if (!smd::CheckReplacement(replacement, report)) return;
  const platform::BoxAnswer answer =
      DesktopSeam().ShowBox(this, {smd::ReplacementQuestion(replacement), std::string(smd::ReplacementCaption),
                                   platform::BoxIcon::Question, platform::BoxButtons::OkCancel});
  if (answer != platform::BoxAnswer::Ok) return;
  const std::optional<uint64_t> count = smd::ReplaceMaterial(replacement, report);
  if (!count) return;
  ShowFigures();
  ShowMesh();
  m_ui->materialCombo->setEditText(ToQt(*count == 0 ? replacement.OldName : replacement.NewName));
  m_ui->resultLabel->setText(*count == 1 ? QString("1 occurrence replaced.")
                                         : QString("%1 occurrences replaced.").arg(*count));
}

}  // namespace tarnwick::pages
