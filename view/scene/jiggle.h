#pragma once

#include <cstddef>
#include <vector>

#include "view/scene/scene.h"

namespace tarnwick::view {

/// How the jiggle bones of a scene swing: each has a tip ahead of it along its Z axis, which springs draw to where the
/// animation has it and which comes late. What some of the numbers of a file mean is supposed, so that the motion is
/// like a game's, not the same.
class JiggleMotion {
 public:
  /// `scene` must outlive the object. All bones stand where their animation has them.
  explicit JiggleMotion(const Scene& scene);

  /// Whether the scene has bones that swing.
  bool HasBones() const { return !m_tips.empty(); }
  /// Lets the bones stand where their animation has them, until the next step.
  void Rest() { m_isMoving = false; }
  /// Has the next moves be those of `seconds`, 0 or more, later than the ones before.
  void Step(float seconds);
  /// Where bone `bone` stands that its animation has at `goal`, both in the model's space. To be asked for once a step.
  Matrix34 Move(size_t bone, const Matrix34& goal);

 private:
  struct Tip {
    const SceneJiggle* Says = nullptr;
    Vec3 Position = {}, Velocity = {};
    Vec3 Base = {}, BaseVelocity = {};
    bool HasPlace = false;
  };
  void MoveBase(Tip& tip, const Matrix34& goal, float seconds) const;
  void MoveTip(Tip& tip, const Matrix34& goal, float seconds) const;

  std::vector<Tip> m_tips;
  std::vector<int32_t> m_places;  // of each bone in m_tips; -1
  bool m_isMoving = false;
  int m_steps = 0;
  float m_seconds = 0;  // of one of the steps
};

}  // namespace tarnwick::view
