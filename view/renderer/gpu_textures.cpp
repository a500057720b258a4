#include "view/renderer/gpu_textures.h"

#include <algorithm>

#include "view/renderer/shaders.h"

namespace tarnwick::view {

void GpuTextures::Begin() {
  for (auto& [address, entry] : m_entries) entry.IsUsed = false;
}

GLuint GpuTextures::Of(const SharedTexture& texture) {
  if (texture == nullptr || texture->Levels.empty()) return 0;
  Entry& entry = m_entries[texture.get()];
  if (entry.Object != 0 && entry.Source.lock() != texture) m_gl.DeleteTextures(1, &entry.Object), entry.Object = 0;
  if (entry.Object == 0) entry = Uploaded(texture);
  entry.IsUsed = true;
  return entry.Object;
}

GpuTextures::Entry GpuTextures::Uploaded(const SharedTexture& texture) {
  Entry entry{.Source = texture};
  GLint most = 0;
  m_gl.GetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
  m_gl.GenTextures(1, &entry.Object);
  m_gl.ActiveTexture(GL_TEXTURE0 + UnitBase);
  m_gl.BindTexture(GL_TEXTURE_2D, entry.Object);
  m_gl.BindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
  m_gl.PixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  m_gl.PixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  m_gl.PixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  GLint level = 0;
  for (const textures::Picture& picture : texture->Levels) {
    const bool last = &picture == &texture->Levels.back();
    if (!last && std::max(picture.Width, picture.Height) > most) continue;
    m_gl.TexImage2D(GL_TEXTURE_2D, level++, GL_RGBA8, picture.Width, picture.Height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                    picture.Pixels.data());
    entry.Bytes += picture.Pixels.size() * sizeof(textures::Bgra);
  }
  const auto set = [&](GLenum name, GLint value) { m_gl.TexParameteri(GL_TEXTURE_2D, name, value); };
  // Handed over as they lie in memory, which drivers copy whole, and put right when they are read.
  set(GL_TEXTURE_SWIZZLE_R, GL_BLUE);
  set(GL_TEXTURE_SWIZZLE_B, GL_RED);
  set(GL_TEXTURE_MAX_LEVEL, level - 1);
  set(GL_TEXTURE_WRAP_S, texture->ClampS ? GL_CLAMP_TO_EDGE : GL_REPEAT);
  set(GL_TEXTURE_WRAP_T, texture->ClampT ? GL_CLAMP_TO_EDGE : GL_REPEAT);
  set(GL_TEXTURE_MAG_FILTER, texture->PointSample ? GL_NEAREST : GL_LINEAR);
  set(GL_TEXTURE_MIN_FILTER, texture->PointSample ? GL_NEAREST_MIPMAP_NEAREST : GL_LINEAR_MIPMAP_LINEAR);
  return entry;
}

void GpuTextures::DropUnused() {
  for (auto it = m_entries.begin(); it != m_entries.end();) {
    if (!it->second.IsUsed) {
      m_gl.DeleteTextures(1, &it->second.Object);
      it = m_entries.erase(it);
    } else {
      ++it;
    }
  }
}

void GpuTextures::Free() {
  Begin();
  DropUnused();
}

size_t GpuTextures::Bytes() const {
  size_t bytes = 0;
  for (const auto& [address, entry] : m_entries) bytes += entry.Bytes;
  return bytes;
}

}  // namespace tarnwick::view
