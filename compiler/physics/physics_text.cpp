#include "compiler/physics/physics_text.h"

#include <algorithm>
#include <map>

#include "compiler/physics/collision_text.h"
#include "core/paths.h"
#include "model/phy_values.h"
#include "qc/messages.h"

namespace tarnwick::compiler {

namespace {

/// The friction of a joint as typed is multiplied by this (supposed from the values that models hold).
constexpr double FrictionFactor = 0.2;
constexpr float LeastMass = 1;

class PhysicsText {
 public:
  PhysicsText(CompileContext& context, const ModelBones& bones, const std::vector<TextBody>& bodies,
              const std::vector<int32_t>& targets)
      : m_context(context),
        m_plan(*context.Plan.Collision),
        m_bones(bones),
        m_bodies(bodies),
        m_target(targets),
        m_solidOf(bones.Bones.size(), -1) {
    for (size_t i = 0; i < bodies.size(); ++i) m_solidOf[static_cast<size_t>(bodies[i].Bone)] = static_cast<int32_t>(i);
  }

  std::string Make() {
    model::PhyValues values;
    for (size_t i = 0; i < m_bodies.size(); ++i) {
      model::PhySolidValues& solid = values.Solids.emplace_back();
      solid.Name = NameOfBody(m_plan, m_bones, m_bodies[i].Bone);
      if (m_bodies[i].Parent >= 0)
        solid.Parent = NameOfBody(m_plan, m_bones, m_bodies[static_cast<size_t>(m_bodies[i].Parent)].Bone);
      solid.SurfaceProp = SurfaceOf(m_bodies[i].Bone);
      solid.Damping = m_plan.Damping;
      solid.RotationDamping = m_plan.RotDamping;
      solid.Inertia = m_plan.Inertia;
      solid.Volume = m_bodies[i].Volume;
    }
    SetJointValues(m_plan.JointInertia, values, &model::PhySolidValues::Inertia);
    SetJointValues(m_plan.JointDamping, values, &model::PhySolidValues::Damping);
    SetJointValues(m_plan.JointRotDamping, values, &model::PhySolidValues::RotationDamping);
    SetJointValues(m_plan.JointMassBias, values, &model::PhySolidValues::MassBias);
    ShareMass(values);
    AddConstraints(values);
    for (const auto& [first, second] : m_plan.Collide) {
      const int32_t a = SolidNamed(first, m_plan.At), b = SolidNamed(second, m_plan.At);
      if (a >= 0 && b >= 0) values.CollisionPairs.emplace_back(a, b);
    }
    values.NoSelfCollisions = m_plan.NoSelfCollisions;
    if (m_plan.AnimatedFriction) {
      const auto& f = *m_plan.AnimatedFriction;
      values.AnimatedFriction = model::PhyAnimatedFriction{f[0], f[1], f[2], f[3], f[4]};
    }
    values.RootName = ModelName(m_plan.RootBone);
    values.TotalMass = m_plan.Mass;
    values.IsConcave = m_plan.Concave;
    for (const auto& [into, other] : m_plan.Merged) values.JointMerges.emplace_back(ModelName(into), ModelName(other));
    std::string tail;
    for (const int32_t number : m_context.Plan.CollisionTexts) {
      const auto& texts = m_context.Plan.Script.KeyValues;
      if (number >= 0 && static_cast<size_t>(number) < texts.size()) {
        tail += FormatCollisionText(texts[static_cast<size_t>(number)]);
      }
    }
    return model::FormatPhyText(values, tail);
  }

 private:
  /// The name that a bone has in the model, where $renamebone gave it another than that which was typed.
  std::string ModelName(const std::string& typed) const {
    const int32_t bone = typed.empty() ? -1 : m_bones.Named(typed);
    if (bone < 0) return typed;
    const std::string& name = m_bones.Bones[static_cast<size_t>(bone)].Name;
    return core::EqualIgnoringCase(name, typed) ? typed : name;
  }
  /// The solid of a bone that a statement names; -1, told, if it has none.
  int32_t SolidNamed(const std::string& name, const qc::Place& at) {
    // A bone that the model dropped has no joint, and what is said of it is not for the bone that took its place.
    const int32_t bone = m_plan.Joints ? m_bones.Named(name) : -1;
    const int32_t solid = bone < 0 ? -1 : m_solidOf[static_cast<size_t>(m_target[static_cast<size_t>(bone)])];
    if (solid < 0) {
      m_context.Warning(at, "the collision model has no body for the bone " + qc::Shown(name),
                        core::TroubleKind::Missing);
    }
    return solid;
  }

  void SetJointValues(const std::vector<PlanJointValue>& joints, model::PhyValues& values,
                      float model::PhySolidValues::*field) {
    for (const PlanJointValue& joint : joints) {
      const int32_t solid = SolidNamed(joint.Bone, joint.At);
      if (solid >= 0) values.Solids[static_cast<size_t>(solid)].*field = joint.Value;
    }
  }

  /// A bone's surface is that of the nearest statement for it or a bone above it, else the model's.
  const std::string& SurfaceOf(int32_t bone) const {
    const auto& surfaces = m_context.Plan.BoneSurfaces;
    for (; m_plan.Joints && !m_bones.Static && bone >= 0; bone = m_bones.Bones[static_cast<size_t>(bone)].Parent) {
      for (auto typed = surfaces.rbegin(); typed != surfaces.rend(); ++typed) {  // of two the last stands
        if (m_bones.Named(typed->Bone) == bone) return typed->Text;
      }
    }
    return m_context.Plan.SurfaceProp;
  }

  /// The mass is shared by volume and bias, but no solid is lighter than 1.
  void ShareMass(model::PhyValues& values) const {
    double sum = 0;
    for (const model::PhySolidValues& solid : values.Solids) sum += double{solid.Volume} * double{solid.MassBias};
    for (model::PhySolidValues& solid : values.Solids) {
      const double share =
          sum > 0 ? double{solid.Volume} * double{solid.MassBias} / sum : 1 / static_cast<double>(values.Solids.size());
      solid.Mass = std::max(LeastMass, static_cast<float>(double{m_plan.Mass} * share));
    }
  }

  void AddConstraints(model::PhyValues& values) {
    for (size_t i = 0; i < m_bodies.size(); ++i) {
      if (m_bodies[i].Parent < 0) continue;
      m_constraintOf[static_cast<int32_t>(i)] = values.Constraints.size();
      values.Constraints.push_back({m_bodies[i].Parent, static_cast<int32_t>(i), {}});
    }
    for (const PlanConstraint& constraint : m_plan.Constraints) {
      const int32_t solid = SolidNamed(constraint.Bone, constraint.At);
      const auto found = m_constraintOf.find(solid);
      if (found == m_constraintOf.end() || constraint.Axis < 0 || constraint.Axis > 2) continue;
      values.Constraints[found->second].Axes[static_cast<size_t>(constraint.Axis)] = {
          constraint.Minimum, constraint.Maximum, static_cast<float>(double{constraint.Friction} * FrictionFactor)};
    }
  }

  CompileContext& m_context;
  const PlanCollision& m_plan;
  const ModelBones& m_bones;
  const std::vector<TextBody>& m_bodies;
  const std::vector<int32_t>& m_target;
  std::vector<int32_t> m_solidOf;  // of a bone; -1 for none
  std::map<int32_t, size_t> m_constraintOf;
};

}  // namespace

std::string NameOfBody(const PlanCollision& plan, const ModelBones& bones, int32_t bone) {
  if (plan.Joints) return bones.Bones[static_cast<size_t>(bone)].Name;
  std::string name(plan.Mesh.Name.substr(plan.Mesh.Name.find_last_of("/\\") + 1));
  const size_t dot = name.rfind('.');
  return dot == std::string::npos ? name : name.substr(0, dot);
}

std::string MakePhysicsText(CompileContext& context, const ModelBones& bones, const std::vector<TextBody>& bodies,
                            const std::vector<int32_t>& targets) {
  return PhysicsText(context, bones, bodies, targets).Make();
}

}  // namespace tarnwick::compiler
