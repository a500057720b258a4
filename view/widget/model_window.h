#pragma once

#include <QMainWindow>

#include "platform/desktop.h"

namespace tarnwick::view {

class ModelViewer;

/// A window with a model viewer and its menus. Models that are dropped on it are opened, the first one in it and others
/// in windows of their own.
class ModelWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `desktop` is asked for files and must outlive the window. A window without a parent goes when it is closed.
  explicit ModelWindow(platform::Desktop& desktop, QWidget* parent = nullptr);

  /// Shows the model at `path`, its materials also from the game in that directory. "" for either: none.
  void Open(const QString& path, const QString& gameDirectory);
  ModelViewer& Viewer() { return *m_viewer; }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeMenus();
  void ChooseFile();
  void OpenAll(const QStringList& paths);
  ModelWindow* Another();

  platform::Desktop& m_desktop;
  ModelViewer* m_viewer;
  QString m_gameDirectory;
};

}  // namespace tarnwick::view
