#include "decompiler/sources/transition_nodes.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "decompiler/sources/script_values.h"
#include "decompiler/stages/node_name.h"

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

void CountLostNodes(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences) {
  const int32_t nodes = job.Model.Header()->NodeCount;
  if (nodes <= 0 || nodes > MostNodes || !job.Spend(int64_t{nodes} * nodes)) return;
  const auto count = static_cast<size_t>(nodes);
  std::vector<bool> used(count + 1), steps(count * count);
  const auto holds = [&](int32_t node) { return node > 0 && node <= nodes; };
  const auto step = [&](int32_t from, int32_t to) {
    if (from != to) steps[static_cast<size_t>(from - 1) * count + static_cast<size_t>(to - 1)] = true;
  };
  for (const auto sequence : sequences) {
    const int32_t entry = sequence->EntryNode, exit = sequence->ExitNode;
    if ((sequence->Flags & SequenceFlagDeclared) != 0 || !holds(entry) || !holds(exit)) continue;
    used[static_cast<size_t>(entry)] = used[static_cast<size_t>(exit)] = true;
    step(entry, exit);
    if (sequence->NodeFlags != 0) step(exit, entry);
  }
  job.Lose("transition nodes that no sequence names", std::count(used.begin() + 1, used.end(), false));
  const int64_t offset = job.Model.Header()->NodeOffset;
  const auto table = offset > 0 ? job.Model.View().Bytes(offset, int64_t{nodes} * nodes) : std::nullopt;
  int64_t other = 0;
  for (size_t i = 0; table && i < steps.size(); ++i) {
    const auto stored = std::to_integer<size_t>((*table)[i]);
    other += stored == (steps[i] ? i % count + 1 : 0) ? 0 : 1;
  }
  job.Lose("steps between nodes that no sequence makes", other);
}

}  // namespace tarnwick::decompiler::sources
