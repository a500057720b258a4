#include "view/scene/jiggle.h"

#include <algorithm>
#include <cmath>

#include "model/procedural_records.h"

namespace tarnwick::view {

namespace {

/// Springs are followed in steps of at most this many seconds, in which the stiffest of sound files stay calm.
constexpr float LongestStep = 1.0f / 240;
constexpr int MostSteps = 60;
/// A motion that was not looked at for longer begins anew.
constexpr float LongestPause = 0.25f;

Vec3 Axis(const Matrix34& m, size_t column) {
  return {m(0, column), m(1, column), m(2, column)};
}

bool IsFinite(const Vec3& v) {
  return std::isfinite(Dot(v, v));
}

/// What a spring of `stiffness` with `damping` adds to the velocity along `axis` in a moment.
Vec3 Pull(const Vec3& axis, const Vec3& off, const Vec3& velocity, float stiffness, float damping, float seconds) {
  // Damping that is taken of the velocity which comes out never turns it about.
  const float along = Dot(velocity, axis);
  const float pulled = (along + stiffness * Dot(off, axis) * seconds) / (1 + damping * seconds);
  return axis * (pulled - along);
}

/// Keeps `value` between two limits. What runs against one comes back, by the share `bounce`, and is slowed along it.
float Limited(float value, const SceneJiggleLimit& limit, float& velocity) {
  const float kept = std::clamp(value, std::min(limit.Minimum, limit.Maximum), std::max(limit.Minimum, limit.Maximum));
  if (kept != value && velocity * (value - kept) > 0) velocity *= -std::clamp(limit.Bounce, 0.0f, 1.0f);
  return kept;
}

/// The direction `forward` of a bone turned to `wanted` by the shortest way, the rest of the bone with it.
Matrix34 Aimed(const Matrix34& goal, const Vec3& wanted, const Vec3& base) {
  const Vec3 forward = Unit(Axis(goal, 2));
  const Vec3 axis = Cross(forward, wanted);
  const float cosine = Dot(forward, wanted);
  Matrix34 turned = goal;
  if (cosine > -0.9999f) {
    const float k = 1 / (1 + cosine);
    for (size_t column = 0; column < 3; ++column) {
      const Vec3 v = Axis(goal, column);
      const Vec3 to = v * cosine + Cross(axis, v) + axis * (Dot(axis, v) * k);
      turned(0, column) = to.X, turned(1, column) = to.Y, turned(2, column) = to.Z;
    }
  }
  turned(0, 3) = base.X, turned(1, 3) = base.Y, turned(2, 3) = base.Z;
  return turned;
}

}  // namespace

JiggleMotion::JiggleMotion(const Scene& scene) : m_places(scene.Bones.size(), -1) {
  m_tips.reserve(scene.Jiggles.size());
  for (const SceneJiggle& one : scene.Jiggles) {
    m_places[static_cast<size_t>(one.Bone)] = static_cast<int32_t>(m_tips.size());
    m_tips.push_back({.Says = &one});
  }
}

void JiggleMotion::Step(float seconds) {
  if (!m_isMoving || !(seconds >= 0) || seconds > LongestPause) {
    for (Tip& tip : m_tips) tip.HasPlace = false;
  }
  m_isMoving = true;
  const float passed = seconds >= 0 ? std::min(seconds, LongestPause) : 0;  // 0 for what is no number too
  m_steps = std::min(static_cast<int>(std::ceil(passed / LongestStep)), MostSteps);
  m_seconds = m_steps > 0 ? seconds / static_cast<float>(m_steps) : 0;
}

Matrix34 JiggleMotion::Move(size_t bone, const Matrix34& goal) {
  if (!m_isMoving || m_places[bone] < 0) return goal;
  Tip& tip = m_tips[static_cast<size_t>(m_places[bone])];
  if (!tip.HasPlace) {
    tip.Base = goal.Translation();
    tip.Position = tip.Base + Axis(goal, 2) * tip.Says->Length;
    tip.Velocity = tip.BaseVelocity = {};
    tip.HasPlace = true;
  }
  for (int step = 0; step < m_steps; ++step) {
    MoveBase(tip, goal, m_seconds);
    MoveTip(tip, goal, m_seconds);
  }
  if ((tip.Says->Flags & model::JiggleFlagBaseSpring) == 0) tip.Base = goal.Translation();
  const Vec3 way = tip.Position - tip.Base;
  if (!IsFinite(way) || !IsFinite(tip.Velocity) || !IsFinite(tip.Base) || Length(way) < 1e-4f) {
    tip.HasPlace = false;
    return goal;
  }
  return Aimed(goal, Unit(way), tip.Base);
}

void JiggleMotion::MoveBase(Tip& tip, const Matrix34& goal, float seconds) const {
  const SceneJiggle& says = *tip.Says;
  if ((says.Flags & model::JiggleFlagBaseSpring) == 0) {
    tip.Base = goal.Translation();
    return;
  }
  Vec3 off = goal.Translation() - tip.Base;
  tip.BaseVelocity.Z -= says.BaseMass * seconds;
  for (size_t axis = 0; axis < 3; ++axis) {
    tip.BaseVelocity =
        tip.BaseVelocity + Pull(Axis(goal, axis), off, tip.BaseVelocity, says.BaseStiffness, says.BaseDamping, seconds);
  }
  tip.Base = tip.Base + tip.BaseVelocity * seconds;
  off = tip.Base - goal.Translation();
  Vec3 kept = goal.Translation();
  for (size_t axis = 0; axis < 3; ++axis) {
    const Vec3 along = Axis(goal, axis);
    float velocity = Dot(tip.BaseVelocity, along);
    const float before = velocity;
    kept = kept + along * Limited(Dot(off, along), says.BaseLimits[axis], velocity);
    tip.BaseVelocity = tip.BaseVelocity + along * (velocity - before);
  }
  tip.Base = kept;
}

void JiggleMotion::MoveTip(Tip& tip, const Matrix34& goal, float seconds) const {
  const SceneJiggle& says = *tip.Says;
  const Vec3 side = Axis(goal, 0), up = Axis(goal, 1), forward = Axis(goal, 2);
  const Vec3 off = tip.Base + forward * says.Length - tip.Position;
  const bool keepsLength = (says.Flags & (model::JiggleFlagKeepLength | model::JiggleFlagRigid)) != 0;
  tip.Velocity.Z -= says.TipMass * seconds;
  tip.Velocity = tip.Velocity + Pull(side, off, tip.Velocity, says.YawStiffness, says.YawDamping, seconds) +
                 Pull(up, off, tip.Velocity, says.PitchStiffness, says.PitchDamping, seconds);
  if (!keepsLength) {
    tip.Velocity = tip.Velocity + Pull(forward, off, tip.Velocity, says.AlongStiffness, says.AlongDamping, seconds);
  }
  tip.Position = tip.Position + tip.Velocity * seconds;

  Vec3 way = tip.Position - tip.Base;
  float length = keepsLength ? says.Length : Length(way);
  Vec3 direction = Unit(way);
  const bool hasYaw = (says.Flags & model::JiggleFlagYawLimit) != 0;
  const bool hasPitch = (says.Flags & model::JiggleFlagPitchLimit) != 0;
  if (hasYaw || hasPitch) {
    float yaw = std::atan2(Dot(direction, side), Dot(direction, forward));
    float pitch = std::asin(std::clamp(Dot(direction, up), -1.0f, 1.0f));
    float sideways = Dot(tip.Velocity, side), upwards = Dot(tip.Velocity, up);
    const float sidewaysBefore = sideways, upwardsBefore = upwards;
    if (hasYaw) yaw = Limited(yaw, says.Yaw, sideways);
    if (hasPitch) pitch = Limited(pitch, says.Pitch, upwards);
    direction =
        forward * (std::cos(yaw) * std::cos(pitch)) + side * (std::sin(yaw) * std::cos(pitch)) + up * std::sin(pitch);
    tip.Velocity = tip.Velocity + side * (sideways - sidewaysBefore) + up * (upwards - upwardsBefore);
  }
  if ((says.Flags & model::JiggleFlagAngleLimit) != 0) {
    const float cosine = std::clamp(Dot(direction, forward), -1.0f, 1.0f);
    const Vec3 across = Unit(direction - forward * cosine);
    if (std::acos(cosine) > says.AngleLimit && Length(across) > 0) {
      direction = forward * std::cos(says.AngleLimit) + across * std::sin(says.AngleLimit);
      const float outwards = Dot(tip.Velocity, across);
      if (outwards > 0) tip.Velocity = tip.Velocity - across * outwards;
    }
  }
  if (keepsLength) tip.Velocity = tip.Velocity - direction * Dot(tip.Velocity, direction);
  tip.Position = tip.Base + direction * length;
}

}  // namespace tarnwick::view
