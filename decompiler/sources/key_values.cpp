#include "decompiler/sources/key_values.h"

#include "core/key_values.h"
#include "core/paths.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/writers/balanced_braces.h"

namespace tarnwick::decompiler::sources {

namespace {

/// The block that a compile puts round the key values of a model.
constexpr std::string_view HeadOfText = "mdlkeyvalue";

/// Reads the text of `owner` ("model") at `offset`. What cannot be read is told.
std::vector<core::KeyValue> ReadText(JobContext& job, const std::string& owner, int64_t offset, int64_t size) {
  const auto bytes = job.Model.View().Bytes(offset, size);
  if (!bytes) {
    job.DamagedTable(job.Model.Mdl.Path(), "key value text", offset, size, job.Model.View().Size());
    return {};
  }
  if (!job.Spend(size)) return {};
  std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  text = text.substr(0, text.find('\0'));
  const std::string balanced = BalanceBraces(text);
  if (balanced != text) {
    job.Warn("The braces of the " + owner + "'s key values do not balance; they are written balanced",
             core::TroubleKind::Damaged);
  }
  core::KeyValues read = core::ReadKeyValues(balanced);
  if (!read.Error.empty()) {
    job.Warn("The key values of the " + owner + " are damaged: " + read.Error + "; what could be read is written",
             core::TroubleKind::Damaged);
  }
  return std::move(read.Roots);
}

/// The lines of `keys`; every level is indented by two blanks more.
void AddLines(JobContext& job, const std::vector<core::KeyValue>& keys, const std::string& indent, std::string& text) {
  for (const core::KeyValue& key : keys) {
    const std::string line = indent + Quoted(job, key.Key);
    if (!job.Spend(static_cast<int64_t>(line.size()))) return;
    if (!key.Condition.empty()) job.Lose("conditions of key values");
    if (!key.IsBlock) {
      text += line + " " + Quoted(job, key.Value) + "\n";
      continue;
    }
    text += line + " {\n";
    AddLines(job, key.Children, indent + "  ", text);
    text += indent + "}\n";
  }
}

bool IsHead(const core::KeyValue& root) {
  return root.IsBlock && core::EqualIgnoringCase(root.Key, HeadOfText);
}

}  // namespace

void WriteModelKeyValues(JobContext& job) {
  const auto header = job.Model.Header();
  if (header->KeyValueSize == 0) return;
  for (const core::KeyValue& root : ReadText(job, "model", header->KeyValueOffset, header->KeyValueSize)) {
    if (!root.IsBlock) {
      job.Lose("key values outside a block");
      continue;
    }
    if (!IsHead(root)) job.Lose("names of blocks round the key values");
    std::string text = "$keyvalues {\n";
    AddLines(job, root.Children, "  ", text);
    job.Script().Text(text + "}\n");
  }
}

std::string SequenceKeyValues(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  if (sequence->KeyValueSize == 0) return {};
  const auto roots = ReadText(job, "sequence", sequence.Offset() + sequence->KeyValueOffset, sequence->KeyValueSize);
  if (roots.empty()) return {};
  const bool headed = roots.size() == 1 && IsHead(roots[0]);
  std::string text = "  keyvalues {\n";
  AddLines(job, headed ? roots[0].Children : roots, "    ", text);
  return text + "  }\n";
}

}  // namespace tarnwick::decompiler::sources
