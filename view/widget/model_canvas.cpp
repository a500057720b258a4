#include "view/widget/model_canvas.h"

#include <QEvent>
#include <QGuiApplication>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPainter>
#include <cmath>

#include "platform/text.h"
#include "view/renderer/gl_functions.h"
#include "view/widget/pixel_context.h"

namespace tarnwick::view {

using platform::ToQt;

namespace {

struct OpenGlFound {
  QString Trouble = {};  // why windows cannot draw by it
  bool IsSoftware = false;
};

OpenGlFound FindOpenGl() {
  // Some desktops know contexts, and no window that could show what is drawn in one.
  for (const char* platform : {"offscreen", "minimal", "linuxfb", "vnc"}) {
    if (QGuiApplication::platformName() == platform) return {"this desktop draws without OpenGL"};
  }
  PixelContext test;
  if (!test.Context().isValid()) return {"no OpenGL context can be had"};
  if (!test.MakeCurrent()) return {"the OpenGL context cannot be used"};
  const QSurfaceFormat had = test.Context().format();
  const GLubyte* name = test.Context().functions()->glGetString(GL_RENDERER);
  OpenGlFound found;
  found.IsSoftware = name != nullptr && IsSoftwareDriver(reinterpret_cast<const char*>(name));
  test.DoneCurrent();
  if (had.version() < std::pair(3, 3)) {
    found.Trouble = QString("OpenGL 3.3 is needed, and there is %1.%2").arg(had.majorVersion()).arg(had.minorVersion());
  }
  return found;
}

const OpenGlFound& OpenGlOfWindows() {
  static const OpenGlFound found = FindOpenGl();
  return found;
}

/// Colours of the window, a little apart from those of the controls around it.
void SetBackground(const QPalette& palette, DrawTarget& target) {
  const QColor window = palette.color(QPalette::Window);
  const QColor behind = window.lightness() < 128 ? window.darker(125) : window.darker(112);
  target.Background[0] = behind.redF();
  target.Background[1] = behind.greenF();
  target.Background[2] = behind.blueF();
  target.Background[3] = 1;
}

}  // namespace

const QString& OpenGlTrouble() {
  return OpenGlOfWindows().Trouble;
}

/// The names of the bones, painted by the window itself: they need no state of OpenGL.
class ModelCanvas::Names : public QWidget {
 public:
  explicit Names(ModelCanvas& canvas) : QWidget(&canvas), m_canvas(canvas) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    m_canvas.PaintNames(painter);
  }

 private:
  ModelCanvas& m_canvas;
};

/// The part of the window that a graphics processor draws.
class ModelCanvas::Surface : public QOpenGLWidget {
 public:
  explicit Surface(ModelCanvas& canvas) : QOpenGLWidget(&canvas), m_canvas(canvas) {
    setFormat(CanvasFormat());
    setFocusPolicy(Qt::NoFocus);
  }

 protected:
  void initializeGL() override {
    // A window that is taken to another parent gets another context.
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, &m_canvas, [this] { m_canvas.End(); });
    m_canvas.Begin(*context());
  }
  void paintGL() override { m_canvas.DrawInto(defaultFramebufferObject()); }

 private:
  ModelCanvas& m_canvas;
};

ModelCanvas::ModelCanvas(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::NoFocus);  // the keys are the view's
  if (OpenGlOfWindows().IsSoftware) {
    setAttribute(Qt::WA_OpaquePaintEvent);
  } else {
    m_surface = new Surface(*this);
  }
  m_names = new Names(*this);
}

ModelCanvas::~ModelCanvas() {
  End();
  delete m_surface;  // its context may still tell of its end
}

void ModelCanvas::Begin(QOpenGLContext& context) {
  std::string reason;
  const auto gl = LoadGlFunctions(
      [&context](const char* name) { return reinterpret_cast<void*>(context.getProcAddress(name)); }, reason);
  if (gl) m_renderer = Renderer::Make(gl, reason);
  if (!m_renderer) emit Failed(ToQt(reason));
}

void ModelCanvas::End() {
  m_isLoaded = false;
  if (!m_renderer) return;
  MakeCurrent();
  m_renderer.reset();
  DoneCurrent();
}

bool ModelCanvas::MakeCurrent() {
  if (m_surface == nullptr) return m_pixels && m_pixels->MakeCurrent();
  m_surface->makeCurrent();
  return true;
}

void ModelCanvas::DoneCurrent() {
  if (m_surface != nullptr) {
    m_surface->doneCurrent();
  } else if (m_pixels) {
    m_pixels->DoneCurrent();
  }
}

void ModelCanvas::DrawAgain() {
  if (m_surface != nullptr) {
    m_surface->update();
  } else {
    update();
  }
}

void ModelCanvas::ShowModel(const ShownModel& model) {
  // The scene before stays until the renderer knows the next one.
  const ShownModel before = std::exchange(m_model, model);
  m_isLoaded = false;
  m_state = nullptr;
  m_pose = nullptr;
  if (!m_renderer || !MakeCurrent()) return;
  if (m_model.Model) {
    LoadModel();
  } else {
    m_renderer->Unload();
  }
  DoneCurrent();
  DrawAgain();
}

void ModelCanvas::LoadModel() {
  m_renderer->Load(*m_model.Model, *m_model.Materials);
  m_isLoaded = true;
  // A context of its own stays, and without a graphics processor the driver's copy lies in the same memory.
  if (m_surface == nullptr) m_model.Materials = std::make_shared<MaterialSet>(m_model.Materials->WithoutTextures());
}

void ModelCanvas::Draw(const ViewState& state, const ScenePose& pose) {
  m_state = &state;
  m_pose = &pose;
  m_names->setVisible(state.Extras.BoneNames);
  m_names->setGeometry(rect());
  m_names->update();
  DrawAgain();
}

QString ModelCanvas::DriverName() const {
  return m_renderer ? ToQt(m_renderer->DriverName()) : QString();
}

QSize ModelCanvas::PixelSize() const {
  return {static_cast<int>(std::lround(width() * devicePixelRatioF())),
          static_cast<int>(std::lround(height() * devicePixelRatioF()))};
}

void ModelCanvas::resizeEvent(QResizeEvent*) {
  if (m_surface != nullptr) m_surface->setGeometry(rect());
  m_names->setGeometry(rect());
}

void ModelCanvas::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) DrawAgain();
}

void ModelCanvas::DrawInto(unsigned framebuffer) {
  if (!m_renderer) return;
  if (!m_isLoaded && m_model.Model) LoadModel();
  DrawTarget target;
  target.Framebuffer = framebuffer;
  target.Width = PixelSize().width();
  target.Height = PixelSize().height();
  target.LineWidth = static_cast<float>(devicePixelRatioF());
  SetBackground(palette(), target);
  if (!m_isLoaded || m_state == nullptr || m_pose == nullptr) return m_renderer->Clear(target);
  m_counts = m_renderer->Draw(*m_state, *m_pose, target);
}

/// Draws and reads back; null if that cannot be done.
const QImage* ModelCanvas::DrawnPixels() {
  const bool isNew = m_pixels == nullptr;
  if (isNew) m_pixels = std::make_unique<PixelContext>();
  if (!m_pixels->MakeCurrent()) return nullptr;
  if (isNew) Begin(m_pixels->Context());
  const QImage* image = nullptr;
  const unsigned framebuffer = m_renderer ? m_pixels->Framebuffer(PixelSize()) : 0;
  if (framebuffer != 0) {
    DrawInto(framebuffer);
    image = &m_pixels->Read();
  }
  m_pixels->DoneCurrent();
  return image;
}

void ModelCanvas::paintEvent(QPaintEvent*) {
  if (m_surface != nullptr) return;
  QPainter painter(this);
  if (const QImage* image = DrawnPixels()) {
    painter.drawImage(rect(), *image);
  } else {
    painter.fillRect(rect(), palette().window());
  }
}

QImage ModelCanvas::Picture() {
  QImage picture;
  if (m_surface != nullptr) {
    picture = m_surface->grabFramebuffer();
  } else if (const QImage* image = DrawnPixels()) {
    picture = *image;
  }
  if (picture.isNull()) return picture;
  picture.setDevicePixelRatio(devicePixelRatioF());
  QPainter painter(&picture);
  PaintNames(painter);
  return picture;
}

void ModelCanvas::PaintNames(QPainter& painter) const {
  if (m_state == nullptr || m_pose == nullptr || !m_model.Model || !m_state->Extras.BoneNames) return;
  const std::span<const Matrix34> bones = m_pose->Bones();
  const QColor behind = palette().color(QPalette::Base);
  for (size_t i = 0; i < bones.size() && i < m_model.Model->Bones.size(); ++i) {
    const Vec3 place =
        m_state->Eye.Project(bones[i].Translation(), static_cast<float>(width()), static_cast<float>(height()));
    if (!(place.Z >= -1 && place.Z <= 1)) continue;
    const QPointF point(place.X + 4, place.Y - 4);
    const QString name = ToQt(m_model.Model->Bones[i].Name);
    painter.setPen(behind);
    for (const QPointF& aside : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
      painter.drawText(point + aside, name);
    }
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(point, name);
  }
}

}  // namespace tarnwick::view
