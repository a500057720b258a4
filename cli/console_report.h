#pragma once

#include <ostream>
#include <string_view>

#include "cli/terminal.h"
#include "core/report.h"

namespace tarnwick::cli {

/// Prints what a room tells the user as it comes: log lines, and boxes as one line of caption and text.
class ConsoleReport : public core::Report {
 public:
  explicit ConsoleReport(std::ostream& out) : m_out(out) {}
  void Log(std::string_view text) override { m_out << PlainLines(text) << std::flush; }
  void Tell(const core::Trouble& trouble) override {
    if (!trouble.Caption.empty()) m_out << LineOf(trouble) << std::endl;
  }

 private:
  std::ostream& m_out;
};

}  // namespace tarnwick::cli
