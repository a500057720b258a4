#include "view/materials/texture_cache.h"

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
    SharedTexture known = found == m_entries.end() ? nullptr : found->second.Known.lock();
    if (known != nullptr && found->second.Hash == hash) {
      Keep(found->second, known);
      return known;
    }
  }
  // Two threads may read the same file; both results are good.
  const std::string path = file.Path();
  auto read = ReadTexture(std::move(file), m_largestSide, reason);
  if (!read) return nullptr;
  auto texture = std::make_shared<const Texture>(std::move(*read));
  const std::lock_guard lock(m_lock);
  Entry& entry = m_entries[path];
  entry.Hash = hash;
  Keep(entry, texture);
  return texture;
}

void TextureCache::Clear() {
  const std::lock_guard lock(m_lock);
  m_entries.clear();
  m_bytes = 0;
}

void TextureCache::Keep(Entry& entry, const SharedTexture& texture) {
  Drop(entry);
  entry.Known = texture;
  entry.Kept = texture;
  entry.Used = ++m_clock;
  m_bytes += texture->Bytes();
  while (m_bytes > m_mostBytes) {
    Entry* oldest = nullptr;
    for (auto& [path, other] : m_entries) {
      if (other.Kept != nullptr && (oldest == nullptr || other.Used < oldest->Used)) oldest = &other;
    }
    if (oldest == nullptr) break;
    Drop(*oldest);
  }
  std::erase_if(m_entries, [](const auto& each) { return each.second.Known.expired(); });
}

void TextureCache::Drop(Entry& entry) {
  if (entry.Kept != nullptr) m_bytes -= entry.Kept->Bytes();
  entry.Kept = nullptr;
}

}  // namespace tarnwick::view
