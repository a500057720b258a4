#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "view/widget/background.h"
#include "view/widget/model_view.h"

class QFileSystemWatcher;
class QLabel;
class QSlider;
class QSplitter;
class QTabWidget;
class QToolButton;

namespace tarnwick::view {

class FactsTab;
class SlidersTab;
class ViewerTab;

/// A model with all controls to look at it. Files are read beside the window, and again when they change; how a model
/// was looked at is kept as long as the program runs.
class ModelViewer : public QWidget {
  Q_OBJECT

 public:
  /// Where the controls stand from the picture.
  enum class Controls { Below, Beside };

  /// `desktop` is asked where pictures go, and must outlive the viewer.
  ModelViewer(platform::Desktop& desktop, Controls controls, QWidget* parent = nullptr);
  ~ModelViewer() override;

  /// Has the model (.mdl) or mesh (.smd) at `path` shown, its materials also from the game in that directory; "" shows
  /// nothing. The same path again does nothing.
  void ShowFile(const QString& path, const QString& gameDirectory = {});
  QString File() const { return m_path; }
  /// Reads the file that is shown again.
  void Reload();
  /// What is said while no file is named.
  void SetEmptyText(const QString& text);
  /// Whether what is shown is not yet what was asked for.
  bool IsBusy() const { return m_waiting.isActive() || m_loading.IsRunning(); }

  ModelView& View() { return *m_view; }
  /// Has the user choose a file and writes what is seen into it.
  void SavePicture();

 signals:
  /// The model that was asked for is shown, or the reason why not.
  void Shown();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void AddTab(ViewerTab* tab, const QString& title);
  QToolButton* AddButton(const QString& text, const char* name);
  void Load();
  void TakeModel(const ShownModel& model, const QString& path);
  void TakeState();
  void ShowIcons();
  void ShowTime();
  void KeepState();

  platform::Desktop& m_desktop;
  ModelView* m_view;
  QTabWidget* m_tabs;
  std::vector<ViewerTab*> m_tabList;
  SlidersTab* m_pose;
  SlidersTab* m_face;
  FactsTab* m_facts;
  QToolButton* m_play = nullptr;
  QToolButton* m_before = nullptr;
  QToolButton* m_next = nullptr;
  bool m_looksPlaying = false;
  QLabel* m_notice;  // below the picture
  QSlider* m_frame;
  QLabel* m_time;
  QString m_path;
  QString m_gameDirectory;
  QString m_shownPath;
  QString m_emptyText;
  QFileSystemWatcher* m_watcher;
  QTimer m_waiting;  // until typing, or whoever writes the files, pauses
  std::shared_ptr<ModelSource> m_source;
  Background m_loading;
};

}  // namespace tarnwick::view
