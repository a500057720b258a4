#include "pages/vtf_dialog.h"

#include "pages/coming_page.h"

namespace tarnwick::pages {

CVTFDialog::CVTFDialog(const PageContext& context, QWidget* parent) : CPage(context, parent) {
  ShowComingLater(*this, "Exporting textures");
}

}  // namespace tarnwick::pages
