#pragma once

#include <cstddef>
#include <map>

#include "view/materials/texture.h"
#include "view/renderer/gl_table.h"

namespace tarnwick::view {

/// The textures of a scene on the graphics processor. One that the next scene has too stays.
class GpuTextures {
 public:
  explicit GpuTextures(const GlFunctions& gl) : m_gl(gl) {}
  ~GpuTextures() { Free(); }
  GpuTextures(const GpuTextures&) = delete;
  GpuTextures& operator=(const GpuTextures&) = delete;

  /// Begins a new scene: what is not asked for before `DropUnused` goes.
  void Begin();
  /// The object of a texture; 0 for null.
  GLuint Of(const SharedTexture& texture);
  void DropUnused();
  void Free();

  size_t Bytes() const;

 private:
  struct Entry {
    std::weak_ptr<const Texture> Source = {};  // tells whether the address is still that texture's
    GLuint Object = 0;
    size_t Bytes = 0;
    bool IsUsed = false;
  };

  Entry Uploaded(const SharedTexture& texture);
  void AskDriver();
  bool GoesAsBlocks(const Texture& texture) const;
  void HandOver(GLint level, const textures::StoredImage& image, bool blocks);

  const GlFunctions& m_gl;
  std::map<const Texture*, Entry> m_entries;
  // What the driver is, asked for once
  bool m_wasAsked = false;
  GLint m_largest = 0;  // side that it takes
  bool m_takesBlocks = false;
  bool m_isSoftware = false;
};

}  // namespace tarnwick::view
