#include "jobs/verification.h"

#include <algorithm>

namespace tarnwick::jobs {

namespace {

/// Differences that the one line of a model tells; those behind them are counted.
constexpr size_t MostInALine = 3;

}  // namespace

bool Verification::IsSameButForRounding() const {
  return RealCount() == 0;
}

size_t Verification::RealCount() const {
  const auto model = std::count_if(Model.begin(), Model.end(), [](const auto& one) { return one.IsReal(); });
  const auto sources = std::count_if(Sources.begin(), Sources.end(), [](const auto& one) { return !one.IsRounding(); });
  return static_cast<size_t>(model + sources);
}

bool Verification::HasDerived() const {
  return std::any_of(Model.begin(), Model.end(), [](const auto& one) { return !one.IsRounding && !one.IsReal(); });
}

std::vector<std::string> Verification::Lines() const {
  std::vector<std::string> lines;
  const auto addModel = [&](bool real, bool rounding) {
    for (const model::ModelDifference& one : Model) {
      if (one.IsReal() == real && one.IsRounding == rounding) lines.push_back(DifferenceLine(one));
    }
  };
  const auto addSources = [&](bool rounding) {
    for (const smd::SourceDifference& one : Sources) {
      if (one.IsRounding() == rounding) lines.push_back(DifferenceLine(one));
    }
  };
  addModel(true, false);
  addSources(false);
  addModel(false, false);  // derived values
  addModel(false, true);
  addSources(true);
  return lines;
}

std::string Verification::Line() const {
  if (IsSame()) return "same";
  const std::vector<std::string> lines = Lines();
  const size_t told = IsSameButForRounding() ? lines.size() : RealCount();
  std::string line = !IsSameButForRounding() ? "differs: "
                     : HasDerived()          ? "same but for what no source holds: "
                                             : "same but for rounding: ";
  for (size_t i = 0; i < std::min(told, MostInALine); ++i) line += (i > 0 ? "; " : "") + lines[i];
  if (told > MostInALine) line += "; and " + std::to_string(told - MostInALine) + " more";
  return line;
}

}  // namespace tarnwick::jobs
