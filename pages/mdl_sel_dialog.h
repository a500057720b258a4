#pragma once

#include "pages/page.h"

namespace tarnwick::pages {

/// The tab "Model Compile".
class CMDLSelDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMDLSelDialog(const PageContext& context, QWidget* parent = nullptr);

  /// Shows the compiled material directory, which the Material Compile page edits.
  void SetMaterialDirectory(const std::string& directory);
};

}  // namespace tarnwick::pages
