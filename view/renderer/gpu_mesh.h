#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "view/renderer/gl_table.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// The vertices and indices of a scene on the graphics processor, with the matrices of its bones.
class GpuMesh {
 public:
  explicit GpuMesh(const GlFunctions& gl) : m_gl(gl) {}
  ~GpuMesh() { Free(); }
  GpuMesh(const GpuMesh&) = delete;
  GpuMesh& operator=(const GpuMesh&) = delete;

  void Load(const Scene& scene);
  void Free();

  /// Takes the points of a face that has moved, from `first` on.
  void SetPoints(std::span<const ScenePoint> points, int64_t first);
  void SetSkin(std::span<const Matrix34> matrices);

  /// Binds all for drawing.
  void Bind() const;
  /// Draws ranges of indices (first, count) at once. Bind comes before.
  void Draw(std::span<const std::pair<int64_t, int64_t>> ranges);

  size_t Bytes() const { return m_bytes; }

 private:
  const GlFunctions& m_gl;
  GLuint m_array = 0;
  GLuint m_points = 0;
  GLuint m_vertices = 0;
  GLuint m_indices = 0;
  GLuint m_skin = 0;
  GLuint m_skinTexture = 0;
  size_t m_bytes = 0;
  std::vector<GLsizei> m_counts;  // of one call
  std::vector<const void*> m_firsts;
};

}  // namespace tarnwick::view
