#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/dialog.h"
#include "tools/whole_log.h"

namespace Ui {
class WholeLogDialog;
}

namespace tarnwick::pages {

/// Shows everything that a tool has printed, as it printed it, and writes it to a file. It opens at the first error.
/// Of a very long log the window shows the beginning and the end; the file gets all that the log has kept.
class CWholeLogDialog : public platform::CDialog {
  Q_OBJECT

 public:
  /// `log` must outlive the dialog; `firstError` is the line of it at which to open, "" if there is none.
  CWholeLogDialog(platform::Desktop& desktop, QWidget* parent, const std::string& commandLine,
                  const tools::WholeLog& log, const std::string& firstError = {});
  ~CWholeLogDialog() override;

  /// Shows what the log has got since: a tool that still runs goes on printing.
  void Grow(std::string_view text);

 protected:
  void OnInitDialog() override;

 private:
  void OnSave();

  std::unique_ptr<Ui::WholeLogDialog> m_ui;
  std::string m_commandLine;
  std::string m_firstError;
  const tools::WholeLog& m_log;
};

}  // namespace tarnwick::pages
