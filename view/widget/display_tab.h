#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "view/scene/view_state.h"
#include "view/widget/viewer_tab.h"

class QCheckBox;
class QComboBox;
class QSlider;

namespace tarnwick::view {

/// How the mesh is drawn, what else is shown, light and background.
class DisplayTab : public ViewerTab {
  Q_OBJECT

 public:
  explicit DisplayTab(ModelView& view);
  void TakeModel() override {}
  void TakeState() override;

 private:
  void ChooseBackground(int choice);

  QComboBox* m_mode;
  QComboBox* m_background;
  QCheckBox* m_desktopLight;
  QSlider* m_lightYaw;
  QSlider* m_lightPitch;
  std::vector<std::pair<QCheckBox*, std::function<bool&(ViewState&)>>> m_boxes;
};

}  // namespace tarnwick::view
