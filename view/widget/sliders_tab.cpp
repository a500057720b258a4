#include "view/widget/sliders_tab.h"

#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "platform/text.h"
#include "view/scene/face.h"
#include "view/scene/sequence_place.h"
#include "view/widget/model_view.h"
#include "view/widget/pose_pad.h"
#include "view/widget/tab_controls.h"

namespace tarnwick::view {

using platform::ToQt;

namespace {

constexpr int SliderSteps = 1000;

}  // namespace

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

}  // namespace tarnwick::view
