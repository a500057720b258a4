#include "decompiler/sources/transition_nodes.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "decompiler/sources/script_values.h"
#include "decompiler/stages/node_name.h"
#include "model/transition_table.h"

namespace tarnwick::decompiler::sources {

namespace {

/// A node's number is one byte of the table of steps.
constexpr int32_t MostNodes = 255;

}  // namespace

std::string NodeWords(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  if (sequence->EntryNode == 0 && sequence->ExitNode == 0) return {};
  const auto entry = NodeName(job, sequence, sequence->EntryNode);
  const auto exit = entry ? NodeName(job, sequence, sequence->ExitNode) : std::nullopt;
  if (!exit) return {};
  if (sequence->EntryNode == sequence->ExitNode) return "  node " + Quoted(job, *entry) + "\n";
  return (sequence->NodeFlags != 0 ? "  rtransition " : "  transition ") + Quoted(job, *entry) + " " +
         Quoted(job, *exit) + "\n";
}

void WriteTransitions(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences) {
  const int32_t nodes = job.Model.Header()->NodeCount;
  if (nodes <= 0 || nodes > MostNodes || !job.Spend(int64_t{nodes} * nodes * nodes)) return;
  std::vector<bool> used(static_cast<size_t>(nodes) + 1);
  std::vector<model::NodeStep> steps;
  const auto holds = [&](int32_t node) { return node > 0 && node <= nodes; };
  for (const auto sequence : sequences) {
    const int32_t entry = sequence->EntryNode, exit = sequence->ExitNode;
    if ((sequence->Flags & SequenceFlagDeclared) != 0 || !holds(entry) || !holds(exit)) continue;
    used[static_cast<size_t>(entry)] = used[static_cast<size_t>(exit)] = true;
    steps.push_back({entry, exit});
    if (sequence->NodeFlags != 0) steps.push_back({exit, entry});
  }
  job.Lose("transition nodes that no sequence names", std::count(used.begin() + 1, used.end(), false));
  const int64_t offset = job.Model.Header()->NodeOffset;
  const auto table = offset > 0 ? job.Model.View().Bytes(offset, int64_t{nodes} * nodes) : std::nullopt;
  if (!table) return;
  const auto otherThan = [&](bool wholeWays) {
    const std::vector<uint8_t> made = model::TransitionTable(static_cast<size_t>(nodes), steps, wholeWays);
    int64_t other = 0;
    for (size_t i = 0; i < made.size(); ++i) other += std::to_integer<uint8_t>((*table)[i]) == made[i] ? 0 : 1;
    return other;
  };
  const int64_t other = otherThan(false);
  const int64_t otherThanWhole = other == 0 ? 0 : otherThan(true);
  if (otherThanWhole < other) job.Script().Text("$calctransitions\n");
  job.Lose("steps between nodes that no sequence makes", std::min(other, otherThanWhole));
}

}  // namespace tarnwick::decompiler::sources
