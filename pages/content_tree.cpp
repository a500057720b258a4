#include "pages/content_tree.h"

#include <QSignalBlocker>

#include "archives/folded_text.h"
#include "core/paths.h"
#include "pages/content_list.h"
#include "platform/bitmap_button.h"
#include "platform/text.h"

namespace tarnwick::pages {

namespace {

constexpr int PlaceRole = Qt::UserRole;
constexpr int FolderRole = Qt::UserRole + 1;  // bytes, as the index has them
constexpr int FilledRole = Qt::UserRole + 2;
constexpr int AllPlaces = -1;

constexpr size_t MostShown = 5000;  // folders in one: nobody looks through more, and they can be searched

std::optional<uint32_t> PlaceOf(const QTreeWidgetItem& item) {
  const int place = item.data(0, PlaceRole).toInt();
  return place == AllPlaces ? std::nullopt : std::optional(static_cast<uint32_t>(place));
}

std::string FolderOf(const QTreeWidgetItem& item) {
  return item.data(0, FolderRole).toByteArray().toStdString();
}

/// The last two parts of a path: "hl2/hl2_misc_dir.vpk".
std::string_view ShortPath(std::string_view path) {
  const std::string_view last = core::LastComponent(path);
  const std::string_view before = path.substr(0, path.size() - last.size());
  if (before.size() < 2) return path;
  const size_t start = core::LastComponent(before.substr(0, before.size() - 1)).size() + 1 + last.size();
  return path.substr(path.size() - start);
}

}  // namespace

CContentTree::CContentTree(QWidget* parent) : QTreeWidget(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { AddFolders(*item); });
}

void CContentTree::AddPlace(const QString& text, const QString& tip, const QString& icon, int place) {
  auto* item = new QTreeWidgetItem(this, {text});
  item->setToolTip(0, tip);
  item->setIcon(0, platform::IconOf(icon));
  item->setData(0, PlaceRole, place);
  const bool any = !m_index->FoldersIn(PlaceOf(*item), {}, m_kind, 1).empty();
  item->setChildIndicatorPolicy(any ? QTreeWidgetItem::ShowIndicator : QTreeWidgetItem::DontShowIndicator);
}

void CContentTree::Show(std::shared_ptr<const archives::ContentIndex> index,
                        std::optional<archives::ContentKind> kind) {
  if (currentItem() != nullptr) {
    m_keptPlace = currentItem()->data(0, PlaceRole).toInt();
    m_keptFolder = Folder();
  }
  const QSignalBlocker blocker(this);  // the choice is made at the end
  clear();
  m_index = std::move(index);
  m_kind = kind;
  if (m_index == nullptr) return;
  const std::vector<archives::GamePlace>& places = m_index->Places();
  if (places.size() > 1) AddPlace("All places", "What the game finds, each name once", "folder", AllPlaces);
  for (size_t i = 0; i < places.size(); ++i) {
    AddPlace(ShownName(ShortPath(places[i].Path)), TipText(places[i].Path),
             places[i].InArchive != nullptr ? "file" : "folder", static_cast<int>(i));
  }
  GoTo(m_keptPlace, m_keptFolder);
}

void CContentTree::Forget() {
  const QSignalBlocker blocker(this);
  clear();
  m_keptPlace = AllPlaces;
  m_keptFolder.clear();
}

/// Makes `folder` current, or as much of the way to it as is there.
void CContentTree::GoTo(int place, const std::string& folder) {
  QTreeWidgetItem* item = topLevelItem(0);
  for (int i = 0; i < topLevelItemCount(); ++i) {
    if (topLevelItem(i)->data(0, PlaceRole).toInt() == place) item = topLevelItem(i);
  }
  for (bool found = true; found;) {
    found = false;
    AddFolders(*item);
    item->setExpanded(true);
    for (int i = 0; i < item->childCount() && !found; ++i) {
      const std::string name = FolderOf(*item->child(i));
      found = !name.empty() && folder.size() >= name.size() &&
              archives::EqualFolded(std::string_view(folder).substr(0, name.size()), name) &&
              (folder.size() == name.size() || folder[name.size()] == '/');
      if (found) item = item->child(i);
    }
  }
  setCurrentItem(item);
}

void CContentTree::AddFolders(QTreeWidgetItem& above) {
  if (m_index == nullptr || above.data(0, FilledRole).toBool()) return;
  above.setData(0, FilledRole, true);
  const auto place = PlaceOf(above);
  const std::string folder = FolderOf(above);
  const std::vector<std::string> names = m_index->FoldersIn(place, folder, m_kind, MostShown + 1);
  const size_t shown = std::min(names.size(), MostShown);
  QList<QTreeWidgetItem*> items;
  for (size_t i = 0; i < shown; ++i) {
    auto* item =
        new QTreeWidgetItem({ShownName(std::string_view(names[i]).substr(folder.empty() ? 0 : folder.size() + 1))});
    item->setIcon(0, platform::IconOf("folder"));
    item->setData(0, PlaceRole, above.data(0, PlaceRole));
    item->setData(0, FolderRole, QByteArray::fromStdString(names[i]));
    const bool any = !m_index->FoldersIn(place, names[i], m_kind, 1).empty();
    item->setChildIndicatorPolicy(any ? QTreeWidgetItem::ShowIndicator : QTreeWidgetItem::DontShowIndicator);
    items.push_back(item);
  }
  if (names.size() > MostShown) {
    auto* more = new QTreeWidgetItem({"... and more: search for them"});
    more->setFlags(Qt::NoItemFlags);
    items.push_back(more);
  }
  above.addChildren(items);
}

std::optional<uint32_t> CContentTree::Place() const {
  return currentItem() != nullptr ? PlaceOf(*currentItem()) : std::nullopt;
}

std::string CContentTree::Folder() const {
  return currentItem() != nullptr ? FolderOf(*currentItem()) : std::string();
}

}  // namespace tarnwick::pages
