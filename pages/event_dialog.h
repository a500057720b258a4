#pragma once

#include <memory>

#include "platform/dialog.h"
#include "project/project_entries.h"

namespace Ui {
class EventDialog;
}

namespace tarnwick::pages {

/// The editor of one event of a sequence.
class CEventDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CEventDialog(platform::Desktop& desktop, QWidget* parent);
  ~CEventDialog() override;

  project::EventEntry Entry;  // set before the dialog is shown, changed by OK

 protected:
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  std::unique_ptr<Ui::EventDialog> m_ui;
};

}  // namespace tarnwick::pages
