#pragma once

#include <memory>

#include "platform/dialog.h"
#include "tools/material_compile.h"

namespace Ui {
class EnvmapDialog;
}

namespace tarnwick::pages {

/// The environment map options of a material. The Material Compile page owns the one window; its controls keep what is
/// in them while it is hidden, and they are read when a compile runs.
class CEnvmapDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CEnvmapDialog(platform::Desktop& desktop, QWidget* parent);
  ~CEnvmapDialog() override;

  /// Sets the controls.
  void Show(const tools::MaterialCompile& values);
  /// Reads the controls.
  void ReadInto(tools::MaterialCompile& values) const;

  void OnDropFiles(const platform::DroppedFiles& drop) override;

 protected:
  void OnInitDialog() override;

 private:
  std::unique_ptr<Ui::EnvmapDialog> m_ui;
};

}  // namespace tarnwick::pages
