#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwick::samples {

/// The materials (.vmt) and textures (.vtf) of the figure: paths below the folder of the model, and their bytes.
std::vector<std::pair<std::string, std::string>> WalkerMaterials();

}  // namespace tarnwick::samples
