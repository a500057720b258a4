#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/report.h"

namespace tarnwick::tests {

/// A box that a room has shown.
struct RecordedBox {
  core::BoxIcon Icon;
  std::string Text;
  std::string Caption;

  bool operator==(const RecordedBox&) const = default;
};

/// Keeps everything that a room tells the user.
class RecordingReport : public core::Report {
 public:
  void Log(std::string_view text) override { LogText += text; }
  void Tell(const core::Trouble& trouble) override {
    Troubles.push_back(trouble);
    if (!trouble.Caption.empty()) Boxes.push_back({trouble.ShownIcon(), trouble.Text, trouble.Caption});
  }

  std::string LogText;
  std::vector<core::Trouble> Troubles;
  std::vector<RecordedBox> Boxes;  // of the troubles that have one
};

}  // namespace tarnwick::tests
