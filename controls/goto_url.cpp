#include "controls/goto_url.h"

#include "controls/link_address.h"
#include "platform/dialog.h"
#include "platform/qt_desktop.h"

namespace tarnwick::controls {

bool GotoUrl(const QWidget& control, const std::string& address, bool newWindow) {
  platform::QtDesktop ownDesktop;
  const platform::CDialog* dialog = platform::CDialog::Of(&control);
  platform::Desktop& desktop = dialog != nullptr ? dialog->DesktopSeam() : ownDesktop;

  const std::string target = OpenableAddress(address);
  if (target.empty()) return false;
  const bool opened = newWindow ? desktop.OpenInNewWindow(target) : desktop.Open(target);
  return opened || desktop.OpenInBrowser(target);
}

}  // namespace tarnwick::controls
