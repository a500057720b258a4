#pragma once

#include "pages/log_view.h"

namespace tarnwick::pages {

/// A box for what a console tool prints: lines that tell errors and warnings stand out.
class CToolOutput : public CLogView {
  Q_OBJECT

 public:
  explicit CToolOutput(QWidget* parent = nullptr);

  /// Shows `text`, which is what was shown before and what has been added to it since, or a new text after `Clear`.
  void ShowText(const std::string& text);
  void Clear();

 private:
  size_t m_shown = 0;  // bytes of the text that were added
};

}  // namespace tarnwick::pages
