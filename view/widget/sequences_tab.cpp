#include "view/widget/sequences_tab.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QVBoxLayout>
#include <cmath>

#include "platform/text.h"
#include "view/widget/model_view.h"
#include "view/widget/tab_controls.h"

namespace tarnwick::view {

using platform::ToQt;

namespace {

constexpr float FastestSpeed = 4;
constexpr int SpeedSteps = 20;  // a step is a twentieth of the usual speed

}  // namespace

SequencesTab::SequencesTab(ModelView& view)
    : ViewerTab(view),
      m_search(new QLineEdit),
      m_list(new QListView),
      m_names(new QStringListModel(this)),
      m_found(new QSortFilterProxyModel(this)),
      m_speed(MakeSlider("Speed", 1, static_cast<int>(FastestSpeed) * SpeedSteps)),
      m_speedText(new QLabel),
      m_loop(new QCheckBox("Loop")),
      m_layerRows(new QVBoxLayout) {
  m_search->setObjectName("sequenceSearch");
  m_search->setPlaceholderText("Search sequences");
  m_search->setAccessibleName("Search sequences");
  m_search->setClearButtonEnabled(true);
  m_list->setObjectName("sequenceList");
  m_list->setAccessibleName("Sequences");
  m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_list->setUniformItemSizes(true);
  m_found->setSourceModel(m_names);
  m_found->setFilterCaseSensitivity(Qt::CaseInsensitive);
  m_list->setModel(m_found);
  m_loop->setObjectName("loopCheck");
  m_speed->setObjectName("speedSlider");
  auto* add = new QPushButton("On top");
  add->setObjectName("addLayerButton");
  add->setAutoDefault(false);
  add->setToolTip("Play the chosen sequence on top of the one that is shown");
  auto* speed = new QHBoxLayout;
  speed->addWidget(new QLabel("Speed:"));
  speed->addWidget(m_speed, 1);
  speed->addWidget(m_speedText);
  speed->addWidget(m_loop);
  auto* top = new QHBoxLayout;
  top->addWidget(m_search, 1);
  top->addWidget(add);
  auto* rows = new QVBoxLayout(this);
  rows->addLayout(top);
  rows->addWidget(m_list, 1);
  rows->addLayout(m_layerRows);
  rows->addLayout(speed);
  m_layerRows->setContentsMargins(0, 0, 0, 0);
  connect(m_search, &QLineEdit::textChanged, m_found, &QSortFilterProxyModel::setFilterFixedString);
  connect(add, &QAbstractButton::clicked, this, &SequencesTab::AddLayer);
  connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
    const int sequence = ChosenSequence();
    if (sequence < 0) return;
    View().Change([&](ViewState& state) {
      if (state.Sequence == sequence - 1) return;
      state.Sequence = sequence - 1;
      state.Cycle = 0;
    });
  });
  connect(m_speed, &QSlider::valueChanged, this, [this](int steps) {
    View().Change([&](ViewState& state) { state.Speed = static_cast<float>(steps) / SpeedSteps; });
  });
  connect(m_loop, &QCheckBox::clicked, this,
          [this](bool on) { View().Change([&](ViewState& state) { state.Loops = on; }); });
}

/// The row of the list that is current, with the rest pose as 0; -1 for none.
int SequencesTab::ChosenSequence() const {
  return m_found->mapToSource(m_list->currentIndex()).row();
}

void SequencesTab::TakeModel() {
  const auto& scene = View().Model().Model;
  const QSignalBlocker quiet(m_list->selectionModel());
  QStringList names;
  if (scene) {
    names << "(rest pose)";
    for (const SceneSequence& sequence : scene->Sequences) names << Named(sequence.Name, "(no name)");
  }
  m_search->clear();
  m_names->setStringList(names);
  ShowLayers();
}

void SequencesTab::AddLayer() {
  const int sequence = ChosenSequence() - 1;
  if (sequence < 0) return;
  View().Change([&](ViewState& state) { state.Layers.push_back({sequence, 1}); });
}

void SequencesTab::ShowLayers() {
  const auto& scene = View().Model().Model;
  for (const auto& [slider, row] : m_layers) delete row;
  m_layers.clear();
  m_shownLayers = scene ? View().State().Layers : std::vector<ViewLayer>();
  for (size_t i = 0; i < m_shownLayers.size(); ++i) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    const auto sequence = static_cast<size_t>(m_shownLayers[i].Sequence);
    const QString name = sequence < scene->Sequences.size() ? ToQt(scene->Sequences[sequence].Name) : QString();
    auto* weight = MakeSlider("Weight of " + name, 0, 100);
    auto* remove = new QPushButton("Remove");
    remove->setAutoDefault(false);
    remove->setAccessibleName("Remove " + name);
    line->addWidget(new QLabel(name), 1);
    line->addWidget(weight, 1);
    line->addWidget(remove);
    m_layerRows->addWidget(row);
    m_layers.emplace_back(weight, row);
    connect(weight, &QSlider::valueChanged, this, [this, i](int percent) {
      View().Change([&](ViewState& state) {
        if (i < state.Layers.size()) state.Layers[i].Weight = static_cast<float>(percent) / 100;
      });
    });
    // The button goes with its row, so not while it is being pressed.
    connect(
        remove, &QAbstractButton::clicked, this,
        [this, i] {
          View().Change([&](ViewState& state) {
            if (i < state.Layers.size()) state.Layers.erase(state.Layers.begin() + static_cast<ptrdiff_t>(i));
          });
        },
        Qt::QueuedConnection);
  }
}

void SequencesTab::TakeState() {
  const ViewState& state = View().State();
  SetQuietly(*m_speed, static_cast<int>(std::lround(state.Speed * SpeedSteps)));
  m_speedText->setText(QString("%1 ×").arg(QLocale().toString(static_cast<double>(state.Speed), 'f', 2)));
  m_loop->setChecked(state.Loops);
  if (state.Layers.size() != m_shownLayers.size()) ShowLayers();
  for (size_t i = 0; i < m_layers.size(); ++i) {
    SetQuietly(*m_layers[i].first, static_cast<int>(std::lround(state.Layers[i].Weight * 100)));
  }
  if (ChosenSequence() != state.Sequence + 1) {
    const QSignalBlocker quiet(m_list->selectionModel());
    const QModelIndex index = m_found->mapFromSource(m_names->index(state.Sequence + 1));
    m_list->setCurrentIndex(index);
    m_list->viewport()->update();  // which the selection, being quiet, does not
  }
}

}  // namespace tarnwick::view
