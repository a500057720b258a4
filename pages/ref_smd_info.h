#pragma once

#include <memory>
#include <string>

#include "platform/dialog.h"

namespace Ui {
class RefSmdInfo;
}

namespace tarnwick::pages {

/// Shows the figures of a reference SMD and replaces one of its materials throughout the file.
class CRefSMDInfo : public platform::CDialog {
  Q_OBJECT

 public:
  CRefSMDInfo(platform::Desktop& desktop, QWidget* parent);
  ~CRefSMDInfo() override;

  std::string SmdPath;  // set before the dialog is shown

  /// The info text, line ends as \r\n.
  const std::string& InfoText() const { return m_infoText; }

 protected:
  void OnInitDialog() override;

 private:
  void ShowFigures();
  void OnReplaceAll();

  std::unique_ptr<Ui::RefSmdInfo> m_ui;
  std::string m_infoText;
};

}  // namespace tarnwick::pages
