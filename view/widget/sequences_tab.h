#pragma once

#include <utility>
#include <vector>

#include "view/scene/view_state.h"
#include "view/widget/viewer_tab.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;
class QSlider;
class QSortFilterProxyModel;
class QStringListModel;
class QVBoxLayout;

namespace tarnwick::view {

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

}  // namespace tarnwick::view
