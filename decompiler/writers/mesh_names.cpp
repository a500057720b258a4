#include "decompiler/writers/mesh_names.h"

#include <algorithm>

namespace tarnwick::decompiler {

std::string MeshBaseName(std::string_view modelName) {
  std::string name(modelName.empty() ? "UnknownModelName" : modelName);
  if (!name.ends_with(".smd")) name += ".smd";
  std::replace(name.begin(), name.end(), '\\', '/');
  return name;
}

std::string_view FileStem(std::string_view name) {
  return name.substr(0, name.find_last_of('.'));
}

std::string LodName(int lod, std::string_view name) {
  return "lod" + std::to_string(lod) + "_" + std::string(name);
}

}  // namespace tarnwick::decompiler
