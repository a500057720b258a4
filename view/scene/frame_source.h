#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "view/scene/vector_math.h"

namespace tarnwick::view {

/// Where a bone stands in its parent's space, or in a delta what is added to that.
struct BonePose {
  Quat Rotation;
  Vec3 Position;
  float Unused = 0;
};
static_assert(sizeof(BonePose) == 32);

/// Gives the frames of a scene's animations. Used by one thread.
class FrameSource {
 public:
  virtual ~FrameSource() = default;

  /// Fills `poses` with the frames from `first` on, a pose for each bone, frame after frame. All frames are the
  /// animation's. Bones without data, and all bones of an animation that is damaged, have their defaults.
  virtual void Read(int32_t animation, int32_t first, std::span<BonePose> poses) = 0;
};

}  // namespace tarnwick::view
