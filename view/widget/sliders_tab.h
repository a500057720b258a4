#pragma once

#include <utility>
#include <vector>

#include "view/scene/view_state.h"
#include "view/widget/viewer_tab.h"

class QFormLayout;
class QLabel;
class QSlider;

namespace tarnwick::view {

class PosePad;

/// Named values as sliders; the two pose parameters of a sequence as a pad too.
class SlidersTab : public ViewerTab {
  Q_OBJECT

 public:
  enum class What { PoseParameters, FlexControllers };

  SlidersTab(ModelView& view, What what);
  void TakeModel() override;
  void TakeState() override;
  /// Whether the model has such values.
  bool HasSliders() const { return !m_sliders.empty(); }

 private:
  struct Value {
    QSlider* Slider;
    QLabel* Text;
    float Minimum, Maximum, Default;
  };
  std::vector<float>& Values(ViewState& state) const;
  float ValueOf(const ViewState& state, size_t index) const;
  void SetValue(size_t index, float value);
  void Reset();
  /// The parameters that the sequence which is played is steered by.
  std::pair<int, int> Axes() const;

  const What m_what;
  PosePad* m_pad;
  QLabel* m_padText;
  QFormLayout* m_rows;
  std::vector<Value> m_sliders;
};

}  // namespace tarnwick::view
