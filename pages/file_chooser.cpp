#include "pages/file_chooser.h"

#include <QLineEdit>

#include "platform/dialog.h"
#include "platform/text.h"

namespace tarnwick::pages {

void BrowseForFile(platform::CDialog& dialog, QLineEdit& edit, const std::string& title, const std::string& filter) {
  const auto chosen = dialog.DesktopSeam().ChooseFileToOpen(
      &dialog, {.Title = title, .Filter = filter, .StartName = platform::FromQt(edit.text()), .StartDirectory = {}});
  if (chosen) edit.setText(platform::ToQt(*chosen));
}

void BrowseForMap(platform::CDialog& dialog, QLineEdit& edit, const std::string& title) {
  BrowseForFile(dialog, edit, title,
                "TGA Files (*.tga)|*.tga|All Supported Files|*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds|");
}

}  // namespace tarnwick::pages
