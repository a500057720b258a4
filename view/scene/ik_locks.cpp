#include "view/scene/ik_locks.h"

#include <algorithm>
#include <cmath>

#include "view/scene/pose_mix.h"

namespace tarnwick::view {

namespace {

/// A limb is never quite straight, nor folded, so that its knee has a side.
constexpr float LeastBend = 1e-3f;

Vec3 Turned(const Quat& q, const Vec3& v) {
  return TransformPoint(MatrixOf(q, {}), v);
}

/// Where a bone stands in the model's space.
BonePose PlaceOf(const Scene& scene, std::span<const BonePose> poses, int32_t bone) {
  BonePose place = poses[static_cast<size_t>(bone)];
  for (int32_t above = scene.Bones[static_cast<size_t>(bone)].Parent; above >= 0;
       above = scene.Bones[static_cast<size_t>(above)].Parent) {
    const BonePose& parent = poses[static_cast<size_t>(above)];
    place.Position = Turned(parent.Rotation, place.Position) + parent.Position;
    place.Rotation = UnitQuat(parent.Rotation * place.Rotation);
  }
  return place;
}

/// The rotation of a bone's parent in the model's space.
Quat AboveOf(const Scene& scene, std::span<const BonePose> poses, int32_t bone) {
  const int32_t parent = scene.Bones[static_cast<size_t>(bone)].Parent;
  return parent < 0 ? Quat{} : PlaceOf(scene, poses, parent).Rotation;
}

/// The shortest turn from one direction to another.
Quat TurnBetween(const Vec3& from, const Vec3& to) {
  const Vec3 a = Unit(from), b = Unit(to);
  const float dot = Dot(a, b);
  Vec3 axis = Cross(a, b);
  float w = 1 + dot;
  if (w < 1e-6f) {  // right about: round any axis across
    axis = Cross(a, std::fabs(a.X) < 0.7f ? Vec3{1, 0, 0} : Vec3{0, 1, 0});
    w = 0;
  }
  return UnitQuat({axis.X, axis.Y, axis.Z, w});
}

/// Where the knee of a limb from `hip` to `end` stands: as far from both as now, on the side where it is.
Vec3 KneeBetween(const Vec3& hip, const Vec3& knee, const Vec3& end, float upper, float lower) {
  const Vec3 way = end - hip;
  const float length = Length(way);
  const float along = (upper * upper - lower * lower + length * length) / (2 * length);
  const float aside = std::sqrt(std::max(upper * upper - along * along, 0.0f));
  const Vec3 forward = way * (1 / length);
  const Vec3 bend = knee - hip - forward * Dot(knee - hip, forward);
  return hip + forward * along + Unit(bend) * aside;
}

}  // namespace

IkLocks::IkLocks(const Scene& scene, const std::vector<SceneIkLock>& locks, std::span<const BonePose> poses)
    : m_scene(scene), m_locks(locks) {
  m_ends.reserve(locks.size());
  for (const SceneIkLock& lock : locks) {
    m_ends.push_back(PlaceOf(scene, poses, scene.IkChains[static_cast<size_t>(lock.Chain)].Bones[2]));
  }
}

void IkLocks::Restore(std::span<BonePose> poses, float weight) const {
  for (size_t i = 0; i < m_locks.size(); ++i) {
    const auto [hipBone, kneeBone, endBone] = m_scene.IkChains[static_cast<size_t>(m_locks[i].Chain)].Bones;
    const BonePose hip = PlaceOf(m_scene, poses, hipBone);
    const BonePose knee = PlaceOf(m_scene, poses, kneeBone);
    const BonePose end = PlaceOf(m_scene, poses, endBone);
    const float upper = Length(knee.Position - hip.Position);
    const float lower = Length(end.Position - knee.Position);
    const Vec3 wanted = Mix(end.Position, m_ends[i].Position, m_locks[i].PositionWeight * weight);
    const Vec3 way = wanted - hip.Position;
    const float reach = Length(way);
    if (!(upper > LeastBend) || !(lower > LeastBend) || !(reach > LeastBend)) continue;
    const float least = std::fabs(upper - lower) * (1 + LeastBend) + LeastBend;
    const float most = (upper + lower) * (1 - LeastBend);
    if (least >= most) continue;
    const Vec3 target = hip.Position + way * (std::clamp(reach, least, most) / reach);
    const Vec3 bent = KneeBetween(hip.Position, knee.Position, target, upper, lower);

    const Quat hipAbove = AboveOf(m_scene, poses, hipBone);
    const Quat kneeAbove = AboveOf(m_scene, poses, kneeBone);
    const Quat endAbove = AboveOf(m_scene, poses, endBone);
    const Quat hipTurn = TurnBetween(knee.Position - hip.Position, bent - hip.Position);
    const Quat kneeTurn = TurnBetween(Turned(hipTurn, end.Position - knee.Position), target - bent);
    const Quat both = UnitQuat(kneeTurn * hipTurn);
    // The end keeps its own direction, not that of the limb.
    const Quat endRotation = Mix(end.Rotation, m_ends[i].Rotation, m_locks[i].RotationWeight * weight);
    const auto set = [&](int32_t bone, const Quat& above, const Quat& rotation) {
      poses[static_cast<size_t>(bone)].Rotation = UnitQuat(Inverse(above) * rotation);
    };
    set(hipBone, hipAbove, hipTurn * hip.Rotation);
    set(kneeBone, hipTurn * kneeAbove, both * knee.Rotation);
    set(endBone, both * endAbove, endRotation);
  }
}

}  // namespace tarnwick::view
