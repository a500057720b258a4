#pragma once

#include "pages/page.h"

namespace tarnwick::pages {

/// The tab "Model Compile".
class CMDLSelDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMDLSelDialog(const PageContext& context, QWidget* parent = nullptr);
};

}  // namespace tarnwick::pages
