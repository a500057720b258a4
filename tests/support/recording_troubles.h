#pragma once

#include <string>
#include <vector>

#include "core/trouble.h"

namespace tarnwick::tests {

/// Keeps the troubles that a room tells.
class RecordingTroubles : public core::TroubleSink {
 public:
  void Tell(const core::Trouble& trouble) override { Troubles.push_back(trouble); }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const core::Trouble& trouble : Troubles) texts.push_back(trouble.Text);
    return texts;
  }

  std::vector<core::Trouble> Troubles;
};

}  // namespace tarnwick::tests
