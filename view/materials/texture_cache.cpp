#include "view/materials/texture_cache.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

namespace tarnwick::view {

SharedTexture TextureCache::Get(core::FileImage file, std::string& reason) {
  const std::string_view bytes(reinterpret_cast<const char*>(file.Bytes().data()), file.Bytes().size());
  const size_t hash = std::hash<std::string_view>()(bytes);
  {
    const std::lock_guard lock(m_lock);
    const auto found = m_entries.find(file.Path());
    if (found != m_entries.end() && found->second.Hash == hash) {
      found->second.Used = ++m_clock;
      return found->second.Kept;
    }
  }
  // Two threads may read the same file; both results are good.
  const std::string path = file.Path();
  auto read = ReadTexture(std::move(file), m_largestSide, reason);
  if (!read) return nullptr;
  const auto texture = std::make_shared<const Texture>(std::move(*read));
  const std::lock_guard lock(m_lock);
  Entry& entry = m_entries[path];
  if (entry.Kept != nullptr) m_bytes -= entry.Kept->Bytes();
  entry = {texture, hash, ++m_clock};
  m_bytes += texture->Bytes();
  MakeRoom();
  return texture;
}

void TextureCache::Clear() {
  const std::lock_guard lock(m_lock);
  m_entries.clear();
  m_bytes = 0;
}

void TextureCache::MakeRoom() {
  while (m_bytes > m_mostBytes && !m_entries.empty()) {
    const auto oldest = std::min_element(m_entries.begin(), m_entries.end(),
                                         [](const auto& a, const auto& b) { return a.second.Used < b.second.Used; });
    m_bytes -= oldest->second.Kept->Bytes();
    m_entries.erase(oldest);
  }
}

}  // namespace tarnwick::view
