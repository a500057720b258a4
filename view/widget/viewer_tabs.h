#pragma once

#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

#include "view/scene/view_state.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListView;
class QSlider;
class QSortFilterProxyModel;
class QSpinBox;
class QStringListModel;
class QTreeWidget;
class QVBoxLayout;

namespace tarnwick::view {

class ModelView;
class PosePad;

/// A group of controls beside a model: it reads the view's state and changes it through the view.
class ViewerTab : public QWidget {
  Q_OBJECT

 public:
  explicit ViewerTab(ModelView& view) : m_view(view) {}

  /// Makes the controls for the model that the view has, or for none.
  virtual void TakeModel() = 0;
  /// Has the controls show the view's state.
  virtual void TakeState() = 0;

 protected:
  ModelView& View() const { return m_view; }

 private:
  ModelView& m_view;
};

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
  QSlider* m_lightYaw;
  QSlider* m_lightPitch;
  std::vector<std::pair<QCheckBox*, std::function<bool&(ViewState&)>>> m_boxes;
};

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

/// The list of sequences, speed, and sequences on top.
class SequencesTab : public ViewerTab {
  Q_OBJECT

 public:
  explicit SequencesTab(ModelView& view);
  void TakeModel() override;
  void TakeState() override;

 private:
  int ChosenSequence() const;
  void AddLayer();
  void ShowLayers();

  QLineEdit* m_search;
  QListView* m_list;
  QStringListModel* m_names;
  QSortFilterProxyModel* m_found;
  QSlider* m_speed;
  QLabel* m_speedText;
  QCheckBox* m_loop;
  QVBoxLayout* m_layerRows;
  std::vector<ViewLayer> m_shownLayers;
  std::vector<std::pair<QSlider*, QWidget*>> m_layers;  // weights and their rows
};

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

/// Counts, and what could not be found or read.
class FactsTab : public ViewerTab {
  Q_OBJECT

 public:
  explicit FactsTab(ModelView& view);
  void TakeModel() override;
  void TakeState() override;
  /// How many things are missing or damaged.
  int Troubles() const;

 private:
  QLabel* m_counts;
  QTreeWidget* m_troubles;
};

}  // namespace tarnwick::view
