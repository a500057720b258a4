#include "compiler/plan/bone_plan.h"

#include <algorithm>

#include "compiler/plan/angles.h"
#include "compiler/plan/option_values.h"
#include "core/paths.h"

namespace tarnwick::compiler {

using qc::Command;
using qc::Key;
using qc::Option;
using qc::Statement;

namespace {

class BonePlanReader {
 public:
  explicit BonePlanReader(CompilePlan& plan) : m_plan(plan) {}

  bool Read(const Statement& s) {
    switch (s.Kind) {
      case Command::DefineBone:
        ReadDefinedBone(s);
        return true;
      case Command::UnlockDefineBones:
        m_plan.UnlockDefinedBones = true;
        return true;
      case Command::BoneMerge:
        m_plan.MergedBones.push_back(Text(s, 0));
        return true;
      case Command::AlwaysCollapse:
        m_plan.CollapsedBones.push_back(Text(s, 0));
        return true;
      case Command::CollapseBones:
        m_plan.CollapseBones = true;
        return true;
      case Command::LockBoneLengths:
        m_plan.LockBoneLengths = true;
        return true;
      case Command::Hierarchy:
        m_plan.Hierarchy.emplace_back(Text(s, 0), Text(s, 1));
        return true;
      case Command::RenameBone:
        m_plan.RenamedBones.emplace_back(Text(s, 0), Text(s, 1));
        return true;
      case Command::Root:
        m_plan.Roots.push_back({s.At, Text(s, 0), {}});
        return true;
      case Command::Attachment:
        ReadAttachment(s);
        return true;
      case Command::HBoxSet:
        m_plan.GivenHitboxes = true;
        m_plan.HitboxSets.push_back({Text(s, 0), {}});
        return true;
      case Command::HBox:
        m_plan.GivenHitboxes = true;
        if (m_plan.HitboxSets.empty()) m_plan.HitboxSets.push_back({"default", {}});
        m_plan.HitboxSets.back().Boxes.push_back({s.At, Whole(s.Number(0)), Text(s, 1), VecAt(s, 2), VecAt(s, 5)});
        return true;
      case Command::HGroup:
        m_plan.HitGroups.push_back({s.At, Text(s, 1), Whole(s.Number(0))});
        return true;
      case Command::JiggleBone:
        m_plan.JiggleBones.push_back({s.At, Text(s, 0), &s});
        return true;
      case Command::ProceduralBones:
        if (s.Arguments[0].Source >= 0) m_plan.VrdSources.push_back(s.Arguments[0].Source);
        return true;
      case Command::PoseParameter:
        ReadPoseParameter(s);
        return true;
      case Command::IkChain:
        ReadIkChain(s);
        return true;
      case Command::IkAutoplayLock:
        m_plan.AutoplayLocks.push_back({s.At, Text(s, 0), Number(s, 1), Number(s, 2)});
        return true;
      default:
        return false;
    }
  }

 private:
  qc::Messages& Told() { return m_plan.Script.Told; }
  std::string Text(const Statement& s, size_t i) const {
    return i < s.Arguments.size() ? std::string(s.Arguments[i].Text) : std::string();
  }
  float Number(const Statement& s, size_t i) const { return static_cast<float>(s.Number(i)); }

  void ReadDefinedBone(const Statement& s) {
    const auto again = std::ranges::find_if(
        m_plan.DefinedBones, [&](const PlanBone& b) { return core::EqualIgnoringCase(b.Name, Text(s, 0)); });
    if (again != m_plan.DefinedBones.end()) return;  // the first counts
    const auto radians = [&](size_t i) { return RadiansOf(s.Number(i)); };
    // Typed as pitch, yaw and roll.
    PlanBone bone{s.At, Text(s, 0), Text(s, 1), VecAt(s, 2), {radians(7), radians(5), radians(6)}, {}, {}};
    const size_t turn = s.Arguments.size() > 11 ? 11 : 8;  // a place stands ahead of the turn, in newer scripts
    if (turn == 11) bone.FixPosition = VecAt(s, 8);
    bone.FixAngles = {radians(turn + 2), radians(turn), radians(turn + 1)};
    m_plan.DefinedBones.push_back(std::move(bone));
  }
  void ReadAttachment(const Statement& s) {
    PlanAttachment attachment{s.At, Text(s, 0), Text(s, 1), VecAt(s, 2), {}, false, false, false, {}, {}};
    for (const Option& option : s.Options) {
      switch (option.Kind) {
        case Key::Absolute:
          attachment.Absolute = true;
          break;
        case Key::Rigid:
          attachment.Rigid = true;
          break;
        case Key::WorldAlign:
          attachment.WorldAlign = true;
          break;
        case Key::Rotate: {
          const model::Vec3 angles = VecAt(option, 0);
          attachment.Rotation = {angles.x, angles.y, angles.z};
          break;
        }
        case Key::XAndZAxes: {
          const model::Vec3 x = VecAt(option, 0), z = VecAt(option, 3);
          attachment.Axes = {x.x, x.y, x.z, z.x, z.y, z.z};
          break;
        }
        default:
          break;
      }
    }
    TellSecond(s, m_plan.Attachments);
    m_plan.Attachments.push_back(std::move(attachment));
  }
  void ReadPoseParameter(const Statement& s) {
    PlanPoseParameter pose{s.At, Text(s, 0), Number(s, 1), Number(s, 2), 0, false};
    if (s.Arguments.size() > 3) {
      pose.Wrap = Number(s, 3);
      pose.Loops = true;
    }
    for (const Option& option : s.Options) {
      if (option.Kind == Key::Loop) {
        pose.Wrap = static_cast<float>(option.Number(0));
        pose.Loops = true;
      } else if (option.Kind == Key::Wrap) {
        pose.Wrap = pose.End - pose.Start;
        pose.Loops = true;
      }
    }
    TellSecond(s, m_plan.PoseParameters);
    m_plan.PoseParameters.push_back(std::move(pose));
  }
  /// Tells that the statement's name is taken: whoever looks for the name finds the first alone.
  template <typename Named>
  void TellSecond(const Statement& s, const std::vector<Named>& known) {
    if (std::ranges::any_of(known, [&](const Named& n) { return core::EqualIgnoringCase(n.Name, Text(s, 0)); })) {
      Told().Warning(core::TroubleKind::Refused, s.Arguments[0].At,
                     "a second " + std::string(s.Name) + " is called " + qc::Shown(Text(s, 0)) +
                         "; by its name the first one is found");
    }
  }
  void ReadIkChain(const Statement& s) {
    PlanIkChain chain{s.At, Text(s, 0), Text(s, 1), {0, 0, 0}, {}, 0, 0, 0};
    for (const Option& option : s.Options) {
      const auto value = static_cast<float>(option.Number(0));
      if (option.Kind == Key::Knee) {
        chain.Knee = VecAt(option, 0);
      } else {
        Told().Warning(core::TroubleKind::Lost, option.At,
                       qc::Shown(option.Name) + " of an $ikchain is known, but nothing is built from it");
      }
      if (option.Kind == Key::Center) chain.Center = VecAt(option, 0);
      if (option.Kind == Key::Height) chain.Height = value;
      if (option.Kind == Key::Pad) chain.Pad = value;
      if (option.Kind == Key::Floor) chain.Floor = value;
    }
    m_plan.IkChains.push_back(std::move(chain));
  }

  CompilePlan& m_plan;
};

}  // namespace

bool ReadBoneStatement(const Statement& statement, CompilePlan& plan) {
  return BonePlanReader(plan).Read(statement);
}

}  // namespace tarnwick::compiler
