#pragma once

#include <memory>
#include <string>

#include "platform/dialog.h"
#include "view/widget/background.h"
#include "view/widget/picking.h"
#include "view/widget/shown_model.h"

namespace Ui {
class RefSmdInfo;
}

namespace tarnwick::pages {

/// Shows the figures and the mesh of a reference SMD, the chosen material lit up, and replaces one of its materials
/// throughout the file.
class CRefSMDInfo : public platform::CDialog {
  Q_OBJECT

 public:
  CRefSMDInfo(platform::Desktop& desktop, QWidget* parent);
  ~CRefSMDInfo() override;

  std::string SmdPath;        // set before the dialog is shown
  std::string GameDirectory;  // the same: where the textures of the mesh are looked for too; "" for none

  /// The info text, line ends as \r\n.
  const std::string& InfoText() const { return m_infoText; }

 protected:
  void OnInitDialog() override;

 private:
  void ShowFigures();
  void ShowMesh();
  void LightMaterial();
  void TakePicked(const view::PickedTriangle& triangle);
  void OnReplaceAll();

  std::unique_ptr<Ui::RefSmdInfo> m_ui;
  std::string m_infoText;
  std::shared_ptr<view::ModelSource> m_source;
  view::Background m_loading;
};

}  // namespace tarnwick::pages
