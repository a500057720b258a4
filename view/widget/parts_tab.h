#pragma once

#include <vector>

#include "view/widget/viewer_tab.h"

class QComboBox;
class QFormLayout;
class QSpinBox;

namespace tarnwick::view {

/// Skin, level of detail, set of hit boxes, body groups.
class PartsTab : public ViewerTab {
  Q_OBJECT

 public:
  explicit PartsTab(ModelView& view);
  void TakeModel() override;
  void TakeState() override;

 private:
  QFormLayout* m_rows;
  QSpinBox* m_skin;
  QComboBox* m_lod;
  QComboBox* m_hitboxSet;
  std::vector<QComboBox*> m_groups;
};

}  // namespace tarnwick::view
