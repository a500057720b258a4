#pragma once

#include "pages/page.h"

namespace tarnwick::pages {

/// The tab "Material Compile".
class CMatDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMatDialog(const PageContext& context, QWidget* parent = nullptr);
};

}  // namespace tarnwick::pages
