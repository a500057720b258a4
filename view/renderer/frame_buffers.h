#pragma once

#include "view/renderer/gl_table.h"

namespace tarnwick::view {

/// The anti-aliased image that a picture is drawn into before it goes to its target.
class FrameBuffers {
 public:
  explicit FrameBuffers(const GlFunctions& gl) : m_gl(gl) {}
  ~FrameBuffers() { Free(); }
  FrameBuffers(const FrameBuffers&) = delete;
  FrameBuffers& operator=(const FrameBuffers&) = delete;

  /// Binds an image of that size for drawing. False if the driver has none.
  bool Bind(int width, int height);
  /// Puts what was drawn into the framebuffer object `target`, which stays bound.
  void CopyTo(GLuint target);
  void Free();

 private:
  bool Make(int width, int height, GLint samples);

  const GlFunctions& m_gl;
  GLuint m_framebuffer = 0;
  GLuint m_colours = 0;
  GLuint m_depths = 0;
  int m_width = 0;
  int m_height = 0;
};

}  // namespace tarnwick::view
