#include "model/transition_table.h"

namespace tarnwick::model {

namespace {

/// Fills the row of `from` with the first steps of the shortest ways, found in rising length.
void FillRow(const std::vector<uint8_t>& steps, size_t nodes, size_t from, std::vector<uint8_t>& table) {
  uint8_t* const row = &table[from * nodes];
  std::vector<size_t> queue;
  for (size_t to = 0; to < nodes; ++to) {
    if (row[to] != 0) queue.push_back(to);
  }
  for (size_t i = 0; i < queue.size(); ++i) {
    for (size_t to = 0; to < nodes; ++to) {
      if (to == from || row[to] != 0 || steps[queue[i] * nodes + to] == 0) continue;
      row[to] = row[queue[i]];
      queue.push_back(to);
    }
  }
}

}  // namespace

std::vector<uint8_t> TransitionTable(size_t nodes, std::span<const NodeStep> steps, bool wholeWays) {
  std::vector<uint8_t> table(nodes * nodes);
  const auto isNode = [&](int32_t node) { return node > 0 && static_cast<size_t>(node) <= nodes; };
  for (const NodeStep& step : steps) {
    if (!isNode(step.From) || !isNode(step.To) || step.From == step.To) continue;
    table[static_cast<size_t>(step.From - 1) * nodes + static_cast<size_t>(step.To - 1)] =
        static_cast<uint8_t>(step.To);
  }
  if (!wholeWays) return table;
  const std::vector<uint8_t> direct = table;
  for (size_t from = 0; from < nodes; ++from) FillRow(direct, nodes, from, table);
  return table;
}

}  // namespace tarnwick::model
