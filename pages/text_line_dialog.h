#pragma once

#include <memory>
#include <string>

#include "platform/dialog.h"
#include "project/field_rules.h"

namespace Ui {
class TextLineDialog;
}

namespace tarnwick::pages {

/// Edits one line of text.
class CTextLineDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CTextLineDialog(platform::Desktop& desktop, QWidget* parent, const QString& caption);
  ~CTextLineDialog() override;

  std::string Text;  // set before the dialog is shown, changed by OK

 protected:
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;
  /// Whether `text` can be taken.
  virtual project::Verdict Check(const std::string& text) const = 0;

 private:
  std::unique_ptr<Ui::TextLineDialog> m_ui;
};

/// The editor of one command of a sequence.
class CAnimEditCtrl : public CTextLineDialog {
  Q_OBJECT

 public:
  CAnimEditCtrl(platform::Desktop& desktop, QWidget* parent);

 protected:
  project::Verdict Check(const std::string& text) const override;
};

/// The editor of one QC command of the model.
class CQCCmdDialog : public CTextLineDialog {
  Q_OBJECT

 public:
  CQCCmdDialog(platform::Desktop& desktop, QWidget* parent);

 protected:
  project::Verdict Check(const std::string& text) const override;
};

}  // namespace tarnwick::pages
