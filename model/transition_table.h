#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarnwick::model {

/// A sequence that leads from one node to another. Nodes are numbered from 1 on; 0 and less is none.
struct NodeStep {
  int32_t From;
  int32_t To;
};

/// The model's table of ways between `nodes` nodes, row by row: from each node to each, the number of the node to go to
/// first, 0 for no way. With `wholeWays` of the shortest way over other nodes, as $calctransitions asks for, else of
/// the steps alone. Steps of nodes beyond `nodes` are none.
[[nodiscard]] std::vector<uint8_t> TransitionTable(size_t nodes, std::span<const NodeStep> steps, bool wholeWays);

}  // namespace tarnwick::model
