#pragma once

#include <QWidget>
#include <memory>

#include "view/renderer/renderer.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"
#include "view/widget/shown_model.h"

class QOpenGLContext;

namespace tarnwick::view {

/// Why windows cannot draw by OpenGL 3.3 here, for people; empty if they can. Found out once.
const QString& OpenGlTrouble();

class PixelContext;

/// Where a model is drawn. ModelView steers it. A graphics processor draws straight into the window; where there is
/// none, pixels are read back and painted.
class ModelCanvas : public QWidget {
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
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Names;
  class Surface;

  void Begin(QOpenGLContext& context);
  void End();
  void LoadModel();
  void DrawInto(unsigned framebuffer);
  const QImage* DrawnPixels();
  QSize PixelSize() const;
  void DrawAgain();
  bool MakeCurrent();
  void DoneCurrent();
  void PaintNames(QPainter& painter) const;

  // One of the two
  Surface* m_surface = nullptr;
  std::unique_ptr<PixelContext> m_pixels;
  Names* m_names;  // lies over the picture
  ShownModel m_model;
  const ViewState* m_state = nullptr;
  const ScenePose* m_pose = nullptr;
  std::unique_ptr<Renderer> m_renderer;
  bool m_isLoaded = false;
  DrawCounts m_counts;
};

}  // namespace tarnwick::view
