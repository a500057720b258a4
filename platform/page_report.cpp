#include "platform/page_report.h"

namespace tarnwick::platform {

MessageBoxRequest BoxOf(core::BoxIcon icon, std::string_view text, std::string_view caption) {
  BoxIcon shown = BoxIcon::Information;
  if (icon == core::BoxIcon::Stop) shown = BoxIcon::Stop;
  if (icon == core::BoxIcon::Exclamation) shown = BoxIcon::Exclamation;
  return {std::string(text), std::string(caption), shown, BoxButtons::Ok};
}

PageReport::PageReport(Desktop& desktop, QWidget* owner, std::function<void(std::string_view)> log)
    : m_desktop(desktop), m_owner(owner), m_log(std::move(log)) {}

void PageReport::Log(std::string_view text) {
  if (m_log) m_log(text);
}

void PageReport::Box(core::BoxIcon icon, std::string_view text, std::string_view caption) {
  m_desktop.ShowBox(m_owner, BoxOf(icon, text, caption));
}

}  // namespace tarnwick::platform
