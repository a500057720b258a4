#pragma once

#include <memory>
#include <string>

#include "pages/page.h"
#include "pages/tool_runner.h"
#include "pages/viewed_model.h"

namespace Ui {
class QcCompileDialog;
}

namespace tarnwick::pages {

/// The inner tab "Compile w/Existing QC": runs studiomdl on a script that the user has, with its output on the page.
class CQCCompileDialog : public CPage {
  Q_OBJECT

 public:
  explicit CQCCompileDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CQCCompileDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;
  size_t OpenFiles(const std::vector<std::string>& paths) override;
  void SaveSettings() override;

  /// The text of the output field, line ends as \r\n.
  const std::string& OutputText() const { return m_outputText; }

 protected:
  void OnInitDialog() override;

 private:
  void OnBrowse();
  void OnEdit();
  void OnCompile();

  std::unique_ptr<Ui::QcCompileDialog> m_ui;
  std::string m_outputText;
  tools::PageLog m_log;  // ends in m_outputText
  ViewedModel m_viewed;
  std::unique_ptr<ToolRunner> m_runner;
};

}  // namespace tarnwick::pages
