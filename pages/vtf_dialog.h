#pragma once

#include "pages/page.h"

namespace tarnwick::pages {

/// The tab "VTF Export".
class CVTFDialog : public CPage {
  Q_OBJECT

 public:
  explicit CVTFDialog(const PageContext& context, QWidget* parent = nullptr);
};

}  // namespace tarnwick::pages
