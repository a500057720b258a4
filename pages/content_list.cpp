#include "pages/content_list.h"

#include <QApplication>
#include <QHeaderView>
#include <QStyledItemDelegate>
#include <algorithm>

#include "archives/safe_name.h"
#include "core/byte_size.h"
#include "core/paths.h"
#include "platform/bitmap_button.h"
#include "platform/text.h"

namespace tarnwick::pages {

using archives::ContentKind;
using archives::ContentOrder;
using platform::ToQt;

namespace {

constexpr int PictureSide = 40;  // logical pixels
constexpr int PictureMargin = 2;

/// Rows that are high enough for a picture also while it is still to come.
class PictureRows : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, PictureSide + 2 * PictureMargin));
  }
};

QString TypeOf(ContentKind kind, std::string_view lastPart) {
  switch (kind) {
    case ContentKind::Model:
      return "Model";
    case ContentKind::Texture:
      return "Texture";
    case ContentKind::Material:
      return "Material";
    case ContentKind::Other:
      break;
  }
  const size_t dot = lastPart.find_last_of('.');
  return dot == std::string_view::npos ? "File" : ShownName(lastPart.substr(dot + 1)).toUpper() + " file";
}

}  // namespace

QString ShownName(std::string_view name) {
  return ToQt(archives::PrintableName(name));
}

QString TipText(std::string_view name) {
  return "<p style='white-space:pre'>" + ShownName(name).toHtmlEscaped() + "</p>";
}

ContentModel::ContentModel(QObject* parent)
    : QAbstractTableModel(parent),
      m_imageIcon(platform::IconOf("image")),
      m_modelIcon(platform::IconOf("model")),
      m_fileIcon(platform::IconOf("file")) {
  connect(&m_pictures, &ContentPictures::Changed, this, [this](uint32_t file) {
    const auto row = std::find(m_files.begin(), m_files.end(), file);
    if (row == m_files.end()) return;
    const QModelIndex cell = index(static_cast<int>(row - m_files.begin()), NameColumn);
    emit dataChanged(cell, cell, {Qt::DecorationRole});
  });
}

void ContentModel::SetIndex(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory,
                            int pictureSide, qreal scale) {
  beginResetModel();
  m_files.clear();
  m_index = std::move(index);
  m_scale = scale;
  m_pictures.Show(m_index, gameDirectory, static_cast<int>(pictureSide * scale));
  endResetModel();
}

void ContentModel::SetFiles(const std::vector<uint32_t>& files) {
  beginResetModel();
  m_files = files;
  endResetModel();
}

int ContentModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int ContentModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant ContentModel::Icon(uint32_t file) const {
  if (const QPixmap* picture = m_pictures.Picture(file); picture != nullptr) {
    QPixmap shown = *picture;
    shown.setDevicePixelRatio(m_scale);
    return shown;
  }
  const ContentKind kind = m_index->Kind(file);
  const bool isPicture = kind == ContentKind::Texture || kind == ContentKind::Material;
  return isPicture ? m_imageIcon : kind == ContentKind::Model ? m_modelIcon : m_fileIcon;
}

QVariant ContentModel::data(const QModelIndex& cell, int role) const {
  if (!cell.isValid() || static_cast<size_t>(cell.row()) >= m_files.size()) return {};
  const uint32_t file = m_files[static_cast<size_t>(cell.row())];
  if (role == Qt::DecorationRole && cell.column() == NameColumn) return Icon(file);
  if (role == Qt::ToolTipRole) return TipText(m_index->FullName(file));
  if (role == Qt::TextAlignmentRole && cell.column() == SizeColumn) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  switch (cell.column()) {
    case NameColumn:
      return ShownName(m_index->LastPart(file));
    case FolderColumn:
      return ShownName(m_index->Folder(file));
    case TypeColumn:
      return TypeOf(m_index->Kind(file), m_index->LastPart(file));
    case SizeColumn:
      return ToQt(core::FormatByteSize(m_index->Size(file)));
    case PlaceColumn:
      return ShownName(core::LastComponent(m_index->Places()[m_index->PlaceOf(file)].Path));
    default:
      return {};
  }
}

QVariant ContentModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole && section == SizeColumn) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return QAbstractTableModel::headerData(section, orientation, role);
  static const QStringList names = {"Name", "Folder", "Type", "Size", "Where From"};
  return names.value(section);
}

Qt::ItemFlags ContentModel::flags(const QModelIndex& cell) const {
  return QAbstractTableModel::flags(cell) | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

CContentList::CContentList(QWidget* parent) : QTreeView(parent) {
  setModel(&m_rows);
  setItemDelegate(new PictureRows(this));
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectRows);
  setIconSize(QSize(PictureSide, PictureSide));
  setTextElideMode(Qt::ElideMiddle);
  setDragEnabled(true);
  setDragDropMode(DragOnly);
  header()->setSectionsClickable(true);
  header()->setSortIndicatorShown(true);
  header()->setSortIndicatorClearable(true);  // a third click: the best first again
  header()->setSortIndicator(-1, Qt::AscendingOrder);
  header()->setStretchLastSection(true);
  const int letter = fontMetrics().averageCharWidth();
  header()->resizeSection(ContentModel::NameColumn, letter * 34 + PictureSide);
  header()->resizeSection(ContentModel::FolderColumn, letter * 34);
  header()->resizeSection(ContentModel::TypeColumn, letter * 12);
  header()->resizeSection(ContentModel::SizeColumn, letter * 12);
  connect(header(), &QHeaderView::sortIndicatorChanged, this, &CContentList::OrderChanged);
}

void CContentList::ShowIndex(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory) {
  m_seen.clear();
  m_rows.SetIndex(std::move(index), gameDirectory, PictureSide, devicePixelRatioF());
}

void CContentList::paintEvent(QPaintEvent* event) {
  WantPictures();
  QTreeView::paintEvent(event);
}

/// Has the pictures of the rows made that are seen, and those of no others.
void CContentList::WantPictures() {
  const int count = m_rows.rowCount();
  const QModelIndex first = indexAt({0, 0});
  const QModelIndex last = indexAt({0, viewport()->height() - 1});
  std::vector<uint32_t> seen;
  for (int row = first.isValid() ? first.row() : count; row <= (last.isValid() ? last.row() : count - 1); ++row) {
    seen.push_back(m_rows.Files()[static_cast<size_t>(row)]);
  }
  if (seen == m_seen) return;
  m_seen = seen;
  m_rows.Pictures().Want(seen);
}

std::vector<uint32_t> CContentList::SelectedFiles() const {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::vector<uint32_t> files;
  files.reserve(rows.size());
  for (const int row : rows) files.push_back(m_rows.Files()[static_cast<size_t>(row)]);
  return files;
}

archives::ContentOrder CContentList::Order() const {
  switch (header()->sortIndicatorSection()) {
    case ContentModel::NameColumn:
      return ContentOrder::Name;
    case ContentModel::FolderColumn:
      return ContentOrder::Folder;
    case ContentModel::TypeColumn:
      return ContentOrder::Type;
    case ContentModel::SizeColumn:
      return ContentOrder::Size;
    case ContentModel::PlaceColumn:
      return ContentOrder::Place;
    default:
      return ContentOrder::BestFirst;
  }
}

bool CContentList::Backwards() const {
  return Order() != ContentOrder::BestFirst && header()->sortIndicatorOrder() == Qt::DescendingOrder;
}

void CContentList::startDrag(Qt::DropActions) {
  if (OnDrag) OnDrag();
}

}  // namespace tarnwick::pages
