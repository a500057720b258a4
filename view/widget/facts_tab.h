#pragma once

#include "view/widget/viewer_tab.h"

class QLabel;
class QTreeWidget;

namespace tarnwick::view {

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
