#include "view/renderer/shaders.h"

namespace tarnwick::view {

namespace {

constexpr const char* MeshVertex = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 texturePlace;
layout(location = 3) in vec4 tangent;
layout(location = 4) in vec3 weights;
layout(location = 5) in uvec4 bones;
uniform samplerBuffer skin;  // three rows a bone
uniform mat4 clip;
out vec3 place;
out vec3 outward;
out vec4 along;
out vec2 uv;
void main() {
  vec4 rows[3];
  for (int row = 0; row < 3; ++row) {
    rows[row] = weights.x * texelFetch(skin, int(bones.x) * 3 + row);
    if (weights.y > 0.0) rows[row] += weights.y * texelFetch(skin, int(bones.y) * 3 + row);
    if (weights.z > 0.0) rows[row] += weights.z * texelFetch(skin, int(bones.z) * 3 + row);
  }
  vec4 at = vec4(position, 1.0);
  place = vec3(dot(rows[0], at), dot(rows[1], at), dot(rows[2], at));
  outward = vec3(dot(rows[0].xyz, normal), dot(rows[1].xyz, normal), dot(rows[2].xyz, normal));
  along.xyz = vec3(dot(rows[0].xyz, tangent.xyz), dot(rows[1].xyz, tangent.xyz), dot(rows[2].xyz, tangent.xyz));
  along.w = tangent.w;
  uv = texturePlace;
  gl_Position = clip * vec4(place, 1.0);
}
)";

// Colours come out multiplied by their alpha, so that edges over a background without one stay clean.
constexpr const char* MeshFragment = R"(#version 330 core
in vec3 place;
in vec3 outward;
in vec4 along;
in vec2 uv;
uniform sampler2D base;
uniform sampler2D bump;
uniform sampler2D selfIllumMask;
uniform vec3 eye;
uniform vec3 light;       // towards it
uniform vec4 colour;      // alpha too
uniform vec4 flat_;       // instead of everything, by its alpha
uniform bool textured;
uniform bool lit;
uniform bool alphaTest;
uniform float alphaReference;
uniform bool blended;
uniform bool additive;
uniform bool tintByAlpha;
uniform bool hasBump;
uniform bool selfIllum;
uniform bool hasSelfIllumMask;
uniform vec3 selfIllumTint;
uniform bool phong;
uniform bool phongMaskInBase;
uniform float phongExponent;
uniform vec3 phongTint;   // times the boost
out vec4 result;
void main() {
  vec4 texel = textured ? texture(base, uv) : vec4(1.0);
  if (alphaTest && texel.a * colour.a < alphaReference) discard;
  vec3 shade = texel.rgb * (tintByAlpha ? mix(vec3(1.0), colour.rgb, texel.a) : colour.rgb);
  vec3 towardsEye = normalize(eye - place);
  vec3 n = outward;
  n = dot(n, n) > 0.0 ? normalize(n) : towardsEye;
  if (!gl_FrontFacing) n = -n;
  float mask = 1.0;
  if (hasBump) {
    vec4 stored = texture(bump, uv);
    mask = stored.a;
    vec3 t = along.xyz - n * dot(n, along.xyz);
    if (dot(t, t) > 0.0) {
      t = normalize(t);
      vec3 b = cross(n, t) * (along.w < 0.0 ? -1.0 : 1.0);
      vec3 turned = stored.xyz * 2.0 - 1.0;
      vec3 bumped = t * turned.x + b * turned.y + n * turned.z;
      if (dot(bumped, bumped) > 0.0) n = normalize(bumped);
    }
  }
  if (lit) {
    float half_ = dot(n, light) * 0.5 + 0.5;
    vec3 amount = mix(vec3(0.34, 0.33, 0.32), vec3(0.55, 0.57, 0.60), n.z * 0.5 + 0.5) + 0.62 * half_ * half_;
    if (selfIllum) {
      vec3 own = hasSelfIllumMask ? texture(selfIllumMask, uv).rgb : vec3(texel.a);
      amount = mix(amount, selfIllumTint, clamp(own, 0.0, 1.0));
    }
    shade *= amount;
    if (phong) {
      if (phongMaskInBase) mask = texel.a;
      float glance = pow(max(dot(reflect(-towardsEye, n), light), 0.0), phongExponent);
      shade += min(phongTint * (mask * glance), vec3(0.6));
    }
  }
  shade = mix(clamp(shade, 0.0, 1.0), flat_.rgb, flat_.a);
  float alpha = blended ? clamp(texel.a * colour.a, 0.0, 1.0) : 1.0;
  if (additive) {
    shade *= colour.a;
    result = vec4(shade, max(shade.r, max(shade.g, shade.b)));
  } else {
    result = vec4(shade * alpha, alpha);
  }
}
)";

constexpr const char* PlainVertex = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 colour;
uniform mat4 clip;
out vec4 paint;
void main() {
  paint = colour;
  gl_Position = clip * vec4(position, 1.0);
}
)";

constexpr const char* PlainFragment = R"(#version 330 core
in vec4 paint;
out vec4 result;
void main() {
  result = vec4(paint.rgb * paint.a, paint.a);
}
)";

/// 0, with `reason`, if the driver does not take it.
GLuint Compiled(const GlFunctions& gl, GLenum kind, const char* source, std::string& reason) {
  const GLuint shader = gl.CreateShader(kind);
  gl.ShaderSource(shader, 1, &source, nullptr);
  gl.CompileShader(shader);
  GLint good = GL_FALSE;
  gl.GetShaderiv(shader, GL_COMPILE_STATUS, &good);
  if (good == GL_TRUE) return shader;
  char text[1024] = {};
  gl.GetShaderInfoLog(shader, sizeof text, nullptr, text);
  reason = std::string("the driver does not take a shader: ") + text;
  gl.DeleteShader(shader);
  return 0;
}

}  // namespace

std::unique_ptr<ShaderProgram> ShaderProgram::Make(const GlFunctions& gl, const char* vertex, const char* fragment,
                                                   std::string& reason) {
  const GLuint first = Compiled(gl, GL_VERTEX_SHADER, vertex, reason);
  const GLuint second = first == 0 ? 0 : Compiled(gl, GL_FRAGMENT_SHADER, fragment, reason);
  std::unique_ptr<ShaderProgram> result;
  if (second != 0) {
    const GLuint program = gl.CreateProgram();
    gl.AttachShader(program, first);
    gl.AttachShader(program, second);
    gl.LinkProgram(program);
    GLint good = GL_FALSE;
    gl.GetProgramiv(program, GL_LINK_STATUS, &good);
    if (good == GL_TRUE) {
      result.reset(new ShaderProgram(gl, program));
    } else {
      char text[1024] = {};
      gl.GetProgramInfoLog(program, sizeof text, nullptr, text);
      reason = std::string("the driver does not link a shader: ") + text;
      gl.DeleteProgram(program);
    }
  }
  if (first != 0) gl.DeleteShader(first);
  if (second != 0) gl.DeleteShader(second);
  return result;
}

ShaderProgram::~ShaderProgram() {
  m_gl.DeleteProgram(m_program);
}

GLint ShaderProgram::Place(const char* name) const {
  const auto [found, isNew] = m_places.emplace(name, -1);
  if (isNew) found->second = m_gl.GetUniformLocation(m_program, name);
  return found->second;
}

std::unique_ptr<ShaderProgram> MakeMeshProgram(const GlFunctions& gl, std::string& reason) {
  auto program = ShaderProgram::Make(gl, MeshVertex, MeshFragment, reason);
  if (program == nullptr) return nullptr;
  program->Use();
  program->Set("base", int{UnitBase});
  program->Set("bump", int{UnitBump});
  program->Set("selfIllumMask", int{UnitSelfIllum});
  program->Set("skin", int{UnitSkin});
  return program;
}

std::unique_ptr<ShaderProgram> MakePlainProgram(const GlFunctions& gl, std::string& reason) {
  return ShaderProgram::Make(gl, PlainVertex, PlainFragment, reason);
}

}  // namespace tarnwick::view
