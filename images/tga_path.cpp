#include "images/tga_path.h"

#include <algorithm>

#include "core/paths.h"

namespace tarnwick::images {

namespace fs = std::filesystem;

std::string_view ImageFileName(std::string_view path) {
  const size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos || separator == 0 ? path : path.substr(separator + 1);
}

std::string TgaPath(std::string_view source, std::string_view directory) {
  const std::string name = core::LowerAscii(ImageFileName(source));
  const std::string stem = name.substr(0, name.rfind('.'));
  return std::string(directory) + "/" + stem + ".tga";
}

std::string SourceText(std::string_view path) {
#ifdef _WIN32
  std::string text = core::LowerAscii(path);
#else
  std::string text(path);
#endif
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

bool IsSameFile(const std::string& a, const std::string& b) {
  if (core::EqualIgnoringCase(SourceText(a), SourceText(b))) return true;
  std::error_code error;
  return fs::equivalent(core::NativePath(a), core::NativePath(b), error) && !error;
}

}  // namespace tarnwick::images
