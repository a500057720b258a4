#include "pages/map_chooser.h"

#include <QLineEdit>

#include "platform/dialog.h"
#include "platform/text.h"

namespace tarnwick::pages {

void BrowseForMap(platform::CDialog& dialog, QLineEdit& edit, const std::string& title) {
  const auto chosen = dialog.DesktopSeam().ChooseFileToOpen(
      &dialog, {.Title = title,
                .Filter = "TGA Files (*.tga)|*.tga|All Supported Files|*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds|",
                .StartName = platform::FromQt(edit.text()),
                .StartDirectory = {}});
  if (chosen) edit.setText(platform::ToQt(*chosen));
}

}  // namespace tarnwick::pages
