#include "pages/mdl_sel_dialog.h"

#include "pages/coming_page.h"

namespace tarnwick::pages {

CMDLSelDialog::CMDLSelDialog(const PageContext& context, QWidget* parent) : CPage(context, parent) {
  ShowComingLater(*this, "Compiling models");
}

void CMDLSelDialog::SetMaterialDirectory(const std::string& /*directory*/) {}  // the form comes with a later version

}  // namespace tarnwick::pages
