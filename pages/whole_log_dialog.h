#pragma once

#include <memory>
#include <string>

#include "platform/dialog.h"
#include "tools/whole_log.h"

namespace Ui {
class WholeLogDialog;
}

namespace tarnwick::pages {

/// Shows everything that a tool has printed, as it printed it, and writes it to a file. Of a very long log the window
/// shows the beginning and the end; the file gets all that the log has kept.
class CWholeLogDialog : public platform::CDialog {
  Q_OBJECT

 public:
  /// `log` must outlive the dialog.
  CWholeLogDialog(platform::Desktop& desktop, QWidget* parent, const std::string& commandLine,
                  const tools::WholeLog& log);
  ~CWholeLogDialog() override;

 private:
  void OnSave();

  std::unique_ptr<Ui::WholeLogDialog> m_ui;
  std::string m_commandLine;
  const tools::WholeLog& m_log;
};

}  // namespace tarnwick::pages
