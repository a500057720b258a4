#pragma once

#include <map>
#include <mutex>
#include <string>

#include "core/file_image.h"
#include "view/materials/texture.h"

namespace tarnwick::view {

/// Textures that were read, kept while there is room for the next model that names them; one that is in use is not
/// read twice. Several threads may use one cache.
class TextureCache {
 public:
  /// `mostBytes` of textures are kept; what was not asked for the longest goes first. Levels above
  /// `largestSide` are passed over (0: none is).
  explicit TextureCache(size_t mostBytes = size_t{256} << 20, int largestSide = 0)
      : m_mostBytes(mostBytes), m_largestSide(largestSide) {}

  /// The texture in a file, read anew or, if its bytes are those of before, kept. Null, with `reason`, if it cannot
  /// be decoded.
  SharedTexture Get(core::FileImage file, std::string& reason);
  void Clear();

 private:
  struct Entry {
    std::weak_ptr<const Texture> Known = {};
    SharedTexture Kept = {};  // null where there was no room
    size_t Hash = 0;          // of the file's bytes
    uint64_t Used = 0;        // when it was last asked for
  };

  void Keep(Entry& entry, const SharedTexture& texture);
  void Drop(Entry& entry);

  const size_t m_mostBytes;
  const int m_largestSide;
  std::mutex m_lock;
  std::map<std::string, Entry> m_entries;  // by path
  size_t m_bytes = 0;
  uint64_t m_clock = 0;
};

}  // namespace tarnwick::view
