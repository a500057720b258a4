#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "decompiler/sources/face.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/writers/flex_expression.h"

namespace tarnwick::decompiler::sources {

namespace {

/// A rule's text is at most this long in a sound model, by far: one operation for each of 10,000 flexes.
constexpr size_t LongestRule = size_t{1} << 20;

constexpr std::string_view RightPrefix = "right_", LeftPrefix = "left_";

struct Controller {
  std::string_view Type, Name;
  float Minimum = 0, Maximum = 1;
};

class SharedFace {
 public:
  SharedFace(JobContext& job, const FaceNames& names) : m_job(job), m_names(names), m_header(job.Model.Header()) {}

  void Run() {
    WriteMouths();
    if (!ReadControllers()) return;
    WriteControllers();
    WriteVariables();
    WriteRules();
  }

 private:
  void WriteMouths() {
    const auto mouths = m_job.Table<StudioMouth>("mouth table", m_header->MouthOffset, m_header->MouthCount);
    if (!mouths) return;
    int64_t number = 0;
    for (const auto mouth : *mouths) {
      if (!m_job.ScriptWithinBounds()) return;
      const auto bone = BoneName(m_job, "mouth", mouth.Offset(), mouth->Bone);
      if (!bone || !m_names.Has(mouth->FlexDesc)) {
        m_job.Lose("mouths whose bone or flex is not there");
        continue;
      }
      m_job.Script().Text("    mouth " + std::to_string(number++) + " " + NameOf(mouth->FlexDesc) + " " +
                          Quoted(m_job, *bone) + " " + Numbers(m_job, mouth->Forward) + "\n");
    }
  }

  std::string NameOf(int32_t descriptor) const {
    return Quoted(m_job, m_names.Descriptors[static_cast<size_t>(descriptor)]);
  }

  bool ReadControllers() {
    const auto table = m_job.Table<StudioFlexController>("flex controller table", m_header->FlexControllerOffset,
                                                         m_header->FlexControllerCount);
    if (!table) return false;
    for (const auto controller : *table) {
      const auto type = m_job.NameOf("flex controller type", controller, controller->TypeOffset);
      const auto name = m_job.NameOf("flex controller name", controller, controller->NameOffset);
      if (!type || !name) return false;
      m_controllers.push_back({*type, *name, controller->Minimum, controller->Maximum});
      m_controllerNames.push_back(*name);
    }
    ReadPairs(*table);
    return true;
  }

  /// Finds the controllers that one slider moves together.
  void ReadPairs(const core::RecordArray<StudioFlexController>& table) {
    constexpr int32_t VersionOfControls = 48;
    if (m_header->Version < VersionOfControls || m_header->FlexControlCount == 0) {
      // The file does not say; a compile joins them by their names, on one line or two.
      for (int64_t i = 0; i + 1 < table.Count(); ++i) {
        if (CanPair(i)) m_pairs.insert(i++);
      }
      return;
    }
    const auto controls =
        m_job.Table<StudioFlexControl>("flex control table", m_header->FlexControlOffset, m_header->FlexControlCount);
    if (!controls) return;
    for (const auto control : *controls) {
      if (control->ControllerOffsets[1] == 0) continue;
      const int64_t left = NumberOf(table, control.Offset() + control->ControllerOffsets[0]);
      const int64_t right = NumberOf(table, control.Offset() + control->ControllerOffsets[1]);
      if (right >= 0 && left == right + 1 && CanPair(right)) {
        m_pairs.insert(right);
      } else {
        m_job.Lose("sliders of two controllers that no names join");
      }
    }
  }

  static int64_t NumberOf(const core::RecordArray<StudioFlexController>& table, int64_t offset) {
    if (table.Count() == 0) return -1;
    const int64_t way = offset - table[0].Offset();
    const int64_t number = way / int64_t{sizeof(StudioFlexController)};
    return way >= 0 && way % int64_t{sizeof(StudioFlexController)} == 0 && table.Holds(number) ? number : -1;
  }

  bool CanPair(int64_t right) const {
    const Controller& r = m_controllers[static_cast<size_t>(right)];
    const Controller& l = m_controllers[static_cast<size_t>(right) + 1];
    return r.Name.starts_with(RightPrefix) && l.Name.starts_with(LeftPrefix) &&
           r.Name.substr(RightPrefix.size()) == l.Name.substr(LeftPrefix.size()) && r.Type == l.Type &&
           r.Minimum == l.Minimum && r.Maximum == l.Maximum;
  }

  void WriteControllers() {
    for (size_t i = 0; i < m_controllers.size() && m_job.ScriptWithinBounds(); ++i) {
      const Controller& controller = m_controllers[i];
      std::string line = "    flexcontroller " + Quoted(m_job, controller.Type) + " " + Quoted(m_job, controller.Name);
      if (m_pairs.contains(static_cast<int64_t>(i))) line += " " + Quoted(m_job, m_controllers[++i].Name);
      m_job.Script().Text(line + " range " + Number(m_job, controller.Minimum) + " " +
                          Number(m_job, controller.Maximum) + "\n");
    }
  }

  /// Whatever has a name and no shape is a variable: rules can name it.
  void WriteVariables() {
    std::set<std::string_view> said;
    for (size_t d = 0; d < m_names.Descriptors.size(); ++d) {
      if (m_names.Known[d]) said.insert(m_names.Descriptors[d]);
    }
    for (const std::string_view name : m_names.Descriptors) {
      if (!m_job.ScriptWithinBounds()) return;
      if (said.insert(name).second) m_job.Script().Text("    localvar " + Quoted(m_job, name) + "\n");
    }
  }

  void WriteRules() {
    const auto rules =
        m_job.Table<StudioFlexRule>("flex rule table", m_header->FlexRuleOffset, m_header->FlexRuleCount);
    if (!rules) return;
    int64_t number = -1;
    for (const auto rule : *rules) {
      ++number;
      const auto ops =
          m_job.Table<StudioFlexOp>("flex rule's operations", rule.Offset() + rule->OpOffset, rule->OpCount);
      if (ops && !m_job.Spend(ops->Count() * RecordCost)) return;
      if (!m_job.ScriptWithinBounds()) return;
      if (!m_names.Has(rule->FlexDesc)) {
        LeaveOut("number " + std::to_string(number), "it drives a flex that is not there");
        continue;
      }
      const std::string_view name = m_names.Descriptors[static_cast<size_t>(rule->FlexDesc)];
      if (!ops) {
        LeaveOut(name, "its operations do not lie in the file");
      } else if (!CanBeginRule(name)) {
        LeaveOut(name, "its name cannot stand in a rule");
      } else {
        const FlexExpression expression =
            MakeFlexExpression(*ops, {m_controllerNames, m_names.Descriptors}, LongestRule);
        if (expression.Problem.empty()) {
          m_job.Script().Text("    " + FlexWord(name) + " = " + expression.Text + "\n");
        } else {
          LeaveOut(name, expression.Problem);
        }
      }
    }
  }

  void LeaveOut(std::string_view name, std::string_view reason) {
    m_job.Lose("face rules that no expression says");
    m_job.Script().Text("    // the rule of " + Quoted(m_job, name) + " is left out, since " + std::string(reason) +
                        "\n");
  }

  JobContext& m_job;
  const FaceNames& m_names;
  core::Record<StudioHeader> m_header;
  std::vector<Controller> m_controllers;
  std::vector<std::string_view> m_controllerNames;
  std::set<int64_t> m_pairs;  // numbers of the right ones
};

}  // namespace

bool HasSharedFace(const JobContext& job) {
  const auto header = job.Model.Header();
  return header->FlexControllerCount > 0 || header->FlexRuleCount > 0 || header->MouthCount > 0 ||
         header->FlexDescCount > 0;
}

void WriteSharedFace(JobContext& job, const FaceNames& names) {
  SharedFace(job, names).Run();
}

void LoseSharedFace(JobContext& job) {
  const auto header = job.Model.Header();
  job.Lose("flex controllers without a model of their own", std::max<int32_t>(+header->FlexControllerCount, 0));
  job.Lose("face rules without a model of their own", std::max<int32_t>(+header->FlexRuleCount, 0));
  job.Lose("mouths without a model of their own", std::max<int32_t>(+header->MouthCount, 0));
  job.Lose("flex names without a model of their own", std::max<int32_t>(+header->FlexDescCount, 0));
}

}  // namespace tarnwick::decompiler::sources
