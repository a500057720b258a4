#include "view/renderer/gpu_mesh.h"

#include <cstddef>

#include "view/renderer/shaders.h"

namespace tarnwick::view {

namespace {

template <typename T>
GLsizeiptr BytesOf(std::span<const T> values) {
  return static_cast<GLsizeiptr>(values.size_bytes());
}

/// An offset into the bound buffer, in the way in which OpenGL takes it.
const void* Offset(size_t bytes) {
  return reinterpret_cast<const void*>(bytes);
}

}  // namespace

void GpuMesh::Load(const Scene& scene) {
  Free();
  m_gl.GenVertexArrays(1, &m_array);
  m_gl.BindVertexArray(m_array);
  const auto fill = [this](GLuint& buffer, GLenum kind, auto values, GLenum use) {
    m_gl.GenBuffers(1, &buffer);
    m_gl.BindBuffer(kind, buffer);
    m_gl.BufferData(kind, BytesOf(values), values.data(), use);
    m_bytes += values.size_bytes();
  };
  const auto input = [this](VertexInput place, GLint parts, size_t stride, size_t offset) {
    m_gl.EnableVertexAttribArray(place);
    m_gl.VertexAttribPointer(place, parts, GL_FLOAT, GL_FALSE, static_cast<GLsizei>(stride), Offset(offset));
  };
  const GLenum pointUse = scene.FlexShapes.empty() ? GL_STATIC_DRAW : GL_DYNAMIC_DRAW;
  fill(m_points, GL_ARRAY_BUFFER, std::span<const ScenePoint>(scene.Points), pointUse);
  input(InputPosition, 3, sizeof(ScenePoint), offsetof(ScenePoint, Position));
  input(InputNormal, 3, sizeof(ScenePoint), offsetof(ScenePoint, Normal));
  fill(m_vertices, GL_ARRAY_BUFFER, std::span<const SceneVertex>(scene.Vertices), GL_STATIC_DRAW);
  input(InputTexture, 2, sizeof(SceneVertex), offsetof(SceneVertex, U));
  input(InputTangent, 4, sizeof(SceneVertex), offsetof(SceneVertex, Tangent));
  input(InputWeights, 3, sizeof(SceneVertex), offsetof(SceneVertex, Weights));
  m_gl.EnableVertexAttribArray(InputBones);
  m_gl.VertexAttribIPointer(InputBones, 4, GL_UNSIGNED_SHORT, sizeof(SceneVertex),
                            Offset(offsetof(SceneVertex, Bones)));
  fill(m_indices, GL_ELEMENT_ARRAY_BUFFER, std::span<const uint32_t>(scene.Indices), GL_STATIC_DRAW);
  m_gl.BindVertexArray(0);
  m_gl.GenBuffers(1, &m_skin);
  m_gl.GenTextures(1, &m_skinTexture);
}

void GpuMesh::SetPoints(std::span<const ScenePoint> points, int64_t first) {
  m_gl.BindBuffer(GL_ARRAY_BUFFER, m_points);
  m_gl.BufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(first) * static_cast<GLintptr>(sizeof(ScenePoint)),
                     BytesOf(points), points.data());
}

void GpuMesh::SetSkin(std::span<const Matrix34> matrices) {
  m_gl.BindBuffer(GL_TEXTURE_BUFFER, m_skin);
  m_gl.BufferData(GL_TEXTURE_BUFFER, BytesOf(matrices), matrices.data(), GL_STREAM_DRAW);
  m_gl.ActiveTexture(GL_TEXTURE0 + UnitSkin);
  m_gl.BindTexture(GL_TEXTURE_BUFFER, m_skinTexture);
  m_gl.TexBuffer(GL_TEXTURE_BUFFER, GL_RGBA32F, m_skin);
}

void GpuMesh::Bind() const {
  m_gl.ActiveTexture(GL_TEXTURE0 + UnitSkin);
  m_gl.BindTexture(GL_TEXTURE_BUFFER, m_skinTexture);
  m_gl.BindVertexArray(m_array);
}

void GpuMesh::Draw(std::span<const std::pair<int64_t, int64_t>> ranges) {
  m_counts.clear();
  m_firsts.clear();
  for (const auto& [first, count] : ranges) {
    m_counts.push_back(static_cast<GLsizei>(count));
    m_firsts.push_back(Offset(static_cast<size_t>(first) * sizeof(uint32_t)));
  }
  m_gl.MultiDrawElements(GL_TRIANGLES, m_counts.data(), GL_UNSIGNED_INT, m_firsts.data(),
                         static_cast<GLsizei>(m_counts.size()));
}

void GpuMesh::Free() {
  if (m_array != 0) m_gl.DeleteVertexArrays(1, &m_array);
  for (GLuint* buffer : {&m_points, &m_vertices, &m_indices, &m_skin}) {
    if (*buffer != 0) m_gl.DeleteBuffers(1, buffer);
    *buffer = 0;
  }
  if (m_skinTexture != 0) m_gl.DeleteTextures(1, &m_skinTexture);
  m_array = m_skinTexture = 0;
  m_bytes = 0;
}

}  // namespace tarnwick::view
