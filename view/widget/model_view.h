#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

#include "view/renderer/renderer.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"
#include "view/widget/picking.h"
#include "view/widget/shown_model.h"

class QLabel;
class QMenu;

namespace tarnwick::view {

class ModelCanvas;

/// A model in a window, turned with the left button, moved with the middle one or with Shift, brought nearer with the
/// wheel; every command stands in its menu with its key. Where windows cannot draw by OpenGL it says so in words. What
/// it shows is a ViewState, which others read and change through Change.
class ModelView : public QWidget {
  Q_OBJECT

 public:
  explicit ModelView(QWidget* parent = nullptr);
  ~ModelView() override;

  /// Takes a model, shown as `state` says, or else as it is first seen.
  void ShowModel(const ShownModel& model, const std::optional<ViewState>& state = {});
  /// Takes the model away and shows `text` in its place.
  void ShowText(const QString& text);
  bool HasModel() const { return m_model.Model != nullptr; }
  const ShownModel& Model() const { return m_model; }
  /// What is said in place of a picture; empty while there is one.
  QString ShownText() const;

  const ViewState& State() const { return m_state; }
  void Change(const std::function<void(ViewState&)>& change);

  /// What the last picture took; nothing before the first.
  std::optional<DrawCounts> Counts() const;
  /// What is seen, in the size of the screen's pixels; null where nothing can be drawn.
  QImage Picture();
  /// The triangle under a point of this widget.
  std::optional<PickedTriangle> Pick(const QPointF& point) const;

  /// The menu of all commands.
  QMenu* Commands() const { return m_menu; }
  void FrameModel();
  void StepFrame(int frames);

  QSize sizeHint() const override { return {420, 420}; }
  QSize minimumSizeHint() const override { return {160, 160}; }

 signals:
  /// The state is another one, by whoever changed it; not while a sequence merely goes on.
  void StateChanged();
  /// A playing sequence went on.
  void Played();
  void Picked(const PickedTriangle& triangle);
  void SaveWanted();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void MakeCommands();
  QAction* Command(QMenu& menu, const QString& text, const QKeySequence& key, const std::function<void()>& act);
  void Switch(QMenu& menu, const QString& text, const QKeySequence& key, bool ViewExtras::*extra);
  void ShowCommands();
  void Tick();
  void Redraw();
  void Say(const QString& text);
  float Aspect() const;
  void TakeDesktopLight(ViewState& state) const;

  ShownModel m_model;
  ViewState m_state;
  std::optional<ScenePose> m_pose;
  bool m_wasFramed = false;  // by the user's camera; before that the model fits whatever size the widget has
  QLabel* m_text;
  ModelCanvas* m_canvas = nullptr;  // made when there is something to draw
  QMenu* m_menu;
  std::vector<std::pair<QAction*, std::function<bool(const ViewState&)>>> m_marks;  // which commands are ticked
  QTimer m_clock;
  QElapsedTimer m_sinceTick;
  QPointF m_grip;
  bool m_isDragging = false;
};

}  // namespace tarnwick::view
