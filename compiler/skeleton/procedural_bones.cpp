#include <algorithm>
#include <cmath>

#include "compiler/plan/angles.h"
#include "compiler/skeleton/build_skeleton.h"
#include "model/bone_math.h"
#include "model/studio_records.h"
#include "qc/vrd_file.h"

namespace tarnwick::compiler {

using model::StudioJiggleBone;
using qc::Key;

namespace {

constexpr float DefaultStiffness = 100;
constexpr float FarBase = 100;

StudioJiggleBone DefaultJiggle() {
  StudioJiggleBone bone = {};
  bone.YawStiffness = bone.PitchStiffness = bone.AlongStiffness = DefaultStiffness;
  bone.BaseStiffness = DefaultStiffness;
  const model::JiggleBaseLimit far = {-FarBase, FarBase, 0};
  bone.Left = bone.Up = bone.Forward = far;
  return bone;
}

/// Takes a property of the tip. False if it is one of another group.
bool TakeTipProperty(const qc::Option& p, StudioJiggleBone& bone) {
  const auto value = static_cast<float>(p.Number(0));
  const auto limit = [&](float& least, float& most, uint32_t flag) {
    least = RadiansOf(p.Number(0));
    most = RadiansOf(p.Number(1));
    bone.Flags |= flag;
  };
  switch (p.Kind) {
    case Key::Length:
      bone.Length = value;
      break;
    case Key::TipMass:
      bone.TipMass = value;
      break;
    case Key::YawStiffness:
      bone.YawStiffness = value;
      break;
    case Key::YawDamping:
      bone.YawDamping = value;
      break;
    case Key::PitchStiffness:
      bone.PitchStiffness = value;
      break;
    case Key::PitchDamping:
      bone.PitchDamping = value;
      break;
    case Key::AlongStiffness:
      bone.AlongStiffness = value;
      break;
    case Key::AlongDamping:
      bone.AlongDamping = value;
      break;
    case Key::AllowLengthFlex:
      bone.Flags &= ~model::JiggleFlagKeepLength;
      break;
    case Key::AngleConstraint:
      bone.AngleLimit = RadiansOf(p.Number(0));
      bone.Flags |= model::JiggleFlagAngleLimit;
      break;
    case Key::YawConstraint: {
      float least = 0, most = 0;
      limit(least, most, model::JiggleFlagYawLimit);
      bone.Yaw.Minimum = least;
      bone.Yaw.Maximum = most;
      break;
    }
    case Key::PitchConstraint: {
      float least = 0, most = 0;
      limit(least, most, model::JiggleFlagPitchLimit);
      bone.Pitch.Minimum = least;
      bone.Pitch.Maximum = most;
      break;
    }
    case Key::YawFriction:
      bone.Yaw.Friction = value;
      break;
    case Key::YawBounce:
      bone.Yaw.Bounce = value;
      break;
    case Key::PitchFriction:
      bone.Pitch.Friction = value;
      break;
    case Key::PitchBounce:
      bone.Pitch.Bounce = value;
      break;
    default:
      return false;
  }
  return true;
}

/// The same for a property of the spring at the base.
bool TakeBaseProperty(const qc::Option& p, StudioJiggleBone& bone) {
  const auto value = static_cast<float>(p.Number(0));
  const auto take = [&](model::JiggleBaseLimit limit, bool friction) {
    if (friction) return model::JiggleBaseLimit{limit.Minimum, limit.Maximum, value};
    return model::JiggleBaseLimit{value, static_cast<float>(p.Number(1)), limit.Friction};
  };
  switch (p.Kind) {
    case Key::BaseMass:
      bone.BaseMass = value;
      break;
    case Key::Stiffness:
      bone.BaseStiffness = value;
      break;
    case Key::Damping:
      bone.BaseDamping = value;
      break;
    case Key::LeftConstraint:
    case Key::LeftFriction:
      bone.Left = take(bone.Left, p.Kind == Key::LeftFriction);
      break;
    case Key::UpConstraint:
    case Key::UpFriction:
      bone.Up = take(bone.Up, p.Kind == Key::UpFriction);
      break;
    case Key::ForwardConstraint:
    case Key::ForwardFriction:
      bone.Forward = take(bone.Forward, p.Kind == Key::ForwardFriction);
      break;
    default:
      return false;
  }
  return true;
}

/// Takes what a group holds. A property of another group does nothing here, which an author has to know.
template <typename Take>
void TakeGroup(CompileContext& context, const qc::Option& group, StudioJiggleBone& bone, const Take& take) {
  for (const qc::Option& property : group.Options) {
    if (take(property, bone)) continue;
    context.Warning(property.At,
                    std::string(property.Name) + " is no property of " + std::string(group.Name) + "; it is left out");
  }
}

StudioJiggleBone JiggleOf(CompileContext& context, const qc::Statement& statement) {
  constexpr uint32_t Tips = model::JiggleFlagRigid | model::JiggleFlagFlexible;
  StudioJiggleBone bone = DefaultJiggle();
  if (statement.Options.empty()) {
    context.Warning(statement.At,
                    "a jiggle bone needs a group such as is_flexible in its braces; this one stands still");
  }
  for (const qc::Option& group : statement.Options) {
    switch (group.Kind) {
      case Key::IsRigid:
      case Key::IsFlexible:
        if ((bone.Flags & Tips) != 0) {
          context.Warning(group.At, "a jiggle bone is rigid or flexible, not both; the last word counts");
        }
        bone.Flags &= ~Tips;
        bone.Flags |= model::JiggleFlagKeepLength |
                      (group.Kind == Key::IsRigid ? model::JiggleFlagRigid : model::JiggleFlagFlexible);
        TakeGroup(context, group, bone, TakeTipProperty);
        break;
      case Key::HasBaseSpring:
        bone.Flags |= model::JiggleFlagBaseSpring;
        TakeGroup(context, group, bone, TakeBaseProperty);
        break;
      default:
        context.Warning(group.At, qc::Shown(group.Name) + " is known, but nothing is built from it",
                        core::TroubleKind::Lost);
    }
  }
  return bone;
}

model::Quat QuatOf(const std::array<double, 3>& degrees) {
  model::Quat q;
  model::EulerToQuat({RadiansOf(degrees[0]), RadiansOf(degrees[1]), RadiansOf(degrees[2])}, q);
  return q;
}

void AddDriven(CompileContext& context, ModelBones& bones, const qc::Place& at, const qc::VrdBone& helper,
               BuiltSkeleton& skeleton) {
  BuiltDrivenBone driven;
  driven.Bone = bones.Named(helper.Name);
  driven.Driver = bones.Named(helper.Driver);
  if (helper.What != qc::VrdBone::Kind::Helper) {
    return context.Warning(at, "an aim constraint is known, but nothing is built from it", core::TroubleKind::Lost);
  }
  // A bone that nothing uses is not in the model: it is not for its parent to be driven in its place.
  if (driven.Bone < 0 && bones.Find(helper.Name) >= 0) return;
  if (driven.Bone < 0 || driven.Driver < 0) {
    return context.Warning(at, "no bone is called " + qc::Shown(driven.Bone < 0 ? helper.Name : helper.Driver));
  }
  for (const qc::VrdTrigger& typed : helper.Triggers) {
    model::StudioTrigger trigger = {};
    const float angle = RadiansOf(typed.ConeAngle);
    trigger.InverseTolerance = angle == 0 ? 0 : 1 / angle;
    trigger.DriverRotation = QuatOf(typed.Driver);
    trigger.Rotation = QuatOf(typed.Rotation);
    const auto place = [&](size_t i) { return static_cast<float>(helper.BasePosition[i] + typed.Position[i]); };
    trigger.Position = {place(0), place(1), place(2)};
    driven.Triggers.push_back(trigger);
  }
  skeleton.DrivenBones.push_back(std::move(driven));
}

}  // namespace

void BuildProceduralBones(CompileContext& context, ModelBones& bones, BuiltSkeleton& skeleton) {
  for (const PlanJiggleBone& typed : context.Plan.JiggleBones) {
    const int32_t bone = bones.Named(typed.Bone);
    if (bone < 0) {
      qc::NearName near(typed.Bone);
      for (const ModelBone& other : bones.Bones) near.Offer(other.Name);
      context.Warning(typed.At, "the model has no bone " + qc::Shown(typed.Bone) + " that could jiggle" +
                                    qc::DidYouMean(near.Best()));
      continue;
    }
    BuiltJiggleBone jiggle{bone, JiggleOf(context, *typed.Words)};
    const auto again = std::ranges::find(skeleton.JiggleBones, bone, &BuiltJiggleBone::Bone);
    if (again == skeleton.JiggleBones.end()) {
      skeleton.JiggleBones.push_back(jiggle);
    } else {
      context.Warning(typed.At, "a second $jigglebone for " + qc::Shown(typed.Bone) + " takes the first one's place");
      *again = jiggle;
    }
  }
  for (const VrdSource& source : context.VrdSources()) {
    for (const qc::VrdBone& helper : source.File.Bones) AddDriven(context, bones, source.At, helper, skeleton);
  }
  const auto byBone = [](const auto& a, const auto& b) { return a.Bone < b.Bone; };
  std::ranges::stable_sort(skeleton.DrivenBones, byBone);
  std::ranges::stable_sort(skeleton.JiggleBones, byBone);
  for (const BuiltDrivenBone& driven : skeleton.DrivenBones) {
    bones.Bones[static_cast<size_t>(driven.Bone)].Flags |= model::BoneFlagProcedural;
  }
  for (const BuiltJiggleBone& jiggle : skeleton.JiggleBones) {
    bones.Bones[static_cast<size_t>(jiggle.Bone)].Flags |= model::BoneFlagProcedural;
  }
}

}  // namespace tarnwick::compiler
