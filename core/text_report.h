#pragma once

#include <string>

#include "core/report.h"

namespace tarnwick::core {

/// Appends the log to a text of the caller's and passes troubles on. Both outlive the object.
class TextReport : public Report {
 public:
  TextReport(std::string& log, TroubleSink& troubles) : m_log(log), m_troubles(troubles) {}

  void Log(std::string_view text) override { m_log += text; }
  void Tell(const Trouble& trouble) override { m_troubles.Tell(trouble); }

 private:
  std::string& m_log;
  TroubleSink& m_troubles;
};

}  // namespace tarnwick::core
