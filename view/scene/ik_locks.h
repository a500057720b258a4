#pragma once

#include <span>
#include <vector>

#include "view/scene/frame_source.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// The ends of limbs as they stood at a moment, so that they can be put back there when other sequences have moved the
/// bones above them: hip and knee are turned, the knee keeps the side to which it bends.
class IkLocks {
 public:
  /// Notes where the chains of `locks` end in `poses`. Both references must outlive the object.
  IkLocks(const Scene& scene, const std::vector<SceneIkLock>& locks, std::span<const BonePose> poses);

  /// Puts the ends back, each as much as its lock weighs times `weight`; what a limb cannot reach it points to.
  void Restore(std::span<BonePose> poses, float weight) const;

 private:
  const Scene& m_scene;
  const std::vector<SceneIkLock>& m_locks;
  std::vector<BonePose> m_ends;  // in the model's space
};

}  // namespace tarnwick::view
