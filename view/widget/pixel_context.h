#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <memory>

class QOpenGLFramebufferObject;

namespace tarnwick::view {

/// A context of OpenGL without a window of its own, whose pixels are read back: for drivers without a graphics
/// processor, to which putting a whole window together by OpenGL costs more time and memory than this.
class PixelContext {
 public:
  PixelContext();
  ~PixelContext();
  PixelContext(const PixelContext&) = delete;
  PixelContext& operator=(const PixelContext&) = delete;

  bool MakeCurrent() { return m_context.makeCurrent(&m_surface); }
  void DoneCurrent() { m_context.doneCurrent(); }
  QOpenGLContext& Context() { return m_context; }

  /// The object to draw into, made anew for another size. The context is current. 0 if the driver refuses.
  unsigned Framebuffer(const QSize& size);
  /// Reads what was drawn. The image is good until the next reading.
  const QImage& Read();

 private:
  QOpenGLContext m_context;
  QOffscreenSurface m_surface;
  std::unique_ptr<QOpenGLFramebufferObject> m_target;
  QImage m_read;  // as OpenGL has it, the lowest row first
  QImage m_image;
};

/// The format of the contexts in which models are drawn.
QSurfaceFormat CanvasFormat();

}  // namespace tarnwick::view
