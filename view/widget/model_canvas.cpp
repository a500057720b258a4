#include "view/widget/model_canvas.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPainter>

#include "platform/text.h"

namespace tarnwick::view {

using platform::ToQt;

namespace {

QSurfaceFormat Format() {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setAlphaBufferSize(0);
  return format;  // the renderer smooths edges in a framebuffer of its own
}

QString FindOpenGlTrouble() {
  // Some desktops know contexts, and no window that could show what is drawn in one.
  for (const char* platform : {"offscreen", "minimal", "linuxfb", "vnc"}) {
    if (QGuiApplication::platformName() == platform) return "this desktop draws without OpenGL";
  }
  QOpenGLContext context;
  context.setFormat(Format());
  QOffscreenSurface surface;
  if (!context.create()) return "no OpenGL context can be had";
  surface.setFormat(context.format());
  surface.create();
  if (!context.makeCurrent(&surface)) return "the OpenGL context cannot be used";
  const QSurfaceFormat had = context.format();
  context.doneCurrent();
  if (had.version() >= std::pair(3, 3)) return {};
  return QString("OpenGL 3.3 is needed, and there is %1.%2").arg(had.majorVersion()).arg(had.minorVersion());
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
  static const QString trouble = FindOpenGlTrouble();
  return trouble;
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

ModelCanvas::ModelCanvas(QWidget* parent) : QOpenGLWidget(parent), m_names(new Names(*this)) {
  setFormat(Format());
  setFocusPolicy(Qt::NoFocus);  // the keys are the view's
}

ModelCanvas::~ModelCanvas() {
  Release();
}

void ModelCanvas::Release() {
  if (!m_renderer) return;
  makeCurrent();
  m_renderer.reset();
  doneCurrent();
  m_isLoaded = false;
}

void ModelCanvas::ShowModel(const ShownModel& model) {
  // The scene before stays until the renderer knows the next one.
  const ShownModel before = std::exchange(m_model, model);
  m_isLoaded = false;
  m_state = nullptr;
  m_pose = nullptr;
  if (!m_renderer) return;
  makeCurrent();
  if (m_model.Model) {
    m_renderer->Load(*m_model.Model, *m_model.Materials);
    m_isLoaded = true;
  } else {
    m_renderer->Unload();
  }
  doneCurrent();
  update();
}

void ModelCanvas::Draw(const ViewState& state, const ScenePose& pose) {
  m_state = &state;
  m_pose = &pose;
  m_names->setVisible(state.Extras.BoneNames);
  m_names->setGeometry(rect());
  m_names->update();
  update();
}

QString ModelCanvas::DriverName() const {
  return m_renderer ? ToQt(m_renderer->DriverName()) : QString();
}

void ModelCanvas::initializeGL() {
  // A window that is taken to another parent gets another context.
  connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &ModelCanvas::Release, Qt::UniqueConnection);
  std::string reason;
  const auto gl = LoadGlFunctions(
      [this](const char* name) { return reinterpret_cast<void*>(context()->getProcAddress(name)); }, reason);
  if (gl) m_renderer = Renderer::Make(gl, reason);
  if (!m_renderer) emit Failed(ToQt(reason));
}

void ModelCanvas::resizeGL(int, int) {
  m_names->setGeometry(rect());
}

void ModelCanvas::paintGL() {
  if (!m_renderer) return;
  if (!m_isLoaded && m_model.Model) {
    m_renderer->Load(*m_model.Model, *m_model.Materials);
    m_isLoaded = true;
  }
  DrawTarget target;
  target.Framebuffer = defaultFramebufferObject();
  target.Width = static_cast<int>(std::lround(width() * devicePixelRatioF()));
  target.Height = static_cast<int>(std::lround(height() * devicePixelRatioF()));
  target.LineWidth = static_cast<float>(devicePixelRatioF());
  SetBackground(palette(), target);
  if (!m_isLoaded || m_state == nullptr || m_pose == nullptr) return m_renderer->Clear(target);
  m_counts = m_renderer->Draw(*m_state, *m_pose, target);
}

QImage ModelCanvas::Picture() {
  QImage picture = grabFramebuffer();
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
