#include "view/widget/display_tab.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "view/widget/model_view.h"
#include "view/widget/tab_controls.h"

namespace tarnwick::view {

namespace {

constexpr ViewColor Backgrounds[] = {{0.12f, 0.12f, 0.13f, 1}, {0.5f, 0.5f, 0.5f, 1}, {0.95f, 0.95f, 0.95f, 1}};
constexpr int OwnBackground = 1 + static_cast<int>(std::size(Backgrounds));  // of the list, behind the desktop's

}  // namespace

DisplayTab::DisplayTab(ModelView& view)
    : ViewerTab(view),
      m_mode(new QComboBox),
      m_background(new QComboBox),
      m_desktopLight(new QCheckBox("As the desktop's")),
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
  m_desktopLight->setObjectName("desktopLight");
  m_desktopLight->setAccessibleName("Light as the desktop's");
  choices->addRow("Light:", m_desktopLight);
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
                {"Normals", [](ViewState& state) -> bool& { return state.Extras.Normals; }},
                {"Jiggle bones swing", [](ViewState& state) -> bool& { return state.Swings; }},
                {"Limbs are held", [](ViewState& state) -> bool& { return state.Ik; }}};
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
    View().Change([&](ViewState& state) {
      state.IsLightChosen = true;
      state.LightYaw = static_cast<float>(degrees);
    });
  });
  connect(m_lightPitch, &QSlider::valueChanged, this, [this](int degrees) {
    View().Change([&](ViewState& state) {
      state.IsLightChosen = true;
      state.LightPitch = static_cast<float>(degrees);
    });
  });
  connect(m_desktopLight, &QCheckBox::clicked, this,
          [this](bool on) { View().Change([on](ViewState& state) { state.IsLightChosen = !on; }); });
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
  m_desktopLight->setChecked(!state.IsLightChosen);
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

}  // namespace tarnwick::view
