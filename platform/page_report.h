#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

#include "core/report.h"
#include "platform/desktop.h"

namespace tarnwick::platform {

/// The sink for work on the user-interface thread: boxes belong to `owner`, log text goes to `log`.
class PageReport : public core::Report {
 public:
  PageReport(Desktop& desktop, QWidget* owner, std::function<void(std::string_view)> log = {});

  void Log(std::string_view text) override;
  void Box(core::BoxIcon icon, std::string_view text, std::string_view caption) override;

 private:
  Desktop& m_desktop;
  QPointer<QWidget> m_owner;
  std::function<void(std::string_view)> m_log;
};

/// The box of a logic room as the desktop shows it.
MessageBoxRequest BoxOf(core::BoxIcon icon, std::string_view text, std::string_view caption);

}  // namespace tarnwick::platform
