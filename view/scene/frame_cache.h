#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include "view/scene/frame_source.h"

namespace tarnwick::view {

/// Frames that were decoded, by blocks; the blocks that were not needed for longest go first.
class FrameCache {
 public:
  /// Of animations of `boneCount` bones, of which there is at least one.
  FrameCache(std::shared_ptr<FrameSource> source, size_t boneCount);

  /// The poses of one frame, which the animation has (`frameCount` in all). They stay until MostBlocks other blocks
  /// have been asked for, four at least.
  const BonePose* Frame(int32_t animation, int32_t frame, int32_t frameCount);

 private:
  /// A block is decoded at once: going from frame to frame is much quicker than seeking each.
  static constexpr int32_t BlockFrames = 16;
  static constexpr size_t MostBytes = size_t{16} << 20;

  struct Block {
    uint64_t Key;
    std::vector<BonePose> Poses;
  };

  std::shared_ptr<FrameSource> m_source;
  size_t m_boneCount;
  size_t m_mostBlocks;
  std::list<Block> m_blocks;  // the one that was asked for last first
  std::unordered_map<uint64_t, std::list<Block>::iterator> m_places;
};

}  // namespace tarnwick::view
