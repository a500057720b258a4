#pragma once

#include <memory>

#include "pages/row_list.h"
#include "platform/dialog.h"

namespace Ui {
class RowListPage;
}

namespace tarnwick::pages {

/// A page that is nothing but one list with its three buttons in a frame.
class CRowListPage : public platform::CDialog {
  Q_OBJECT

 public:
  CRowListPage(platform::Desktop& desktop, QWidget* parent, const QString& frame, const QStringList& columns,
               RowListEntries entries);
  ~CRowListPage() override;

 protected:
  void OnInitDialog() override;

 private:
  std::unique_ptr<Ui::RowListPage> m_ui;
  std::unique_ptr<RowList> m_rows;
};

}  // namespace tarnwick::pages
