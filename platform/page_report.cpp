#include "platform/page_report.h"

namespace tarnwick::platform {

MessageBoxRequest BoxOf(const core::Trouble& trouble) {
  return {trouble.Text, trouble.Caption, trouble.ShownIcon(), BoxButtons::Ok, trouble.Details};
}

PageReport::PageReport(Desktop& desktop, QWidget* owner, std::function<void(std::string_view)> log)
    : m_desktop(desktop), m_owner(owner), m_log(std::move(log)) {}

void PageReport::Log(std::string_view text) {
  if (m_log) m_log(text);
}

void PageReport::Tell(const core::Trouble& trouble) {
  if (!trouble.Caption.empty()) m_desktop.ShowBox(m_owner, BoxOf(trouble));
}

}  // namespace tarnwick::platform
