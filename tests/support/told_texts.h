#pragma once

#include <string>
#include <vector>

#include "core/trouble.h"

namespace tarnwick::tests {

/// The texts of the troubles of one severity in `result`, which has a list `Troubles`.
template <typename Result>
std::vector<std::string> TextsOf(const Result& result, core::Severity level) {
  std::vector<std::string> texts;
  for (const core::Trouble& trouble : result.Troubles) {
    if (trouble.Level == level) texts.push_back(trouble.Text);
  }
  return texts;
}

}  // namespace tarnwick::tests
