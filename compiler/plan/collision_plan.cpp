#include "compiler/plan/collision_plan.h"

#include <algorithm>
#include <cmath>

#include "compiler/plan/body_plan.h"
#include "compiler/plan/option_values.h"
#include "core/paths.h"

namespace tarnwick::compiler {

using qc::Key;
using qc::Option;

namespace {

void NameBone(PlanCollision& collision, const std::string& bone) {
  const bool known =
      std::ranges::any_of(collision.NamedBones, [&](const std::string& n) { return core::EqualIgnoringCase(n, bone); });
  if (!known) collision.NamedBones.push_back(bone);
}

PlanConstraint ConstraintOf(const Option& line) {
  PlanConstraint constraint;
  constraint.At = line.At;
  constraint.Bone = TextAt(line, 0);
  const std::string axis = core::LowerAscii(TextAt(line, 1)), kind = core::LowerAscii(TextAt(line, 2));
  constraint.Axis = axis == "y" ? 1 : axis == "z" ? 2 : 0;
  constraint.Friction = NumberAt(line, 5);
  if (kind == "free") {
    constraint.Minimum = -360;
    constraint.Maximum = 360;
  } else if (kind == "limit") {
    constraint.Minimum = NumberAt(line, 3);
    constraint.Maximum = NumberAt(line, 4);
  }
  return constraint;
}

std::vector<PlanJointValue>* JointValues(PlanCollision& collision, Key kind) {
  switch (kind) {
    case Key::JointInertia:
      return &collision.JointInertia;
    case Key::JointDamping:
      return &collision.JointDamping;
    case Key::JointRotDamping:
      return &collision.JointRotDamping;
    case Key::JointMassBias:
      return &collision.JointMassBias;
    default:
      return nullptr;
  }
}

/// A line of a joint; false for one of the whole model.
bool AddJointLine(PlanCollision& collision, const Option& line) {
  if (std::vector<PlanJointValue>* values = JointValues(collision, line.Kind)) {
    if (line.Arguments.size() == 1) {  // for all joints
      if (line.Kind == Key::JointInertia) collision.Inertia = NumberAt(line, 0);
      if (line.Kind == Key::JointDamping) collision.Damping = NumberAt(line, 0);
      if (line.Kind == Key::JointRotDamping) collision.RotDamping = NumberAt(line, 0);
      return true;
    }
    values->push_back({line.At, TextAt(line, 0), NumberAt(line, 1)});
  } else if (line.Kind == Key::JointConstrain) {
    collision.Constraints.push_back(ConstraintOf(line));
  } else if (line.Kind == Key::JointSkip) {
    collision.Skipped.push_back(TextAt(line, 0));
    return true;
  } else if (line.Kind == Key::JointMerge) {
    collision.Merged.emplace_back(TextAt(line, 0), TextAt(line, 1));
    return true;
  } else if (line.Kind == Key::JointCollide) {
    collision.Collide.emplace_back(TextAt(line, 0), TextAt(line, 1));
    return true;
  } else {
    return false;
  }
  NameBone(collision, TextAt(line, 0));
  return true;
}

std::array<float, 5> FrictionOf(const Option& line) {
  const float v[5] = {NumberAt(line, 0), NumberAt(line, 1), NumberAt(line, 2), NumberAt(line, 3), NumberAt(line, 4)};
  // Two orders go round; the largest friction is far above any time.
  const bool timesFirst = v[4] > v[1] && v[4] > 1 && v[0] <= 1 && v[1] <= 1 && v[2] <= 1;
  if (timesFirst) return {v[3], v[4], v[0], v[1], v[2]};
  return {v[0], v[1], v[2], v[3], v[4]};
}

}  // namespace

PlanCollision ReadCollision(const qc::Statement& statement, const SourceUse& use) {
  PlanCollision collision;
  collision.At = statement.At;
  collision.Joints = statement.Kind == qc::Command::CollisionJoints;
  if (!statement.Arguments.empty()) collision.Mesh = UseOf(statement.Arguments[0], use);
  for (const Option& line : statement.Options) {
    if (AddJointLine(collision, line)) continue;
    switch (line.Kind) {
      case Key::Mass:
        collision.Mass = NumberAt(line, 0);
        break;
      case Key::AutoMass:
        collision.AutoMass = true;
        break;
      case Key::MassCenter:
        collision.MassCenter = {NumberAt(line, 0), NumberAt(line, 1), NumberAt(line, 2)};
        break;
      case Key::Inertia:
        collision.Inertia = NumberAt(line, 0);
        break;
      case Key::Damping:
        collision.Damping = NumberAt(line, 0);
        break;
      case Key::RotDamping:
        collision.RotDamping = NumberAt(line, 0);
        break;
      case Key::Drag:
        collision.Drag = NumberAt(line, 0);
        break;
      case Key::Concave:
        collision.Concave = true;
        break;
      case Key::ConcavePerJoint:
        collision.ConcavePerJoint = true;
        break;
      case Key::MaxConvexPieces:
        collision.MostPieces = static_cast<int32_t>(std::clamp(line.Number(0), 0.0, 1e6));
        break;
      case Key::AddConvexSrc:
        if (!line.Arguments.empty()) collision.MorePieces.emplace_back(UseOf(line.Arguments[0], use), TextAt(line, 1));
        break;
      case Key::RootBone:
        collision.RootBone = TextAt(line, 0);
        break;
      case Key::AssumeWorldSpace:
        collision.AssumeWorldSpace = true;
        break;
      case Key::NoSelfCollisions:
        collision.NoSelfCollisions = true;
        break;
      case Key::AnimatedFriction:
        collision.AnimatedFriction = FrictionOf(line);
        break;
      default:
        break;
    }
  }
  return collision;
}

}  // namespace tarnwick::compiler
