#include "pages/material_list.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QStyledItemDelegate>

#include "core/byte_size.h"
#include "core/paths.h"
#include "platform/bitmap_button.h"
#include "platform/text.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

namespace {

enum Column { FilenameColumn, TypeColumn, SizeColumn, ColumnCount };

constexpr int IconSide = 24;  // pixels
constexpr int IconMargin = 2;

/// Rows that are high enough for a picture also while it is still to come: the first row's height is that of all.
class PictureRows : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, IconSide + 2 * IconMargin));
  }
};

}  // namespace

CMaterialList::CMaterialList(QWidget* parent) : QTreeWidget(parent) {
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(ExtendedSelection);
  setIconSize(QSize(IconSide, IconSide));
  setTextElideMode(Qt::ElideMiddle);
  setItemDelegate(new PictureRows(this));
  connect(&m_pictures, &ThumbnailLoader::Loaded, this, &CMaterialList::ShowPicture);
}

void CMaterialList::InsertColumns() {
  setColumnCount(ColumnCount);
  setHeaderLabels({"Filename", "Type", "Size"});
  headerItem()->setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
  FitColumns();
}

void CMaterialList::AddFile(const std::string& path) {
  const QString text = ToQt(path);
  const QFileInfo file(ToQt(core::PathText(core::NativePath(path))));
  auto* row = new QTreeWidgetItem(this);
  row->setText(FilenameColumn, text);
  row->setIcon(FilenameColumn, platform::IconOf("image"));
  row->setText(TypeColumn, QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension).comment());
  if (file.isFile()) row->setText(SizeColumn, ToQt(core::FormatByteSize(static_cast<uint64_t>(file.size()))));
  row->setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
  row->setToolTip(FilenameColumn, text);
  m_pictures.Load(text);
}

bool CMaterialList::HasFile(const std::string& path) const {
  return !findItems(ToQt(path), Qt::MatchExactly | Qt::MatchCaseSensitive, FilenameColumn).isEmpty();
}

std::vector<std::string> CMaterialList::Files() const {
  std::vector<std::string> files;
  files.reserve(static_cast<size_t>(topLevelItemCount()));
  for (int row = 0; row < topLevelItemCount(); ++row) files.push_back(FromQt(topLevelItem(row)->text(FilenameColumn)));
  return files;
}

void CMaterialList::RemoveSelected() {
  qDeleteAll(selectedItems());
}

void CMaterialList::FitColumns() {
  for (int column = 0; column < ColumnCount; ++column) resizeColumnToContents(column);
}

void CMaterialList::ShowPicture(const QString& path, const QImage& picture) {
  const QIcon icon(QPixmap::fromImage(picture));
  for (QTreeWidgetItem* row : findItems(path, Qt::MatchExactly | Qt::MatchCaseSensitive, FilenameColumn)) {
    row->setIcon(FilenameColumn, icon);
  }
}

}  // namespace tarnwick::pages
