#include "pages/refusal_box.h"

#include <QLineEdit>

#include "platform/dialog.h"
#include "platform/page_report.h"
#include "platform/text.h"

namespace tarnwick::pages {

bool ShowRefusal(platform::CDialog& dialog, const project::Verdict& verdict) {
  if (!verdict) return false;
  platform::PageReport report(dialog.DesktopSeam(), &dialog);
  report.Tell(verdict->Told());
  for (QWidget* control : dialog.findChildren<QWidget*>()) {
    if (verdict->Field.empty() || control->accessibleName() != platform::ToQt(verdict->Field)) continue;
    control->setFocus();
    if (auto* line = qobject_cast<QLineEdit*>(control)) line->selectAll();
    break;
  }
  return true;
}

}  // namespace tarnwick::pages
