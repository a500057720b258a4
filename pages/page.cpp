#include "pages/page.h"

namespace tarnwick::pages {

CPage::CPage(const PageContext& context, QWidget* parent)
    : CDialog(context.Desktop, parent, Style::Page), m_context(context) {}

void CPage::SaveSettings() {}

}  // namespace tarnwick::pages
