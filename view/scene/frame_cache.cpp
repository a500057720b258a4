#include "view/scene/frame_cache.h"

#include <algorithm>

namespace tarnwick::view {

FrameCache::FrameCache(std::shared_ptr<FrameSource> source, size_t boneCount)
    : m_source(std::move(source)),
      m_boneCount(boneCount),
      // A pose looks at two frames of four animations at a time.
      m_mostBlocks(std::max<size_t>(8, MostBytes / (boneCount * BlockFrames * sizeof(BonePose)))) {}

const BonePose* FrameCache::Frame(int32_t animation, int32_t frame, int32_t frameCount) {
  const int32_t number = frame / BlockFrames;
  const uint64_t key = uint64_t{static_cast<uint32_t>(animation)} << 32 | static_cast<uint32_t>(number);
  const size_t offset = static_cast<size_t>(frame % BlockFrames) * m_boneCount;
  if (!m_blocks.empty() && m_blocks.front().Key == key) return m_blocks.front().Poses.data() + offset;
  const auto found = m_places.find(key);
  if (found != m_places.end()) {
    m_blocks.splice(m_blocks.begin(), m_blocks, found->second);
    return m_blocks.front().Poses.data() + offset;
  }
  if (m_blocks.size() >= m_mostBlocks) {
    m_places.erase(m_blocks.back().Key);
    m_blocks.splice(m_blocks.begin(), m_blocks, std::prev(m_blocks.end()));
  } else {
    m_blocks.emplace_front();
  }
  Block& block = m_blocks.front();
  block.Key = key;
  const int32_t first = number * BlockFrames;
  const int32_t count = std::min(BlockFrames, frameCount - first);
  block.Poses.assign(static_cast<size_t>(count) * m_boneCount, BonePose{});
  m_source->Read(animation, first, block.Poses);
  m_places[key] = m_blocks.begin();
  return block.Poses.data() + offset;
}

}  // namespace tarnwick::view
