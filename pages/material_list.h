#pragma once

#include <QTreeWidget>
#include <string>
#include <vector>

#include "pages/thumbnail_loader.h"

namespace tarnwick::pages {

/// The list of images on the Material Compile page: path with a small picture, the type's name, the size.
class CMaterialList : public QTreeWidget {
  Q_OBJECT

 public:
  explicit CMaterialList(QWidget* parent = nullptr);

  /// Makes the columns and fits them to their headers.
  void InsertColumns();
  /// Adds a row at the end. The size stays blank where it cannot be read.
  void AddFile(const std::string& path);
  bool HasFile(const std::string& path) const;
  /// The first column of all rows, from the top.
  std::vector<std::string> Files() const;
  void RemoveSelected();
  void FitColumns();
  /// Shows pictures of no format but the common ones.
  void ReadFamiliarOnly(bool only) { m_pictures.ReadFamiliarOnly(only); }

  /// Three rows: on a small screen the page leaves it no more.
  QSize sizeHint() const override { return {256, 100}; }

 private:
  void ShowPicture(const QString& path, const QImage& picture);

  ThumbnailLoader m_pictures;
};

}  // namespace tarnwick::pages
