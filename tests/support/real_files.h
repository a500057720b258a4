#pragma once

#include <string>

namespace tarnwick::tests {

/// The folder with real models (models/) and textures (textures/) that may lie beside the checkout: what the
/// environment variable TARNWICK_SHARED names, or else the CMake variable of that name. It may not exist; a test that
/// needs it is then skipped.
std::string RealFilesFolder();

}  // namespace tarnwick::tests
