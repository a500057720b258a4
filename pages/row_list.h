#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <vector>

class QAbstractButton;
class QTreeWidget;

namespace tarnwick::platform {
class CDialog;
}

namespace tarnwick::pages {

/// The entries behind the rows of a list: row `i` is entry `i`, whatever the entries are called.
struct RowListEntries {
  std::function<int()> Count;
  std::function<QStringList(int row)> Texts;  // one for each column
  std::function<bool()> Add;                  // opens the editor of a new entry; whether one was appended
  std::function<void(int row)> Edit;          // opens the editor of an entry
  std::function<void(int row)> Remove;
};

/// The controls that a form has for one list.
struct RowListControls {
  QTreeWidget* List;
  QAbstractButton* AddButton;
  QAbstractButton* RemoveButton;
  QAbstractButton* EditButton;
};

/// Ties a list of a form, and its buttons "Add", "Remove" and "Edit", to entries. A double click edits a row and Del
/// removes the selected ones. After each change the columns fit what they hold.
class RowList : public QObject {
  Q_OBJECT

 public:
  /// `page` owns the boxes; it holds the controls and becomes the parent.
  RowList(platform::CDialog& page, const RowListControls& controls, const QStringList& columns, RowListEntries entries);

  /// Shows the entries as they are now; what is selected stays selected.
  void Refresh();

  void OnAdd();
  void OnRemove();
  void OnEdit();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// The selected rows from the top; tells the user if there is none.
  std::vector<int> SelectedRows();

  platform::CDialog& m_page;
  QTreeWidget& m_list;
  RowListEntries m_entries;
};

}  // namespace tarnwick::pages
