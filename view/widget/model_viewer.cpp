#include "view/widget/model_viewer.h"

#include <QBoxLayout>
#include <QEvent>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHash>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>
#include <QSlider>
#include <QSplitter>
#include <QTabWidget>
#include <QToolButton>
#include <algorithm>
#include <cmath>

#include "platform/text.h"
#include "view/scene/sequence_place.h"
#include "view/widget/display_tab.h"
#include "view/widget/facts_tab.h"
#include "view/widget/parts_tab.h"
#include "view/widget/player_icons.h"
#include "view/widget/sequences_tab.h"
#include "view/widget/sliders_tab.h"

namespace tarnwick::view {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int PauseMilliseconds = 200;
constexpr int StepsAFrame = 10;  // of the slider

/// How each model was last looked at, by its path.
QHash<QString, ViewState>& KeptStates() {
  static QHash<QString, ViewState> states;
  return states;
}

}  // namespace

ModelViewer::ModelViewer(platform::Desktop& desktop, Controls controls, QWidget* parent)
    : QWidget(parent),
      m_desktop(desktop),
      m_view(new ModelView),
      m_tabs(new QTabWidget),
      m_notice(new QLabel),
      m_frame(new QSlider(Qt::Horizontal)),
      m_time(new QLabel),
      m_emptyText("The model that is named is shown here"),
      m_watcher(new QFileSystemWatcher(this)),
      m_source(std::make_shared<ModelSource>()) {
  m_view->setObjectName("modelView");
  m_tabs->setObjectName("viewerTabs");
  m_tabs->setDocumentMode(true);
  m_tabs->setUsesScrollButtons(true);
  m_pose = new SlidersTab(*m_view, SlidersTab::What::PoseParameters);
  m_face = new SlidersTab(*m_view, SlidersTab::What::FlexControllers);
  m_facts = new FactsTab(*m_view);
  AddTab(new SequencesTab(*m_view), "Sequences");
  AddTab(new DisplayTab(*m_view), "Display");
  AddTab(new PartsTab(*m_view), "Parts");
  AddTab(m_pose, "Pose");
  AddTab(m_face, "Face");
  AddTab(m_facts, "Facts");

  m_notice->setObjectName("viewerNotice");
  m_notice->setWordWrap(true);
  m_notice->setTextFormat(Qt::PlainText);
  m_notice->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* time = new QHBoxLayout;
  m_play = AddButton("Play", "playButton");
  m_play->setCheckable(true);
  m_before = AddButton("Previous frame", "previousFrameButton");
  m_next = AddButton("Next frame", "nextFrameButton");
  m_frame->setObjectName("frameSlider");
  m_frame->setAccessibleName("Frame");
  m_frame->setSingleStep(StepsAFrame);
  m_time->setObjectName("frameLabel");
  m_time->setMinimumWidth(m_time->fontMetrics().horizontalAdvance("000.0 of 000"));
  m_time->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  for (QWidget* each : std::initializer_list<QWidget*>{m_play, m_before, m_next}) time->addWidget(each);
  time->addWidget(m_frame, 1);
  time->addWidget(m_time);
  auto* picture = new QWidget;
  auto* rows = new QVBoxLayout(picture);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(m_view, 1);
  rows->addWidget(m_notice);
  rows->addLayout(time);

  auto* splitter = new QSplitter(controls == Controls::Beside ? Qt::Horizontal : Qt::Vertical);
  splitter->addWidget(picture);
  splitter->addWidget(m_tabs);
  splitter->setStretchFactor(0, 1);
  splitter->setSizes(controls == Controls::Beside ? QList<int>{610, 430} : QList<int>{360, 210});
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(splitter);

  m_waiting.setSingleShot(true);
  m_waiting.setInterval(PauseMilliseconds);
  connect(&m_waiting, &QTimer::timeout, this, &ModelViewer::Load);
  connect(m_watcher, &QFileSystemWatcher::fileChanged, this, [this] { m_waiting.start(); });
  connect(m_view, &ModelView::StateChanged, this, &ModelViewer::TakeState);
  connect(m_view, &ModelView::Played, this, &ModelViewer::ShowTime);
  connect(m_view, &ModelView::SaveWanted, this, &ModelViewer::SavePicture);
  connect(m_play, &QAbstractButton::clicked, this,
          [this](bool on) { m_view->Change([on](ViewState& state) { state.IsPlaying = on; }); });
  connect(m_before, &QAbstractButton::clicked, this, [this] { m_view->StepFrame(-1); });
  connect(m_next, &QAbstractButton::clicked, this, [this] { m_view->StepFrame(1); });
  connect(m_frame, &QSlider::valueChanged, this, [this](int step) {
    if (!m_view->HasModel()) return;
    m_view->Change([&](ViewState& state) {
      state.IsPlaying = false;
      ShowFrame(*m_view->Model().Model, state, static_cast<float>(step) / StepsAFrame);
    });
  });
  TakeModel({}, {});
}

ModelViewer::~ModelViewer() {
  KeepState();
}

void ModelViewer::AddTab(ViewerTab* tab, const QString& title) {
  m_tabs->addTab(tab, title);
  m_tabList.push_back(tab);
}

QToolButton* ModelViewer::AddButton(const QString& text, const char* name) {
  auto* button = new QToolButton;
  button->setObjectName(name);
  button->setToolTip(text);
  button->setAccessibleName(text);
  button->setFocusPolicy(Qt::StrongFocus);
  return button;
}

void ModelViewer::SetEmptyText(const QString& text) {
  m_emptyText = text;
  if (!m_view->HasModel() && m_path.isEmpty()) m_view->ShowText(text);
}

void ModelViewer::ShowFile(const QString& path, const QString& gameDirectory) {
  if (path == m_path && gameDirectory == m_gameDirectory) return;
  m_path = path;
  m_gameDirectory = gameDirectory;
  m_loading.Forget();
  m_waiting.start();
}

void ModelViewer::Reload() {
  if (!m_path.isEmpty()) m_waiting.start();
}

void ModelViewer::Load() {
  if (!m_watcher->files().isEmpty()) m_watcher->removePaths(m_watcher->files());
  if (m_path.isEmpty()) return TakeModel({}, {});
  KeepState();
  if (m_path != m_shownPath) m_view->ShowText("Reading " + QFileInfo(m_path).fileName());
  m_loading.Run(
      [source = m_source, path = FromQt(m_path), game = FromQt(m_gameDirectory)] { return source->Load(path, game); },
      [this](const ShownModel& model) { TakeModel(model, m_path); });
}

void ModelViewer::TakeModel(const ShownModel& model, const QString& path) {
  KeepState();
  m_shownPath = path;
  for (const std::string& file : ModelSource::FilesOf(FromQt(path))) {
    if (!file.empty() && QFileInfo::exists(ToQt(file))) m_watcher->addPath(ToQt(file));
  }
  if (model.Model) {
    for (const std::string& file : model.Model->Included) {
      if (QFileInfo::exists(ToQt(file))) m_watcher->addPath(ToQt(file));
    }
  }
  const auto kept = KeptStates().constFind(path);
  if (!model.Model) {
    m_view->ShowText(path.isEmpty() ? m_emptyText : ToQt(model.Error));
  } else {
    m_view->ShowModel(model, kept != KeptStates().constEnd() ? std::optional(*kept) : std::nullopt);
  }
  const bool has = model.Model != nullptr;
  m_notice->setText(ToQt(NoticeOf(model)));
  m_notice->setVisible(!m_notice->text().isEmpty());
  for (ViewerTab* tab : m_tabList) tab->TakeModel();
  m_tabs->setTabEnabled(m_tabs->indexOf(m_pose), m_pose->HasSliders());
  m_tabs->setTabEnabled(m_tabs->indexOf(m_face), m_face->HasSliders());
  const int troubles = m_facts->Troubles();
  m_tabs->setTabText(m_tabs->indexOf(m_facts), troubles > 0 ? QString("Facts (%1)").arg(troubles) : "Facts");
  m_tabs->setEnabled(has);
  TakeState();
  emit Shown();
}

void ModelViewer::KeepState() {
  if (m_view->HasModel() && !m_shownPath.isEmpty()) KeptStates()[m_shownPath] = m_view->State();
}

void ModelViewer::TakeState() {
  const bool moves = m_view->HasModel() && m_view->State().Sequence >= 0;
  for (QWidget* each : std::initializer_list<QWidget*>{m_play, m_frame, m_before, m_next}) each->setEnabled(moves);
  const bool isPlaying = moves && m_view->State().IsPlaying;
  m_play->setChecked(isPlaying);
  if (m_play->icon().isNull() || isPlaying != m_looksPlaying) ShowIcons();
  m_play->setToolTip(isPlaying ? "Pause" : "Play");
  if (m_view->HasModel()) {
    for (ViewerTab* tab : m_tabList) tab->TakeState();
  }
  ShowTime();
}

void ModelViewer::ShowIcons() {
  m_looksPlaying = m_view->HasModel() && m_view->State().Sequence >= 0 && m_view->State().IsPlaying;
  m_play->setIcon(PlayerIcon(m_looksPlaying ? PlayerSign::Pause : PlayerSign::Play, palette()));
  m_before->setIcon(PlayerIcon(PlayerSign::Back, palette()));
  m_next->setIcon(PlayerIcon(PlayerSign::Forward, palette()));
}

void ModelViewer::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && m_next != nullptr) ShowIcons();
}

void ModelViewer::ShowTime() {
  if (!m_view->HasModel()) return m_time->clear();
  const Scene& scene = *m_view->Model().Model;
  const ViewState& state = m_view->State();
  if (state.Sequence < 0) return m_time->clear();
  const float last = TimingOf(scene, state.Sequence, state.PoseParameters).LastFrame;
  const float frame = ShownFrame(scene, state);
  const QSignalBlocker quiet(m_frame);
  m_frame->setRange(0, static_cast<int>(std::lround(std::clamp(last, 0.0f, 1e6f) * StepsAFrame)));
  m_frame->setValue(static_cast<int>(std::lround(std::clamp(frame, 0.0f, 1e6f) * StepsAFrame)));
  const QLocale numbers;
  m_time->setText(QString("%1 of %2")
                      .arg(numbers.toString(static_cast<double>(frame), 'f', 1),
                           numbers.toString(static_cast<double>(last), 'g', 4)));
}

void ModelViewer::SavePicture() {
  const QImage picture = m_view->Picture();
  if (picture.isNull()) {
    return m_desktop.Box(this, platform::BoxIcon::Exclamation, "There is no picture to save.", "Warning");
  }
  const auto chosen =
      m_desktop.ChooseFileToSave(this, {.Title = "Name of Picture",
                                        .Filter = "PNG Files (*.png)|*.png|",
                                        .StartName = FromQt(QFileInfo(m_shownPath).completeBaseName() + ".png"),
                                        .StartDirectory = FromQt(QFileInfo(m_shownPath).path())});
  if (!chosen) return;
  if (picture.save(ToQt(*chosen), "PNG")) return;
  m_desktop.Box(this, platform::BoxIcon::Stop, "Unable to write the picture " + *chosen, "Error");
}

}  // namespace tarnwick::view
