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
  void Box(core::BoxIcon icon, std::string_view text, std::string_view caption) override {
    Boxes.push_back({icon, std::string(text), std::string(caption)});
  }

  std::string LogText;
  std::vector<RecordedBox> Boxes;
};

}  // namespace tarnwick::tests
