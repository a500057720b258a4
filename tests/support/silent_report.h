#pragma once

#include "core/report.h"

namespace tarnwick::tests {

/// Counts the troubles that a room tells and keeps nothing.
class SilentReport : public core::Report {
 public:
  void Log(std::string_view) override {}
  void Tell(const core::Trouble&) override { ++Troubles; }

  int Troubles = 0;
};

}  // namespace tarnwick::tests
