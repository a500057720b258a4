#pragma once

#include <memory>
#include <string>

#include "pages/tool_runner.h"
#include "platform/dialog.h"

namespace Ui {
class StudioMdlStatusDialog;
}

namespace tarnwick::pages {

/// Shows what studiomdl prints for the form. The page owns the one window and shows it anew for each run.
class CStudioMDLStatusDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CStudioMDLStatusDialog(platform::Desktop& desktop, QWidget* parent);
  ~CStudioMDLStatusDialog() override;

  /// The log channel that ends in the window's text box.
  tools::PageLog& Log() { return m_log; }
  /// The text in the box, line ends as \r\n.
  const std::string& Text() const { return m_text; }
  void Clear();

  ToolRunControls Controls() const;

 private:
  std::unique_ptr<Ui::StudioMdlStatusDialog> m_ui;
  std::string m_text;
  tools::PageLog m_log;
};

}  // namespace tarnwick::pages
