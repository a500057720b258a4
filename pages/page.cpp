#include "pages/page.h"

namespace tarnwick::pages {

CPage::CPage(const PageContext& context, QWidget* parent)
    : CDialog(context.Desktop, parent, Style::Page), m_context(context) {}

void CPage::SaveSettings() {}

size_t CPage::OpenFiles(const std::vector<std::string>&) {
  return 0;
}

}  // namespace tarnwick::pages
