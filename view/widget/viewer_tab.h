#pragma once

#include <QWidget>

namespace tarnwick::view {

class ModelView;

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

}  // namespace tarnwick::view
