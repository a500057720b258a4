#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <QTreeView>
#include <functional>
#include <memory>
#include <vector>

#include "archives/content_index.h"
#include "pages/content_pictures.h"

namespace tarnwick::pages {

/// Files of an index as rows: a view asks for those that it shows, so a hundred thousand cost nothing.
class ContentModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { NameColumn, FolderColumn, TypeColumn, SizeColumn, PlaceColumn, ColumnCount };

  explicit ContentModel(QObject* parent = nullptr);

  /// Takes another index; there are no rows until there are files.
  void SetIndex(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory, int pictureSide,
                qreal scale);
  void SetFiles(const std::vector<uint32_t>& files);
  const std::vector<uint32_t>& Files() const { return m_files; }
  ContentPictures& Pictures() { return m_pictures; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override { return !parent.isValid(); }
  QVariant data(const QModelIndex& cell, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& cell) const override;

 private:
  QVariant Icon(uint32_t file) const;

  std::shared_ptr<const archives::ContentIndex> m_index;
  std::vector<uint32_t> m_files;
  qreal m_scale = 1;
  const QIcon m_imageIcon;
  const QIcon m_modelIcon;
  const QIcon m_fileIcon;
  ContentPictures m_pictures;
};

/// The list of the content window.
class CContentList : public QTreeView {
  Q_OBJECT

 public:
  explicit CContentList(QWidget* parent = nullptr);

  ContentModel& Rows() { return m_rows; }
  /// Shows the files of an index, once they are set; what models and materials lack is looked for in that game.
  void ShowIndex(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory);
  /// The selected files, from the top.
  std::vector<uint32_t> SelectedFiles() const;
  /// How the user wants the rows sorted, as the header shows it.
  archives::ContentOrder Order() const;
  bool Backwards() const;

  /// Called when the selected files are dragged out of the list.
  std::function<void()> OnDrag;

 signals:
  void OrderChanged();

 protected:
  void startDrag(Qt::DropActions actions) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void WantPictures();

  ContentModel m_rows;
  std::vector<uint32_t> m_seen;  // whose pictures are wanted
};

/// A name of a game's file as the window shows it: control bytes made visible.
QString ShownName(std::string_view name);
/// The same for a tool tip, which would take a name for markup.
QString TipText(std::string_view name);

}  // namespace tarnwick::pages
