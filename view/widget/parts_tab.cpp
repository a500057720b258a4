#include "view/widget/parts_tab.h"

#include <QComboBox>
#include <QFormLayout>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

#include "view/widget/model_view.h"
#include "view/widget/tab_controls.h"

namespace tarnwick::view {

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

}  // namespace tarnwick::view
