#pragma once

#include <map>
#include <memory>
#include <string>

#include "view/renderer/gl_table.h"

namespace tarnwick::view {

/// Where the values of a vertex go in.
enum VertexInput : GLuint { InputPosition, InputNormal, InputTexture, InputTangent, InputWeights, InputBones };
/// The units at which textures lie.
enum TextureUnit : GLint { UnitBase, UnitBump, UnitSelfIllum, UnitSkin, TextureUnitCount };

/// A linked shader program and the places of its uniforms.
class ShaderProgram {
 public:
  /// Null, with `reason`, if the driver does not take it.
  static std::unique_ptr<ShaderProgram> Make(const GlFunctions& gl, const char* vertex, const char* fragment,
                                             std::string& reason);
  ~ShaderProgram();
  ShaderProgram(const ShaderProgram&) = delete;
  ShaderProgram& operator=(const ShaderProgram&) = delete;

  void Use() const { m_gl.UseProgram(m_program); }
  // Of the program in use; a name that the driver has left out is passed over.
  void Set(const char* name, float value) const { m_gl.Uniform1f(Place(name), value); }
  void Set(const char* name, int value) const { m_gl.Uniform1i(Place(name), value); }
  void Set(const char* name, bool value) const { m_gl.Uniform1i(Place(name), value ? 1 : 0); }
  void Set(const char* name, float x, float y, float z) const { m_gl.Uniform3f(Place(name), x, y, z); }
  void Set(const char* name, float x, float y, float z, float w) const { m_gl.Uniform4f(Place(name), x, y, z, w); }
  void SetMatrix(const char* name, const float* columns) const {
    m_gl.UniformMatrix4fv(Place(name), 1, GL_FALSE, columns);
  }

 private:
  ShaderProgram(const GlFunctions& gl, GLuint program) : m_gl(gl), m_program(program) {}
  GLint Place(const char* name) const;

  const GlFunctions& m_gl;
  GLuint m_program;
  mutable std::map<const char*, GLint> m_places;  // by the address of the name, which is a literal
};

/// The program that draws the mesh: skinning, light, the kinds of materials.
std::unique_ptr<ShaderProgram> MakeMeshProgram(const GlFunctions& gl, std::string& reason);
/// The program that draws lines, points and plain triangles of a colour.
std::unique_ptr<ShaderProgram> MakePlainProgram(const GlFunctions& gl, std::string& reason);

}  // namespace tarnwick::view
