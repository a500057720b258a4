#pragma once

#include <memory>

#include "pages/sequence_pages.h"
#include "platform/dialog.h"
#include "project/sequence_editor.h"

namespace Ui {
class AnimationDialog;
}

namespace tarnwick::pages {

/// Edits one sequence. The entry changes only when the dialog ends with OK, except that a refused OK leaves in it what
/// was taken up to the refusal.
class CAnimationDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CAnimationDialog(platform::Desktop& desktop, QWidget* parent, project::SequenceEntry& entry);
  ~CAnimationDialog() override;

  /// A file dropped on the SMD field.
  void OnDropFiles(const platform::DroppedFiles& drop) override;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;
  bool EnterInPagesIsOurs() const override { return true; }

 private:
  void OnBrowse();

  std::unique_ptr<Ui::AnimationDialog> m_ui;
  project::SequenceEntry& m_entry;
  project::SequenceForm m_form;
  CSeqCmdDlg m_commandPage;
  CEventDlg m_eventPage;
};

}  // namespace tarnwick::pages
