#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/dialog.h"

class QCheckBox;

namespace Ui {
class StudioMdlOptionsDialog;
}

namespace tarnwick::pages {

/// Sets studiomdl's switches for models that are compiled from the form, one check box a bit. A bit without a switch
/// has a box that shows it and cannot be changed.
class CStudiomdlOptionsDialog : public platform::CDialog {
  Q_OBJECT

 public:
  /// OK changes the bits in `options`; all other bits stay.
  CStudiomdlOptionsDialog(platform::Desktop& desktop, QWidget* parent, int32_t& options);
  ~CStudiomdlOptionsDialog() override;

 protected:
  void OnOK() override;

 private:
  std::unique_ptr<Ui::StudioMdlOptionsDialog> m_ui;
  std::vector<QCheckBox*> m_boxes;  // in the order of the options
  int32_t& m_options;
};

}  // namespace tarnwick::pages
