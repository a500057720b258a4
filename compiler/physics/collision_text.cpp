#include "compiler/physics/collision_text.h"

namespace tarnwick::compiler {

namespace {

/// Blocks deeper than any model has are left out, so that no script can ask for endless depth.
constexpr int MostDepth = 64;

void AddEntries(const std::vector<qc::KeyValue>& entries, int depth, std::string& text) {
  for (const qc::KeyValue& entry : entries) {
    if (!entry.IsBlock) {
      text.append("\"").append(entry.Key).append("\" \"").append(entry.Value).append("\" ");
    } else if (depth < MostDepth) {
      text.append(entry.Key).append(" {");
      AddEntries(entry.Children, depth + 1, text);
      text += " }";
    }
    if (depth == 0) text += "\n";
  }
}

}  // namespace

std::string FormatCollisionText(const std::vector<qc::KeyValue>& entries) {
  std::string text;
  AddEntries(entries, 0, text);
  return text;
}

}  // namespace tarnwick::compiler
