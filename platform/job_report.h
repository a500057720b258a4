#pragma once

#include "core/report.h"
#include "platform/desktop.h"

namespace tarnwick::platform {

/// The sink of a job's work. Beside telling the user something it can ask.
class JobReport : public core::Report {
 public:
  /// Shows the box on the user-interface thread and waits for the answer. While the program ends nobody is asked any
  /// more, and the answer is Cancel.
  virtual BoxAnswer Ask(const MessageBoxRequest& request) = 0;
};

}  // namespace tarnwick::platform
