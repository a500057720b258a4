#pragma once

#include <string>
#include <vector>

#include "core/trouble.h"

namespace tarnwick::tests {

/// Keeps the troubles that a room tells.
class RecordedTroubles : public core::TroubleSink {
 public:
  void Tell(const core::Trouble& trouble) override { All.push_back(trouble); }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const core::Trouble& trouble : All) texts.push_back(trouble.Text);
    return texts;
  }

  std::vector<core::Trouble> All;
};

}  // namespace tarnwick::tests
