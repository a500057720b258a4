#include "model/comparison/difference.h"

#include <array>
#include <cstdio>

namespace tarnwick::model {

namespace {

constexpr std::array<std::string_view, 21> TableNames = {"header",    "bones",       "poses",      "procedural bones",
                                                         "boxes",     "attachments", "ik chains",  "pose parameters",
                                                         "materials", "skins",       "body parts", "levels of detail",
                                                         "vertices",  "triangles",   "animations", "frames",
                                                         "sequences", "events",      "layers",     "faces",
                                                         "physics"};
static_assert(TableNames.size() == static_cast<size_t>(ModelTable::Physics) + 1);

}  // namespace

std::string_view TableName(ModelTable table) {
  return TableNames[static_cast<size_t>(table)];
}

std::string DifferenceLine(const ModelDifference& difference) {
  std::string line = std::string(TableName(difference.Table)) + ": " + difference.What + " differs";
  if (difference.Count > 1) line += " in " + std::to_string(difference.Count) + " places";
  if (difference.Largest > 0) {
    std::array<char, 32> amount{};
    std::snprintf(amount.data(), amount.size(), "%.3g", difference.Largest);
    line += std::string(difference.Count > 1 ? " by up to " : " by ") + amount.data();
  }
  if (difference.IsRounding) {
    line += " (rounding)";
  } else if (!difference.Derived.empty()) {
    line += " (" + std::string(difference.Derived) + ")";
  }
  if (!difference.Where.empty()) {
    const bool many = difference.Count > 1;
    line += (many ? (difference.Largest > 0 ? ", most in " : ", first in ") : ", in ") + difference.Where;
  }
  return line + ": " + difference.First + " and " + difference.Second;
}

}  // namespace tarnwick::model
