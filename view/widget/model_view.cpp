#include "view/widget/model_view.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "core/paths.h"
#include "view/scene/sequence_place.h"
#include "view/widget/model_canvas.h"

namespace tarnwick::view {

namespace {

constexpr int TickMilliseconds = 16;
constexpr float DegreesAPoint = 0.4f;  // of the mouse
constexpr float DegreesAKey = 15;
constexpr float PanAKey = 0.05f;  // parts of the picture's height
constexpr float ZoomAStep = 0.87f;
constexpr float WheelNotch = 120;
constexpr float LongestTick = 0.25f;  // seconds: a window that was held up does not leap

struct LightPlace {
  float Yaw, Pitch;  // degrees
};
constexpr LightPlace LightDesktopLight{30, 40};
/// Lower, so that what is in the shade stands out against a dark background.
constexpr LightPlace DarkDesktopLight{45, 15};

/// Whether `model` is an SMD file of whose materials none is there.
bool IsUntexturedMesh(const ShownModel& model) {
  const auto& materials = model.Materials->Materials;
  return core::LowerAscii(model.Model->Path).ends_with(".smd") &&
         std::all_of(materials.begin(), materials.end(), [](const Material& one) { return one.Missing; });
}

}  // namespace

ModelView::ModelView(QWidget* parent) : QWidget(parent), m_text(new QLabel), m_menu(new QMenu(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName("Model");
  m_text->setObjectName("modelText");
  m_text->setAlignment(Qt::AlignCenter);
  m_text->setWordWrap(true);
  m_text->setTextFormat(Qt::PlainText);
  m_text->setContentsMargins(12, 12, 12, 12);
  m_text->setForegroundRole(QPalette::PlaceholderText);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(m_text);
  m_clock.setInterval(TickMilliseconds);
  connect(&m_clock, &QTimer::timeout, this, &ModelView::Tick);
  MakeCommands();
}

ModelView::~ModelView() {
  delete m_canvas;  // before what it draws
}

QAction* ModelView::Command(QMenu& menu, const QString& text, const QKeySequence& key,
                            const std::function<void()>& act) {
  QAction* action = menu.addAction(text);
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
  addAction(action);
  connect(action, &QAction::triggered, this, [this, act] {
    if (HasModel()) act();
  });
  return action;
}

void ModelView::Switch(QMenu& menu, const QString& text, const QKeySequence& key, bool ViewExtras::*extra) {
  QAction* action = Command(menu, text, key, [this, extra] {
    Change([extra](ViewState& state) { state.Extras.*extra = !(state.Extras.*extra); });
  });
  action->setCheckable(true);
  m_marks.emplace_back(action, [extra](const ViewState& state) { return state.Extras.*extra; });
}

void ModelView::MakeCommands() {
  Command(*m_menu, "&Frame the model", Qt::Key_F, [this] { FrameModel(); })->setShortcuts({Qt::Key_F, Qt::Key_Home});
  QMenu& sides = *m_menu->addMenu("Look from the &side");
  const struct {
    const char* Text;
    QKeySequence Key;
    ViewSide Side;
  } looks[] = {{"&Front", Qt::Key_1, ViewSide::Front}, {"&Back", Qt::CTRL | Qt::Key_1, ViewSide::Back},
               {"&Right", Qt::Key_3, ViewSide::Right}, {"&Left", Qt::CTRL | Qt::Key_3, ViewSide::Left},
               {"&Top", Qt::Key_7, ViewSide::Top},     {"Botto&m", Qt::CTRL | Qt::Key_7, ViewSide::Bottom}};
  for (const auto& look : looks) {
    Command(sides, look.Text, look.Key, [this, side = look.Side] {
      Change([&](ViewState& state) { state.Eye.Look(side); });
      FrameModel();
    });
  }
  QAction* flat = Command(sides, "&Without perspective", Qt::Key_5, [this] {
    Change([](ViewState& state) { state.Eye.IsOrthographic = !state.Eye.IsOrthographic; });
  });
  flat->setCheckable(true);
  m_marks.emplace_back(flat, [](const ViewState& state) { return state.Eye.IsOrthographic; });

  m_menu->addSeparator();
  const struct {
    const char* Text;
    Qt::Key Key;
    ShadingMode Mode;
  } modes[] = {{"&Textured", Qt::Key_T, ShadingMode::Textured},
               {"S&haded", Qt::Key_S, ShadingMode::Shaded},
               {"&Wireframe", Qt::Key_W, ShadingMode::Wireframe}};
  for (const auto& each : modes) {
    QAction* action = Command(*m_menu, each.Text, each.Key,
                              [this, mode = each.Mode] { Change([mode](ViewState& state) { state.Mode = mode; }); });
    action->setCheckable(true);
    m_marks.emplace_back(action, [mode = each.Mode](const ViewState& state) { return state.Mode == mode; });
  }
  QMenu& extras = *m_menu->addMenu("Sh&ow too");
  QAction* lines = Command(extras, "&Lines of the triangles", Qt::Key_L,
                           [this] { Change([](ViewState& state) { state.WireOverMesh = !state.WireOverMesh; }); });
  lines->setCheckable(true);
  m_marks.emplace_back(lines, [](const ViewState& state) { return state.WireOverMesh; });
  Switch(extras, "&Bones", Qt::Key_B, &ViewExtras::Bones);
  Switch(extras, "Bone &names", Qt::Key_N, &ViewExtras::BoneNames);
  Switch(extras, "&Attachments", Qt::Key_A, &ViewExtras::Attachments);
  Switch(extras, "&Hit boxes", Qt::Key_H, &ViewExtras::Hitboxes);
  Switch(extras, "&Physics hulls", Qt::Key_P, &ViewExtras::Hulls);
  Switch(extras, "Bounding bo&xes", Qt::Key_X, &ViewExtras::Boxes);
  Switch(extras, "N&ormals", Qt::Key_O, &ViewExtras::Normals);
  Switch(extras, "&Ground grid", Qt::Key_G, &ViewExtras::Grid);

  m_menu->addSeparator();
  QAction* play = Command(*m_menu, "&Play", Qt::Key_Space,
                          [this] { Change([](ViewState& state) { state.IsPlaying = !state.IsPlaying; }); });
  play->setCheckable(true);
  m_marks.emplace_back(play, [](const ViewState& state) { return state.IsPlaying; });
  Command(*m_menu, "&Next frame", Qt::Key_Period, [this] { StepFrame(1); });
  Command(*m_menu, "Pre&vious frame", Qt::Key_Comma, [this] { StepFrame(-1); });
  m_menu->addSeparator();
  Command(*m_menu, "&Copy picture", QKeySequence::Copy, [this] {
    const QImage picture = Picture();
    if (!picture.isNull()) QApplication::clipboard()->setImage(picture);
  });
  Command(*m_menu, "Sav&e picture...", QKeySequence::Save, [this] { emit SaveWanted(); });
  connect(m_menu, &QMenu::aboutToShow, this, &ModelView::ShowCommands);
}

void ModelView::ShowCommands() {
  for (QAction* action : actions()) action->setEnabled(HasModel());
  for (const auto& [action, isTicked] : m_marks) action->setChecked(isTicked(m_state));
}

float ModelView::Aspect() const {
  return static_cast<float>(std::max(width(), 1)) / static_cast<float>(std::max(height(), 1));
}

void ModelView::ShowModel(const ShownModel& model, const std::optional<ViewState>& state) {
  m_isDragging = false;
  m_pose.reset();
  // The canvas alone has the textures, for as long as it needs them.
  ShownModel plain = model;
  if (model.Materials) plain.Materials = std::make_shared<MaterialSet>(model.Materials->WithoutTextures());
  const ShownModel before = std::exchange(m_model, plain);
  if (m_canvas != nullptr) m_canvas->ShowModel(model);
  if (!m_model.Model) return;
  m_wasFramed = state.has_value();
  m_state = state ? *state : FirstViewOf(*m_model.Model, Aspect());
  if (!state) {
    // A mesh on its way to a compiler has no textures yet, and an animation no mesh.
    if (IsUntexturedMesh(m_model)) m_state.Mode = ShadingMode::Shaded;
    if (m_model.Model->Draws.empty()) m_state.Extras.Bones = true;
  }
  TakeDesktopLight(m_state);
  m_pose.emplace(*m_model.Model);
  if (!OpenGlTrouble().isEmpty()) {
    Say("The model cannot be shown: " + OpenGlTrouble() + ". Everything else works without.");
  } else {
    if (m_canvas == nullptr) {
      m_canvas = new ModelCanvas;
      connect(m_canvas, &ModelCanvas::Failed, this, [this](const QString& reason) {
        Say("The model cannot be shown: " + reason + ". Everything else works without.");
      });
      layout()->addWidget(m_canvas);
      m_canvas->ShowModel(model);
    }
    m_text->hide();
    m_canvas->show();
  }
  m_sinceTick.start();
  m_clock.start();
  Redraw();
  emit StateChanged();
}

void ModelView::ShowText(const QString& text) {
  ShowModel({});
  m_clock.stop();
  Say(text);
  emit StateChanged();
}

void ModelView::Say(const QString& text) {
  m_text->setText(text);
  m_text->show();
  if (m_canvas != nullptr) m_canvas->hide();
}

QString ModelView::ShownText() const {
  return m_text->isHidden() ? QString() : m_text->text();
}

void ModelView::TakeDesktopLight(ViewState& state) const {
  if (state.IsLightChosen) return;
  const bool isDark = palette().color(QPalette::Window).lightness() < 128;
  const LightPlace& place = isDark ? DarkDesktopLight : LightDesktopLight;
  state.LightYaw = place.Yaw;
  state.LightPitch = place.Pitch;
}

void ModelView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Change([](ViewState&) {});
}

void ModelView::Change(const std::function<void(ViewState&)>& change) {
  if (!HasModel()) return;
  const ViewState before = m_state;
  change(m_state);
  TakeDesktopLight(m_state);
  if (m_state == before) return;
  if (m_state.Eye != before.Eye) m_wasFramed = true;
  Redraw();
  emit StateChanged();
}

void ModelView::Redraw() {
  if (!m_pose) return;
  m_pose->Set(PoseOf(m_state));
  if (m_canvas != nullptr) m_canvas->Draw(m_state, *m_pose);
}

void ModelView::Tick() {
  const float seconds = std::min(static_cast<float>(m_sinceTick.restart()) / 1000, LongestTick);
  if (!HasModel() || !m_state.IsPlaying || !isVisible()) return;
  const bool wasPlaying = m_state.IsPlaying;
  const float cycle = m_state.Cycle;
  const float played = m_state.Seconds;
  Advance(*m_model.Model, m_state, seconds);
  const bool moved = m_state.Seconds != played && m_pose->Set(PoseOf(m_state));
  if (moved && m_canvas != nullptr) m_canvas->Draw(m_state, *m_pose);
  if (m_state.Cycle != cycle) emit Played();
  if (m_state.IsPlaying != wasPlaying) emit StateChanged();
}

void ModelView::FrameModel() {
  if (!m_pose) return;
  const int32_t lod = ShownLod(*m_model.Model, m_state, static_cast<float>(std::max(height(), 1)));
  Box box = PosedBox(*m_model.Model, m_pose->SkinMatrices(), m_state.BodyGroups, lod);
  if (box.IsEmpty()) {  // a skeleton alone
    for (const Matrix34& bone : m_pose->Bones()) box.Add(bone.Translation());
  }
  Change([&](ViewState& state) { state.Eye.Frame(box, Aspect()); });
}

void ModelView::StepFrame(int frames) {
  Change([&](ViewState& state) {
    state.IsPlaying = false;
    const float last = TimingOf(*m_model.Model, state.Sequence, state.PoseParameters).LastFrame;
    float frame = std::round(ShownFrame(*m_model.Model, state)) + static_cast<float>(frames);
    if (frame < 0) frame = std::floor(last);
    if (frame > last) frame = 0;
    ShowFrame(*m_model.Model, state, frame);
  });
}

std::optional<DrawCounts> ModelView::Counts() const {
  if (m_canvas == nullptr || !HasModel()) return std::nullopt;
  return m_canvas->Counts();
}

QImage ModelView::Picture() {
  return m_canvas != nullptr && HasModel() && m_text->isHidden() ? m_canvas->Picture() : QImage();
}

std::optional<PickedTriangle> ModelView::Pick(const QPointF& point) const {
  if (!m_pose) return std::nullopt;
  return PickTriangle(*m_model.Model, m_state, *m_pose, static_cast<float>(width()), static_cast<float>(height()),
                      static_cast<float>(point.x()), static_cast<float>(point.y()));
}

void ModelView::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  m_grip = event->position();
  m_isDragging = false;
}

void ModelView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF moved = event->position() - m_grip;
  if (event->buttons() == Qt::NoButton || !HasModel()) return;
  if (!m_isDragging && moved.manhattanLength() < QApplication::startDragDistance()) return;
  m_isDragging = true;
  m_grip = event->position();
  const bool pans =
      (event->buttons() & Qt::MiddleButton) || (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier));
  Change([&](ViewState& state) {
    if (pans) {
      const auto points = static_cast<float>(std::max(height(), 1));
      state.Eye.Pan(-static_cast<float>(moved.x()) / points, static_cast<float>(moved.y()) / points);
    } else {
      state.Eye.Turn(-static_cast<float>(moved.x()) * DegreesAPoint, static_cast<float>(moved.y()) * DegreesAPoint);
    }
  });
}

void ModelView::mouseReleaseEvent(QMouseEvent* event) {
  if (m_isDragging || event->button() != Qt::LeftButton) return;
  if (const auto picked = Pick(event->position())) emit Picked(*picked);
}

void ModelView::wheelEvent(QWheelEvent* event) {
  event->accept();
  const float notches = static_cast<float>(event->angleDelta().y()) / WheelNotch;
  if (notches != 0) Change([&](ViewState& state) { state.Eye.Zoom(std::pow(ZoomAStep, notches)); });
}

void ModelView::contextMenuEvent(QContextMenuEvent* event) {
  m_menu->popup(event->globalPos());
}

void ModelView::keyPressEvent(QKeyEvent* event) {
  const bool pans = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
  const struct {
    int Key;
    float Right, Up;
  } arrows[] = {{Qt::Key_Left, -1, 0}, {Qt::Key_Right, 1, 0}, {Qt::Key_Up, 0, 1}, {Qt::Key_Down, 0, -1}};
  for (const auto& arrow : arrows) {
    if (event->key() != arrow.Key) continue;
    return Change([&](ViewState& state) {
      if (pans) {
        state.Eye.Pan(arrow.Right * PanAKey, arrow.Up * PanAKey);
      } else {
        state.Eye.Turn(arrow.Right * DegreesAKey, arrow.Up * DegreesAKey);
      }
    });
  }
  const bool nearer = event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal;
  if (!nearer && event->key() != Qt::Key_Minus) return QWidget::keyPressEvent(event);
  Change([&](ViewState& state) { state.Eye.Zoom(nearer ? ZoomAStep : 1 / ZoomAStep); });
}

void ModelView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (!HasModel() || m_wasFramed) return;
  FrameModel();
  m_wasFramed = false;
}

}  // namespace tarnwick::view
