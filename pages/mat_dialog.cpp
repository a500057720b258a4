#include "pages/mat_dialog.h"

#include "pages/coming_page.h"

namespace tarnwick::pages {

CMatDialog::CMatDialog(const PageContext& context, QWidget* parent) : CPage(context, parent) {
  ShowComingLater(*this, "Compiling materials");
}

}  // namespace tarnwick::pages
