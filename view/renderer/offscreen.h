#pragma once

#include <memory>
#include <string>

#include "textures/picture.h"
#include "view/renderer/gl_functions.h"

namespace tarnwick::view {

/// A context of OpenGL that shows nothing. On Linux it needs neither a display nor a graphics processor: EGL on a
/// device, or Mesa's software renderer without a surface; on Windows a window that is never shown, and the driver of
/// the graphics card. The system's library is loaded when the first one is made. The context is current on one thread
/// at a time, first on the one that made it.
class Offscreen {
 public:
  /// Null, with `reason`, where no such context can be had.
  static std::unique_ptr<Offscreen> Make(std::string& reason);
  ~Offscreen();
  Offscreen(const Offscreen&) = delete;
  Offscreen& operator=(const Offscreen&) = delete;

  std::shared_ptr<const GlFunctions> Functions() const;

  /// Makes the context current on this thread; it is on no other one. False if the driver refuses.
  bool MakeCurrent();
  /// Lets go of it, so that another thread can have it.
  void Release();

  /// Makes a framebuffer of that size to draw into, in place of the one before. 0, with `reason`, if it cannot be had.
  unsigned Framebuffer(int width, int height, std::string& reason);
  /// What was drawn into it. Its alpha is that of the picture, its colours are not multiplied by it.
  textures::Picture Pixels();

 private:
  struct Parts;
  explicit Offscreen(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> m_parts;
};

}  // namespace tarnwick::view
