#include "view/widget/pixel_context.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <cstring>

namespace tarnwick::view {

namespace {

constexpr GLenum Bgra = 0x80E1;  // as an image of 32 bits a pixel lies in memory; not among the names for all systems

}  // namespace

QSurfaceFormat CanvasFormat() {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setAlphaBufferSize(0);
  return format;  // the renderer smooths edges in a framebuffer of its own
}

PixelContext::PixelContext() {
  m_context.setFormat(CanvasFormat());
  m_context.create();
  m_surface.setFormat(m_context.format());
  m_surface.create();
}

PixelContext::~PixelContext() {
  if (!MakeCurrent()) return;
  m_target.reset();
  DoneCurrent();
}

unsigned PixelContext::Framebuffer(const QSize& size) {
  if (!m_target || m_target->size() != size) {
    m_target.reset();
    m_target = std::make_unique<QOpenGLFramebufferObject>(size);
  }
  return m_target->isValid() ? m_target->handle() : 0;
}

const QImage& PixelContext::Read() {
  const QSize size = m_target->size();
  if (m_image.size() != size) {
    m_image = QImage(size, QImage::Format_RGB32);
    m_read = QImage(size, QImage::Format_RGB32);
  }
  m_target->bind();
  m_context.functions()->glReadPixels(0, 0, size.width(), size.height(), Bgra, GL_UNSIGNED_BYTE, m_read.bits());
  for (int row = 0; row < size.height(); ++row) {
    std::memcpy(m_image.scanLine(size.height() - 1 - row), m_read.constScanLine(row),
                static_cast<size_t>(m_read.bytesPerLine()));
  }
  return m_image;
}

}  // namespace tarnwick::view
