#include "project/qc_names.h"

#include <algorithm>

#include "core/paths.h"

namespace tarnwick::project {

std::string SlashedPath(std::string_view path) {
  std::string slashed(path);
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  return slashed;
}

bool HasStem(std::string_view referenceSmd) {
  return core::LastComponent(referenceSmd).find('.') != std::string_view::npos;
}

std::string QcPathOf(std::string_view referenceSmd) {
  std::string path = SlashedPath(referenceSmd);
  path.resize(path.rfind('.') + 1);
  return path + "qc";
}

std::string ReferenceName(std::string_view referenceSmd) {
  std::string path = SlashedPath(referenceSmd);
  const size_t slash = path.rfind('/');
  return slash == std::string::npos || slash == 0 ? path : path.substr(slash + 1);
}

bool IsCollisionScript(std::string_view collisionName) {
  const size_t stop = collisionName.rfind('.');
  if (stop == std::string_view::npos || stop == 0) return false;
  const std::string_view extension = collisionName.substr(stop + 1);
  return extension == "qc" || extension == "qci";
}

}  // namespace tarnwick::project
