#include <algorithm>
#include <set>
#include <string>

#include "decompiler/plain/face.h"
#include "decompiler/plain/flex_rule_text.h"

namespace tarnwick::decompiler::plain {

namespace {

/// A rule's text is at most this long in a sound model, by far: one operation for each of 10,000 flexes.
constexpr size_t LongestRule = size_t{1} << 20;

/// Writes the controllers and gives their names. Nothing, told, if the table is damaged.
std::optional<std::vector<std::string_view>> WriteControllers(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioFlexController>("flex controller table", header->FlexControllerOffset,
                                                     header->FlexControllerCount);
  if (!table) return std::nullopt;
  std::vector<std::string_view> names;
  for (const auto controller : *table) {
    const auto type = job.NameOf("flex controller type", controller, controller->TypeOffset);
    const auto name = job.NameOf("flex controller name", controller, controller->NameOffset);
    if (!type || !name || !job.ScriptWithinBounds()) return std::nullopt;
    job.Script().Format("     flexcontroller %s %s \"range\" %2.3f %2.3f\n", job.Word(*type), job.Word(*name),
                        float{controller->Minimum}, float{controller->Maximum});
    names.push_back(*name);
  }
  return names;
}

}  // namespace

void WriteFlexControllers(JobContext& job, const FlexTables& tables) {
  const auto controllers = WriteControllers(job);
  if (!controllers) return;
  const auto header = job.Model.Header();
  const auto rules = job.Table<StudioFlexRule>("flex rule table", header->FlexRuleOffset, header->FlexRuleCount);
  if (!rules) return;
  const FlexRuleNames names{*controllers, tables.Names};
  const std::set<std::string_view> controllerNames(controllers->begin(), controllers->end());
  core::TextWriter& script = job.Script();
  for (const auto rule : *rules) {
    const int64_t d = rule->FlexDesc;
    if (d < 0 || d >= static_cast<int64_t>(tables.Names.size())) {
      return job.Damaged(job.Model.Mdl.Path(), "flex rule", rule.Offset(),
                         "drives flex descriptor " + std::to_string(d) + " of " + std::to_string(tables.Names.size()));
    }
    const std::string_view name = tables.Names[static_cast<size_t>(d)];
    const auto ops = job.Table<StudioFlexOp>("flex rule's operations", rule.Offset() + rule->OpOffset, rule->OpCount);
    if (!ops || !job.Spend(ops->Count() * int64_t{sizeof(StudioFlexOp)}) || !job.ScriptWithinBounds()) return;
    int skipped = 0;
    const auto text = FlexRuleText(*ops, names, LongestRule, skipped);
    if (!text) {
      return job.Damaged(job.Model.Mdl.Path(), "flex rule", rule.Offset(),
                         "is longer than " + std::to_string(LongestRule) + " characters");
    }
    if (!tables.Used[static_cast<size_t>(d)] && controllerNames.count(name) == 0) {
      script.Format("    localvar %s\n", name);
    }
    script.Format("    %%%s = %s\n", name, *text);
    if (skipped > 0) {
      job.Warn("The rule of " + std::string(name) + " holds " + std::to_string(skipped) +
               (skipped == 1 ? " operation" : " operations") + " that the script cannot express; it is not complete");
    }
  }
}

}  // namespace tarnwick::decompiler::plain
