#pragma once

#include <QMainWindow>
#include <QStringList>
#include <functional>

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
  /// Lets models be chosen in a window of game content, here and in the windows that are opened from this one: `browse`
  /// shows it and hands what is chosen there to OpenAll.
  void OfferContent(const std::function<void(ModelWindow& window)>& browse);
  /// Opens the models and meshes among `paths`, the first one in this window. Gives how many there are.
  size_t OpenAll(const QStringList& paths);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeMenus();
  void ChooseFile();
  ModelWindow* Another();

  platform::Desktop& m_desktop;
  ModelViewer* m_viewer;
  QString m_gameDirectory;
  QAction* m_contentAction = nullptr;
  std::function<void(ModelWindow& window)> m_browse = {};
};

}  // namespace tarnwick::view
