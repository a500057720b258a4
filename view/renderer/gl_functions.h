#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick::view {

/// The functions of OpenGL that the renderer calls (`renderer/gl_table.h`, which alone needs the headers of OpenGL).
struct GlFunctions;

/// Gives the address of the function of that name ("glDrawElements") in the current context; null if it has none.
using GlLoader = std::function<void*(const char* name)>;

/// Looks all functions up in the current context. Null, with `reason`, if one is not there or the context is older than
/// OpenGL 3.3.
std::shared_ptr<const GlFunctions> LoadGlFunctions(const GlLoader& loader, std::string& reason);

/// Whether a driver of that name (as OpenGL calls its renderer) draws without a graphics processor.
bool IsSoftwareDriver(std::string_view name);

}  // namespace tarnwick::view
