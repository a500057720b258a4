#include "view/renderer/gl_functions.h"

#include <algorithm>
#include <iterator>

#include "view/renderer/gl_table.h"

namespace tarnwick::view {

std::shared_ptr<const GlFunctions> LoadGlFunctions(const GlLoader& loader, std::string& reason) {
  auto gl = std::make_shared<GlFunctions>();
  const char* missing = nullptr;
#define TARNWICK_GL_LOOK_UP(name, type)                               \
  gl->name = reinterpret_cast<PFNGL##type##PROC>(loader("gl" #name)); \
  if (gl->name == nullptr && missing == nullptr) missing = "gl" #name;
  TARNWICK_GL_FUNCTIONS(TARNWICK_GL_LOOK_UP)
#undef TARNWICK_GL_LOOK_UP
  if (missing != nullptr) {
    reason = std::string("OpenGL has no function ") + missing;
    return nullptr;
  }
  GLint major = 0, minor = 0;
  gl->GetIntegerv(GL_MAJOR_VERSION, &major);
  gl->GetIntegerv(GL_MINOR_VERSION, &minor);
  if (major * 10 + minor < 33) {
    const GLubyte* version = gl->GetString(GL_VERSION);
    reason = "OpenGL 3.3 is needed, and the driver has ";
    reason += version == nullptr ? "none" : reinterpret_cast<const char*>(version);
    return nullptr;
  }
  return gl;
}

bool IsSoftwareDriver(std::string_view name) {
  constexpr std::string_view Known[] = {"llvmpipe", "softpipe", "swrast", "SwiftShader", "GDI Generic"};
  return std::any_of(std::begin(Known), std::end(Known),
                     [&](std::string_view known) { return name.find(known) != std::string_view::npos; });
}

}  // namespace tarnwick::view
