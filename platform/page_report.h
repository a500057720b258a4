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
  void Tell(const core::Trouble& trouble) override;

 private:
  Desktop& m_desktop;
  QPointer<QWidget> m_owner;
  std::function<void(std::string_view)> m_log;
};

/// The box that shows `trouble`.
MessageBoxRequest BoxOf(const core::Trouble& trouble);

}  // namespace tarnwick::platform
