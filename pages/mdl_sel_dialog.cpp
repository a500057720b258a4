#include "pages/mdl_sel_dialog.h"

#include "pages/coming_page.h"

namespace tarnwick::pages {

CMDLSelDialog::CMDLSelDialog(const PageContext& context, QWidget* parent) : CPage(context, parent) {
  ShowComingLater(*this, "Compiling models");
}

}  // namespace tarnwick::pages
