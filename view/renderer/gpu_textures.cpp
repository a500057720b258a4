#include "view/renderer/gpu_textures.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "view/renderer/gl_functions.h"
#include "view/renderer/shaders.h"

namespace tarnwick::view {

namespace {

/// Programs that draw in a graphics processor's place read decoded pixels nearly twice as fast as blocks, so they get
/// them up to this side; above it what the pixels cost in memory and time counts for more.
constexpr int LargestDecoded = 512;

std::string_view TextOf(const GLubyte* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// What OpenGL calls a block format; 0 for others.
GLenum BlockFormat(textures::PixelFormat format) {
  switch (format) {
    case textures::PixelFormat::Dxt1:
    case textures::PixelFormat::Dxt1OneBitAlpha:
      return GL_COMPRESSED_RGBA_S3TC_DXT1_EXT;
    case textures::PixelFormat::Dxt3:
      return GL_COMPRESSED_RGBA_S3TC_DXT3_EXT;
    case textures::PixelFormat::Dxt5:
      return GL_COMPRESSED_RGBA_S3TC_DXT5_EXT;
    default:
      return 0;
  }
}

}  // namespace

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
  AskDriver();
  m_gl.GenTextures(1, &entry.Object);
  m_gl.ActiveTexture(GL_TEXTURE0 + UnitBase);
  m_gl.BindTexture(GL_TEXTURE_2D, entry.Object);
  m_gl.BindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  m_gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
  m_gl.PixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  m_gl.PixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  m_gl.PixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  const bool blocks = GoesAsBlocks(*texture);
  std::vector<const textures::StoredImage*> levels;
  for (const textures::StoredImage& image : texture->Levels) {
    const bool last = &image == &texture->Levels.back();
    if (last || std::max(image.Width, image.Height) <= m_largest) levels.push_back(&image);
  }
  // Before the levels, so that the driver makes room for all of them at once.
  const auto set = [&](GLenum name, GLint value) { m_gl.TexParameteri(GL_TEXTURE_2D, name, value); };
  set(GL_TEXTURE_MAX_LEVEL, static_cast<GLint>(levels.size()) - 1);
  set(GL_TEXTURE_WRAP_S, texture->ClampS ? GL_CLAMP_TO_EDGE : GL_REPEAT);
  set(GL_TEXTURE_WRAP_T, texture->ClampT ? GL_CLAMP_TO_EDGE : GL_REPEAT);
  set(GL_TEXTURE_MAG_FILTER, texture->PointSample ? GL_NEAREST : GL_LINEAR);
  set(GL_TEXTURE_MIN_FILTER, texture->PointSample ? GL_NEAREST_MIPMAP_NEAREST : GL_LINEAR_MIPMAP_LINEAR);
  if (!blocks) {
    // Handed over as they lie in memory, which drivers copy whole, and put right when they are read.
    set(GL_TEXTURE_SWIZZLE_R, GL_BLUE);
    set(GL_TEXTURE_SWIZZLE_B, GL_RED);
  }
  for (size_t level = 0; level < levels.size(); ++level) {
    const textures::StoredImage& image = *levels[level];
    HandOver(static_cast<GLint>(level), image, blocks);
    entry.Bytes +=
        blocks ? image.Pixels.size() : static_cast<size_t>(image.Width) * static_cast<size_t>(image.Height) * 4;
  }
  return entry;
}

void GpuTextures::HandOver(GLint level, const textures::StoredImage& image, bool blocks) {
  if (blocks) {
    m_gl.CompressedTexImage2D(GL_TEXTURE_2D, level, BlockFormat(image.Format), image.Width, image.Height, 0,
                              static_cast<GLsizei>(image.Pixels.size()), image.Pixels.data());
    return;
  }
  const auto give = [&](const void* pixels) {
    m_gl.TexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, image.Width, image.Height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
  };
  if (image.Format == textures::PixelFormat::Bgra8888) return give(image.Pixels.data());
  give(DecodedLevel(image).Pixels.data());
}

void GpuTextures::AskDriver() {
  if (std::exchange(m_wasAsked, true)) return;
  m_gl.GetIntegerv(GL_MAX_TEXTURE_SIZE, &m_largest);
  GLint count = 0;
  m_gl.GetIntegerv(GL_NUM_EXTENSIONS, &count);
  for (GLint i = 0; i < count && !m_takesBlocks; ++i) {
    m_takesBlocks = TextOf(m_gl.GetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))) == "GL_EXT_texture_compression_s3tc";
  }
  m_isSoftware = IsSoftwareDriver(TextOf(m_gl.GetString(GL_RENDERER)));
}

bool GpuTextures::GoesAsBlocks(const Texture& texture) const {
  const textures::StoredImage& first = texture.Levels.front();
  if (!m_takesBlocks || BlockFormat(first.Format) == 0) return false;
  return !m_isSoftware || std::max(first.Width, first.Height) > LargestDecoded;
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
