#include "support/real_files.h"

#include <cstdlib>

namespace tarnwick::tests {

std::string RealFilesFolder() {
  const char* folder = std::getenv("TARNWICK_SHARED");
  return folder != nullptr ? folder : TARNWICK_SHARED;
}

}  // namespace tarnwick::tests
