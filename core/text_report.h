#pragma once

#include <string>

#include "core/report.h"

namespace tarnwick::core {

/// Appends the log to a text of the caller's and passes boxes on to another report. Both outlive the object.
class TextReport : public Report {
 public:
  TextReport(std::string& log, Report& boxes) : m_log(log), m_boxes(boxes) {}

  void Log(std::string_view text) override { m_log += text; }
  void Box(BoxIcon icon, std::string_view text, std::string_view caption) override { m_boxes.Box(icon, text, caption); }

 private:
  std::string& m_log;
  Report& m_boxes;
};

}  // namespace tarnwick::core
