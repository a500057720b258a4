#include "core/same_folder.h"

#include <filesystem>

#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::core {

namespace fs = std::filesystem;

bool IsSameFolder(const std::string& a, const std::string& b) {
  std::error_code error;
#ifdef _WIN32  // where the library compares files alone
  const fs::path first = RealPath(NativePath(a), error);
  if (error) return false;
  const fs::path second = RealPath(NativePath(b), error);
  return !error && EqualIgnoringCase(PathText(first), PathText(second));
#else
  return fs::equivalent(NativePath(a), NativePath(b), error) && !error;
#endif
}

}  // namespace tarnwick::core
