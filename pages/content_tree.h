#pragma once

#include <QTreeWidget>
#include <memory>
#include <optional>
#include <string>

#include "archives/content_index.h"

namespace tarnwick::pages {

/// The folders of an index: all places together, then each place. What is below a folder is looked up when it is
/// opened.
class CContentTree : public QTreeWidget {
  Q_OBJECT

 public:
  explicit CContentTree(QWidget* parent = nullptr);

  /// Shows the folders that have files of that kind; none without an index. The folder that was current stays so, or
  /// is so again with the next index, where it is there.
  void Show(std::shared_ptr<const archives::ContentIndex> index, std::optional<archives::ContentKind> kind);

  /// Forgets the folder that was current: the next index has other places.
  void Forget();

  /// The current folder.
  std::optional<uint32_t> Place() const;
  std::string Folder() const;

 private:
  void AddPlace(const QString& text, const QString& tip, const QString& icon, int place);
  void AddFolders(QTreeWidgetItem& above);
  void GoTo(int place, const std::string& folder);

  std::shared_ptr<const archives::ContentIndex> m_index;
  std::optional<archives::ContentKind> m_kind;
  int m_keptPlace = -1;  // the folder that was current
  std::string m_keptFolder;
};

}  // namespace tarnwick::pages
