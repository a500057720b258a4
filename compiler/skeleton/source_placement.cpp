#include "compiler/skeleton/source_placement.h"

#include <cmath>
#include <numbers>

namespace tarnwick::compiler {

using model::RigidTransform;

std::optional<RigidTransform> PlacementOf(const SourceUse& use) {
  const bool isMoved = use.Origin.x != 0 || use.Origin.y != 0 || use.Origin.z != 0;
  if (!use.YUp && !isMoved && use.OriginTurn == 0) return std::nullopt;
  RigidTransform placement;
  if (use.YUp) placement.Turn = {{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}};
  if (use.OriginTurn != 0) {
    const double angle = double{use.OriginTurn} * (std::numbers::pi / 180);
    const double c = std::cos(angle), s = std::sin(angle);
    RigidTransform turn;
    turn.Turn = {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
    placement = turn * placement;
  }
  placement.Move = {double{use.Origin.x}, double{use.Origin.y}, double{use.Origin.z}};
  return placement;
}

}  // namespace tarnwick::compiler
