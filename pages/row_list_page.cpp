#include "pages/row_list_page.h"

#include "ui_row_list_page.h"

namespace tarnwick::pages {

CRowListPage::CRowListPage(platform::Desktop& desktop, QWidget* parent, const QString& frame,
                           const QStringList& columns, RowListEntries entries)
    : CDialog(desktop, parent, Style::Page), m_ui(std::make_unique<Ui::RowListPage>()) {
  m_ui->setupUi(this);
  m_ui->group->setTitle(frame);
  m_ui->list->setAccessibleName(frame);
  m_rows = std::make_unique<RowList>(*this,
                                     RowListControls{m_ui->list, m_ui->addButton, m_ui->removeButton, m_ui->editButton},
                                     columns, std::move(entries));
}

CRowListPage::~CRowListPage() = default;

void CRowListPage::OnInitDialog() {
  CDialog::OnInitDialog();
  m_rows->Refresh();
}

}  // namespace tarnwick::pages
