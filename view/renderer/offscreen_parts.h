#pragma once

#include <memory>

#include "view/renderer/gl_table.h"
#include "view/renderer/offscreen.h"

namespace tarnwick::view {

/// What a context has, whichever system gave it.
struct Offscreen::Parts {
  void* Context = nullptr;  // EGL's or Windows' own handle
  std::shared_ptr<const GlFunctions> Gl;
  GLuint Framebuffer = 0;
  GLuint Colours = 0;
  int Width = 0;
  int Height = 0;

  void FreeFramebuffer();
};

}  // namespace tarnwick::view
