#include "view/renderer/offscreen.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "view/renderer/offscreen_parts.h"

namespace tarnwick::view {

void Offscreen::Parts::FreeFramebuffer() {
  if (Framebuffer != 0) Gl->DeleteFramebuffers(1, &Framebuffer);
  if (Colours != 0) Gl->DeleteRenderbuffers(1, &Colours);
  Framebuffer = Colours = 0;
}

Offscreen::Offscreen(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}

std::shared_ptr<const GlFunctions> Offscreen::Functions() const {
  return m_parts->Gl;
}

unsigned Offscreen::Framebuffer(int width, int height, std::string& reason) {
  const GlFunctions& gl = *m_parts->Gl;
  if (m_parts->Framebuffer != 0 && m_parts->Width == width && m_parts->Height == height) return m_parts->Framebuffer;
  m_parts->FreeFramebuffer();
  GLint most = 0;
  gl.GetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &most);
  if (width < 1 || height < 1 || width > most || height > most) {
    reason = "the driver draws no picture of " + std::to_string(width) + " by " + std::to_string(height) + " pixels";
    return 0;
  }
  gl.GenRenderbuffers(1, &m_parts->Colours);
  gl.BindRenderbuffer(GL_RENDERBUFFER, m_parts->Colours);
  gl.RenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
  gl.GenFramebuffers(1, &m_parts->Framebuffer);
  gl.BindFramebuffer(GL_FRAMEBUFFER, m_parts->Framebuffer);
  gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_parts->Colours);
  if (gl.CheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    m_parts->FreeFramebuffer();
    reason = "the driver has no memory for a picture of this size";
    return 0;
  }
  m_parts->Width = width;
  m_parts->Height = height;
  return m_parts->Framebuffer;
}

textures::Picture Offscreen::Pixels() {
  const GlFunctions& gl = *m_parts->Gl;
  const size_t width = static_cast<size_t>(m_parts->Width), height = static_cast<size_t>(m_parts->Height);
  std::vector<textures::Bgra> upwards(width * height);
  gl.BindFramebuffer(GL_READ_FRAMEBUFFER, m_parts->Framebuffer);
  gl.BindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  gl.PixelStorei(GL_PACK_ALIGNMENT, 4);
  gl.PixelStorei(GL_PACK_ROW_LENGTH, 0);
  gl.ReadPixels(0, 0, m_parts->Width, m_parts->Height, GL_BGRA, GL_UNSIGNED_BYTE, upwards.data());
  textures::Picture picture{m_parts->Width, m_parts->Height, {}};
  picture.Pixels.reserve(upwards.size());
  const auto divided = [](uint8_t part, uint8_t alpha) {
    return static_cast<uint8_t>(std::min(255, (part * 255 + alpha / 2) / alpha));
  };
  for (size_t row = height; row-- > 0;) {
    for (const textures::Bgra& pixel : std::span(upwards).subspan(row * width, width)) {
      const uint8_t alpha = pixel.A;
      if (alpha == 255 || alpha == 0) {
        picture.Pixels.push_back(alpha == 0 ? textures::Bgra{} : pixel);
      } else {
        picture.Pixels.push_back({divided(pixel.B, alpha), divided(pixel.G, alpha), divided(pixel.R, alpha), alpha});
      }
    }
  }
  return picture;
}

}  // namespace tarnwick::view
