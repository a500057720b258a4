#pragma once

#include <string>
#include <vector>

#include "model/comparison/difference.h"
#include "smd/source_comparison.h"

namespace tarnwick::jobs {

/// What a model lost on its way to sources and back.
struct Verification {
  std::vector<model::ModelDifference> Model = {};   // of the compiled model from the given one
  std::vector<smd::SourceDifference> Sources = {};  // of the sources of the compiled model from those of the given one

  bool IsSame() const { return Model.empty() && Sources.empty(); }
  /// Nothing differs by more than rounding can make, but for values that no source can hold.
  bool IsSameButForRounding() const;
  /// How many differences of both kinds are more than that.
  size_t RealCount() const;
  /// Some differ that no source can hold.
  bool HasDerived() const;

  /// "same", "same but for rounding: ...", "same but for what no source holds: ...", or "differs: ..." with the
  /// greatest differences first.
  std::string Line() const;
  /// Every difference in a line of its own, the real ones ahead.
  std::vector<std::string> Lines() const;

  bool operator==(const Verification&) const = default;
};

}  // namespace tarnwick::jobs
