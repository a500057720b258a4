#include "view/widget/viewer_tabs.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QSortFilterProxyModel>
#include <QSpinBox>
#include <QStringListModel>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "core/byte_size.h"
#include "platform/text.h"
#include "view/scene/face.h"
#include "view/widget/model_view.h"
#include "view/widget/pose_pad.h"

namespace tarnwick::view {

using platform::ToQt;

namespace {

constexpr int SliderSteps = 1000;
constexpr float FastestSpeed = 4;
constexpr int SpeedSteps = 20;  // a step is a twentieth of the usual speed

QSlider* MakeSlider(const QString& name, int minimum, int maximum) {
  auto* slider = new QSlider(Qt::Horizontal);
  slider->setRange(minimum, maximum);
  slider->setPageStep(std::max((maximum - minimum) / 20, 1));
  slider->setAccessibleName(name);
  return slider;
}

void SetQuietly(QSlider& slider, int value) {
  const QSignalBlocker quiet(slider);
  slider.setValue(value);
}

void SetQuietly(QComboBox& box, int index) {
  const QSignalBlocker quiet(box);
  box.setCurrentIndex(index);
}

/// Puts `content` where it can be scrolled.
QScrollArea* Scrolled(QWidget* content) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(content);
  return area;
}

void Narrow(QComboBox& box) {
  box.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box.setMinimumContentsLength(8);
}

QString Number(float value) {
  return QLocale().toString(static_cast<double>(value), 'g', 4);
}

QString Named(const std::string& name, const QString& otherwise) {
  return name.empty() ? otherwise : ToQt(name);
}

constexpr ViewColor Backgrounds[] = {{0.12f, 0.12f, 0.13f, 1}, {0.5f, 0.5f, 0.5f, 1}, {0.95f, 0.95f, 0.95f, 1}};
constexpr int OwnBackground = 1 + static_cast<int>(std::size(Backgrounds));  // of the list, behind the desktop's

}  // namespace

DisplayTab::DisplayTab(ModelView& view)
    : ViewerTab(view),
      m_mode(new QComboBox),
      m_background(new QComboBox),
      m_lightYaw(MakeSlider("Light from the side", -180, 180)),
      m_lightPitch(MakeSlider("Light from above", -90, 90)) {
  m_mode->setObjectName("modeCombo");
  m_mode->setAccessibleName("Mode");
  m_mode->addItems({"Textured", "Shaded", "Wireframe"});
  m_background->setObjectName("backgroundCombo");
  m_background->setAccessibleName("Background");
  m_background->addItems({"Desktop's", "Dark", "Grey", "Light", "Other..."});
  Narrow(*m_mode);
  Narrow(*m_background);
  auto* choices = new QFormLayout;
  choices->addRow("Mode:", m_mode);
  choices->addRow("Background:", m_background);
  choices->addRow("Light, turn:", m_lightYaw);
  choices->addRow("Light, height:", m_lightPitch);
  auto* boxes = new QGridLayout;
  const struct {
    const char* Text;
    std::function<bool&(ViewState&)> Value;
  } values[] = {{"Lines", [](ViewState& state) -> bool& { return state.WireOverMesh; }},
                {"Grid", [](ViewState& state) -> bool& { return state.Extras.Grid; }},
                {"Bones", [](ViewState& state) -> bool& { return state.Extras.Bones; }},
                {"Names", [](ViewState& state) -> bool& { return state.Extras.BoneNames; }},
                {"Attachments", [](ViewState& state) -> bool& { return state.Extras.Attachments; }},
                {"Hit boxes", [](ViewState& state) -> bool& { return state.Extras.Hitboxes; }},
                {"Physics hulls", [](ViewState& state) -> bool& { return state.Extras.Hulls; }},
                {"Bounding boxes", [](ViewState& state) -> bool& { return state.Extras.Boxes; }},
                {"Normals", [](ViewState& state) -> bool& { return state.Extras.Normals; }}};
  for (const auto& each : values) {
    auto* box = new QCheckBox(each.Text);
    const int at = static_cast<int>(m_boxes.size());
    boxes->addWidget(box, at / 2, at % 2);
    m_boxes.emplace_back(box, each.Value);
    connect(box, &QCheckBox::clicked, this,
            [this, value = each.Value](bool on) { View().Change([&](ViewState& state) { value(state) = on; }); });
  }
  auto* content = new QWidget;
  auto* inner = new QVBoxLayout(content);
  inner->addLayout(choices);
  inner->addLayout(boxes);
  inner->addStretch(1);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(Scrolled(content));
  connect(m_mode, &QComboBox::currentIndexChanged, this,
          [this](int mode) { View().Change([&](ViewState& state) { state.Mode = static_cast<ShadingMode>(mode); }); });
  connect(m_background, &QComboBox::activated, this, &DisplayTab::ChooseBackground);
  connect(m_lightYaw, &QSlider::valueChanged, this, [this](int degrees) {
    View().Change([&](ViewState& state) { state.LightYaw = static_cast<float>(degrees); });
  });
  connect(m_lightPitch, &QSlider::valueChanged, this, [this](int degrees) {
    View().Change([&](ViewState& state) { state.LightPitch = static_cast<float>(degrees); });
  });
}

void DisplayTab::ChooseBackground(int choice) {
  std::optional<ViewColor> color;
  if (choice == OwnBackground) {
    const QColor chosen = QColorDialog::getColor(Qt::gray, this, "Background");
    if (!chosen.isValid()) return TakeState();
    color = {chosen.redF(), chosen.greenF(), chosen.blueF(), 1};
  } else if (choice > 0) {
    color = Backgrounds[choice - 1];
  }
  View().Change([&](ViewState& state) { state.Background = color; });
}

void DisplayTab::TakeState() {
  ViewState state = View().State();
  SetQuietly(*m_mode, static_cast<int>(state.Mode));
  SetQuietly(*m_lightYaw, static_cast<int>(std::lround(std::remainder(state.LightYaw, 360))));
  SetQuietly(*m_lightPitch, static_cast<int>(std::lround(state.LightPitch)));
  int background = 0;
  if (state.Background) {
    const auto* known = std::find(std::begin(Backgrounds), std::end(Backgrounds), *state.Background);
    background = 1 + static_cast<int>(known - std::begin(Backgrounds));
  }
  SetQuietly(*m_background, background);
  for (const auto& [box, value] : m_boxes) box->setChecked(value(state));
}

PartsTab::PartsTab(ModelView& view)
    : ViewerTab(view), m_skin(new QSpinBox), m_lod(new QComboBox), m_hitboxSet(new QComboBox) {
  m_skin->setObjectName("skinSpin");
  m_skin->setAccessibleName("Skin");
  m_lod->setObjectName("lodCombo");
  m_lod->setAccessibleName("Level of detail");
  m_hitboxSet->setObjectName("hitboxSetCombo");
  m_hitboxSet->setAccessibleName("Hit box set");
  auto* content = new QWidget;
  m_rows = new QFormLayout(content);
  m_rows->addRow("Skin:", m_skin);
  m_rows->addRow("Level of detail:", m_lod);
  m_rows->addRow("Hit box set:", m_hitboxSet);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(Scrolled(content));
  Narrow(*m_lod);
  Narrow(*m_hitboxSet);
  connect(m_skin, &QSpinBox::valueChanged, this,
          [this](int skin) { View().Change([&](ViewState& state) { state.Skin = skin; }); });
  connect(m_lod, &QComboBox::currentIndexChanged, this, [this](int choice) {
    View().Change(
        [&](ViewState& state) { state.FixedLod = choice > 0 ? std::optional<int32_t>(choice - 1) : std::nullopt; });
  });
  connect(m_hitboxSet, &QComboBox::currentIndexChanged, this,
          [this](int set) { View().Change([&](ViewState& state) { state.HitboxSet = std::max(set, 0); }); });
}

void PartsTab::TakeModel() {
  const auto& scene = View().Model().Model;
  const QSignalBlocker quietSkin(m_skin), quietLod(m_lod), quietSet(m_hitboxSet);
  for (QComboBox* group : m_groups) m_rows->removeRow(group);
  m_groups.clear();
  m_lod->clear();
  m_hitboxSet->clear();
  m_skin->setRange(0, scene ? std::max(static_cast<int>(scene->Skins.size()) - 1, 0) : 0);
  m_skin->setEnabled(scene && scene->Skins.size() > 1);
  m_lod->setEnabled(scene && scene->Lods.size() > 1);
  m_hitboxSet->setEnabled(scene && scene->HitboxSets.size() > 1);
  if (!scene) return;
  m_lod->addItem("By distance");
  for (size_t i = 0; i < scene->Lods.size(); ++i) {
    const SceneLod& lod = scene->Lods[i];
    m_lod->addItem(lod.IsShadow ? QString("%1: for shadows").arg(i)
                                : QString("%1: from %2").arg(i).arg(Number(lod.Distance)));
  }
  for (const SceneHitboxSet& set : scene->HitboxSets) m_hitboxSet->addItem(Named(set.Name, "(no name)"));
  for (size_t part = 0; part < scene->BodyParts.size(); ++part) {
    const SceneBodyPart& each = scene->BodyParts[part];
    if (each.Models.size() < 2) continue;  // there is nothing to choose
    auto* group = new QComboBox;
    Narrow(*group);
    group->setObjectName(QString("bodyGroup%1").arg(part));
    group->setAccessibleName(Named(each.Name, "Body group"));
    for (const SceneModel& model : each.Models) {
      group->addItem(Named(model.Name, model.TriangleCounts.empty() ? "(nothing)" : "(no name)"));
    }
    m_rows->addRow(Named(each.Name, "Body group") + ":", group);
    group->setProperty("part", static_cast<int>(part));
    m_groups.push_back(group);
    connect(group, &QComboBox::currentIndexChanged, this, [this, part](int model) {
      View().Change([&](ViewState& state) {
        if (state.BodyGroups.size() <= part) state.BodyGroups.resize(part + 1);
        state.BodyGroups[part] = model;
      });
    });
  }
}

void PartsTab::TakeState() {
  const ViewState& state = View().State();
  {
    const QSignalBlocker quiet(m_skin);
    m_skin->setValue(state.Skin);
  }
  SetQuietly(*m_lod, state.FixedLod ? *state.FixedLod + 1 : 0);
  SetQuietly(*m_hitboxSet, state.HitboxSet);
  for (QComboBox* group : m_groups) {
    const auto part = static_cast<size_t>(group->property("part").toInt());
    SetQuietly(*group, part < state.BodyGroups.size() ? state.BodyGroups[part] : 0);
  }
}

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

SlidersTab::SlidersTab(ModelView& view, What what)
    : ViewerTab(view), m_what(what), m_pad(new PosePad), m_padText(new QLabel) {
  auto* content = new QWidget;
  m_rows = new QFormLayout(content);
  auto* reset = new QPushButton("Reset");
  reset->setAutoDefault(false);
  reset->setObjectName(what == What::PoseParameters ? "resetPose" : "resetFace");
  auto* padColumn = new QVBoxLayout;
  padColumn->addWidget(m_pad, 1);
  padColumn->addWidget(m_padText);
  padColumn->addWidget(reset);
  padColumn->addStretch();  // without a pad the button stands at the top
  m_padText->setAlignment(Qt::AlignCenter);
  m_padText->setWordWrap(true);
  m_pad->setObjectName("posePad");
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 6, 6);
  columns->addWidget(Scrolled(content), 1);
  columns->addLayout(padColumn);
  m_pad->setVisible(false);
  m_padText->setVisible(false);
  connect(reset, &QAbstractButton::clicked, this, &SlidersTab::Reset);
  connect(m_pad, &PosePad::Moved, this, [this](const QPointF& place) {
    const auto [across, up] = Axes();
    if (across < 0 || up < 0) return;
    for (const auto& [axis, part] : {std::pair(across, place.x()), std::pair(up, place.y())}) {
      const Value& value = m_sliders[static_cast<size_t>(axis)];
      SetValue(static_cast<size_t>(axis), value.Minimum + static_cast<float>(part) * (value.Maximum - value.Minimum));
    }
  });
}

std::vector<float>& SlidersTab::Values(ViewState& state) const {
  return m_what == What::PoseParameters ? state.PoseParameters : state.FlexControllers;
}

float SlidersTab::ValueOf(const ViewState& state, size_t index) const {
  const auto& values = m_what == What::PoseParameters ? state.PoseParameters : state.FlexControllers;
  return index < values.size() ? values[index] : m_sliders[index].Default;
}

void SlidersTab::SetValue(size_t index, float value) {
  View().Change([&](ViewState& state) {
    std::vector<float>& values = Values(state);
    for (size_t i = values.size(); i < m_sliders.size(); ++i) values.push_back(m_sliders[i].Default);
    values[index] = value;
  });
}

void SlidersTab::Reset() {
  View().Change([&](ViewState& state) { Values(state).clear(); });
}

std::pair<int, int> SlidersTab::Axes() const {
  const auto& scene = View().Model().Model;
  if (!scene || m_what != What::PoseParameters) return {-1, -1};
  const auto sequence = static_cast<size_t>(View().State().Sequence);
  if (sequence >= scene->Sequences.size()) return {-1, -1};
  const auto [across, up] = scene->Sequences[sequence].PoseParameters;
  const auto count = static_cast<int>(m_sliders.size());
  return across < count && up < count ? std::pair(across, up) : std::pair(-1, -1);
}

void SlidersTab::TakeModel() {
  const auto& scene = View().Model().Model;
  while (m_rows->rowCount() > 0) m_rows->removeRow(0);
  m_sliders.clear();
  if (!scene) return;
  const auto add = [this](const std::string& name, float minimum, float maximum, float usual) {
    const size_t index = m_sliders.size();
    auto* slider = MakeSlider(ToQt(name), 0, SliderSteps);
    slider->setObjectName(ToQt(name));
    auto* text = new QLabel;
    text->setMinimumWidth(text->fontMetrics().horizontalAdvance("-000.0"));
    auto* line = new QHBoxLayout;
    line->addWidget(slider, 1);
    line->addWidget(text);
    auto* label = new QLabel(ToQt(name));
    label->setTextFormat(Qt::PlainText);
    m_rows->addRow(label, line);
    m_sliders.push_back({slider, text, minimum, maximum, usual});
    connect(slider, &QSlider::valueChanged, this, [this, index](int step) {
      const Value& value = m_sliders[index];
      SetValue(index, value.Minimum + static_cast<float>(step) / SliderSteps * (value.Maximum - value.Minimum));
    });
  };
  if (m_what == What::PoseParameters) {
    for (const ScenePoseParameter& each : scene->PoseParameters) {
      add(each.Name, each.Start, each.End, DefaultPoseValue(each));
    }
  } else {
    for (const SceneFlexController& each : scene->FlexControllers) {
      add(each.Name, each.Minimum, each.Maximum, DefaultControllerValue(each));
    }
  }
}

void SlidersTab::TakeState() {
  const ViewState& state = View().State();
  const auto partOf = [&](size_t index) {
    const Value& value = m_sliders[index];
    const float range = value.Maximum - value.Minimum;
    return range != 0 ? std::clamp((ValueOf(state, index) - value.Minimum) / range, 0.0f, 1.0f) : 0.0f;
  };
  for (size_t i = 0; i < m_sliders.size(); ++i) {
    SetQuietly(*m_sliders[i].Slider, static_cast<int>(std::lround(partOf(i) * SliderSteps)));
    m_sliders[i].Text->setText(Number(ValueOf(state, i)));
  }
  const auto [across, up] = Axes();
  const bool isTwo = across >= 0 && up >= 0;
  m_pad->setVisible(isTwo);
  m_padText->setVisible(isTwo);
  if (!isTwo) return;
  const auto& parameters = View().Model().Model->PoseParameters;
  m_padText->setText(ToQt(parameters[static_cast<size_t>(across)].Name) + " → " +
                     ToQt(parameters[static_cast<size_t>(up)].Name) + " ↑");
  m_pad->SetPlace(QPointF(partOf(static_cast<size_t>(across)), partOf(static_cast<size_t>(up))));
}

FactsTab::FactsTab(ModelView& view) : ViewerTab(view), m_counts(new QLabel), m_troubles(new QTreeWidget) {
  m_counts->setObjectName("modelFacts");
  m_counts->setTextFormat(Qt::PlainText);
  m_counts->setWordWrap(true);
  m_counts->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_troubles->setObjectName("missingList");
  m_troubles->setAccessibleName("What is missing");
  m_troubles->setHeaderHidden(true);
  m_troubles->setToolTip("What could not be found or read; below each the paths that were tried");
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(m_counts);
  rows->addWidget(m_troubles, 1);
}

int FactsTab::Troubles() const {
  return m_troubles->topLevelItemCount();
}

void FactsTab::TakeModel() {
  m_troubles->clear();
  const ShownModel& model = View().Model();
  const auto add = [this](const QString& text) {
    auto* row = new QTreeWidgetItem(m_troubles, {text});
    row->setToolTip(0, text);
    return row;
  };
  if (model.Materials) {
    for (const MissingFile& missing : model.Materials->Missing) {
      QTreeWidgetItem* row = add(ToQt(missing.Name + ": " + missing.Reason));
      if (!missing.NeededBy.empty()) new QTreeWidgetItem(row, {"needed by " + ToQt(missing.NeededBy)});
      for (const std::string& path : missing.Tried) new QTreeWidgetItem(row, {ToQt(path)});
    }
  }
  for (const core::Trouble& trouble : model.Troubles) {
    QTreeWidgetItem* row = add(ToQt(trouble.Text));
    if (!trouble.Details.empty()) new QTreeWidgetItem(row, {ToQt(trouble.Details)});
  }
  m_troubles->setVisible(m_troubles->topLevelItemCount() > 0);
}

void FactsTab::TakeState() {
  const ShownModel& model = View().Model();
  if (!model.Model) return m_counts->clear();
  const Scene& scene = *model.Model;
  const ViewState& state = View().State();
  const int32_t lod = ShownLod(scene, state, static_cast<float>(std::max(View().height(), 1)));
  const SceneCounts counts = CountsOf(scene, state.BodyGroups, lod);
  const QLocale numbers;
  const auto counted = [&](int64_t count, const char* thing) {
    return QString("%1 %2%3").arg(numbers.toString(count), thing, count == 1 ? "" : "s");
  };
  const uint64_t memory = static_cast<uint64_t>(std::max<int64_t>(scene.MeshBytes(), 0)) +
                          (model.Materials ? model.Materials->TextureBytes() : 0);
  const QStringList lines = {
      counted(counts.Triangles, "triangle") + ", " + counted(counts.Vertices, "vertex").replace("vertexs", "vertices"),
      counted(counts.Draws, "draw") + ", " + counted(static_cast<int64_t>(scene.Bones.size()), "bone") + ", " +
          counted(static_cast<int64_t>(scene.Materials.size()), "material"),
      QString("Level of detail %1 of %2").arg(lod).arg(scene.Lods.size()),
      ToQt(core::FormatByteSize(static_cast<uint64_t>(std::max<int64_t>(scene.FileBytes, 0)))) + " of files, " +
          ToQt(core::FormatByteSize(memory)) + " in memory"};
  m_counts->setText(lines.join("\n"));
}

}  // namespace tarnwick::view
