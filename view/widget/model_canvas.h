#pragma once

#include <QOpenGLWidget>
#include <memory>

#include "view/renderer/renderer.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"
#include "view/widget/shown_model.h"

namespace tarnwick::view {

/// Why windows cannot draw by OpenGL 3.3 here, for people; empty if they can. Found out once.
const QString& OpenGlTrouble();

/// Where a model is drawn. ModelView steers it.
class ModelCanvas : public QOpenGLWidget {
  Q_OBJECT

 public:
  explicit ModelCanvas(QWidget* parent = nullptr);
  ~ModelCanvas() override;

  void ShowModel(const ShownModel& model);
  /// What is drawn next; `pose` must be of the model's scene and outlive that.
  void Draw(const ViewState& state, const ScenePose& pose);
  /// What the last picture took.
  const DrawCounts& Counts() const { return m_counts; }
  /// What is seen, with names, in pixels of the screen.
  QImage Picture();
  QString DriverName() const;

 signals:
  void Failed(const QString& reason);

 protected:
  void initializeGL() override;
  void resizeGL(int width, int height) override;
  void paintGL() override;

 private:
  void Release();
  void PaintNames(QPainter& painter) const;

  class Names;

  Names* m_names;  // lies over the picture
  ShownModel m_model;
  const ViewState* m_state = nullptr;
  const ScenePose* m_pose = nullptr;
  std::unique_ptr<Renderer> m_renderer;
  bool m_isLoaded = false;
  DrawCounts m_counts;
};

}  // namespace tarnwick::view
