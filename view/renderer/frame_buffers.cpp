#include "view/renderer/frame_buffers.h"

#include <algorithm>
#include <cstdint>

namespace tarnwick::view {

namespace {

constexpr GLint Samples = 4;
/// Above this size every pixel has one sample: four would take half a gigabyte, and edges are fine enough.
constexpr int64_t MostSampledPixels = int64_t{4096} * 4096;

}  // namespace

bool FrameBuffers::Bind(int width, int height) {
  if (m_framebuffer == 0 || m_width != width || m_height != height) {
    GLint most = 1;
    m_gl.GetIntegerv(GL_MAX_SAMPLES, &most);
    const GLint samples = int64_t{width} * height > MostSampledPixels ? 0 : std::min(Samples, most);
    if (!Make(width, height, samples) && !Make(width, height, 0)) return false;
  }
  m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
  return true;
}

bool FrameBuffers::Make(int width, int height, GLint samples) {
  Free();
  m_gl.GenFramebuffers(1, &m_framebuffer);
  m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
  const auto attach = [&](GLuint& buffer, GLenum format, GLenum place) {
    m_gl.GenRenderbuffers(1, &buffer);
    m_gl.BindRenderbuffer(GL_RENDERBUFFER, buffer);
    m_gl.RenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
    m_gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, buffer);
  };
  attach(m_colours, GL_RGBA8, GL_COLOR_ATTACHMENT0);
  attach(m_depths, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
  m_width = width;
  m_height = height;
  if (m_gl.CheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) return true;
  Free();
  return false;
}

void FrameBuffers::CopyTo(GLuint target) {
  m_gl.BindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffer);
  m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
  m_gl.BlitFramebuffer(0, 0, m_width, m_height, 0, 0, m_width, m_height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  m_gl.BindFramebuffer(GL_FRAMEBUFFER, target);
}

void FrameBuffers::Free() {
  if (m_framebuffer != 0) m_gl.DeleteFramebuffers(1, &m_framebuffer);
  if (m_colours != 0) m_gl.DeleteRenderbuffers(1, &m_colours);
  if (m_depths != 0) m_gl.DeleteRenderbuffers(1, &m_depths);
  m_framebuffer = m_colours = m_depths = 0;
}

}  // namespace tarnwick::view
