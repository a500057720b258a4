#include "pages/row_list.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QTreeWidget>
#include <algorithm>

#include "pages/refusal_box.h"
#include "platform/dialog.h"

namespace tarnwick::pages {

RowList::RowList(platform::CDialog& page, const RowListControls& controls, const QStringList& columns,
                 RowListEntries entries)
    : QObject(&page), m_page(page), m_list(*controls.List), m_entries(std::move(entries)) {
  m_list.setHeaderLabels(columns);
  m_list.installEventFilter(this);
  connect(controls.AddButton, &QAbstractButton::clicked, this, &RowList::OnAdd);
  connect(controls.RemoveButton, &QAbstractButton::clicked, this, &RowList::OnRemove);
  connect(controls.EditButton, &QAbstractButton::clicked, this, &RowList::OnEdit);
  connect(&m_list, &QTreeWidget::itemDoubleClicked, this, &RowList::OnEdit);
}

void RowList::Refresh() {
  const int count = m_entries.Count();
  while (m_list.topLevelItemCount() > count) delete m_list.takeTopLevelItem(count);
  while (m_list.topLevelItemCount() < count) m_list.addTopLevelItem(new QTreeWidgetItem);
  for (int row = 0; row < count; ++row) {
    const QStringList texts = m_entries.Texts(row);
    for (int column = 0; column < texts.size(); ++column) m_list.topLevelItem(row)->setText(column, texts[column]);
  }
  for (int column = 0; column < m_list.columnCount(); ++column) m_list.resizeColumnToContents(column);
}

void RowList::OnAdd() {
  if (!m_entries.Add()) return;
  Refresh();
  QTreeWidgetItem* added = m_list.topLevelItem(m_list.topLevelItemCount() - 1);
  m_list.setCurrentItem(added);
  m_list.scrollToItem(added);
}

void RowList::OnRemove() {
  std::vector<int> rows = SelectedRows();
  std::reverse(rows.begin(), rows.end());  // so that the rows that are left to do keep their numbers
  for (const int row : rows) {
    m_entries.Remove(row);
    delete m_list.takeTopLevelItem(row);
  }
  Refresh();
}

void RowList::OnEdit() {
  for (const int row : SelectedRows()) {
    m_entries.Edit(row);
    Refresh();
  }
}

std::vector<int> RowList::SelectedRows() {
  std::vector<int> rows;
  for (QTreeWidgetItem* item : m_list.selectedItems()) rows.push_back(m_list.indexOfTopLevelItem(item));
  std::sort(rows.begin(), rows.end());
  if (rows.empty()) ShowRefusal(m_page, project::NothingSelected());
  return rows;
}

bool RowList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete &&
      !m_list.selectedItems().empty()) {
    OnRemove();
    return true;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace tarnwick::pages
