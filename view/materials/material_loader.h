#pragma once

#include <string>
#include <vector>

#include "view/materials/material.h"
#include "view/materials/material_files.h"
#include "view/materials/texture_cache.h"

namespace tarnwick::view {

/// Loads the materials that a model names. `names` are those of its textures, without an ending (that of an image is
/// taken off), `directories` the folders that it looks in, in order; a name is also tried as it stands. What is missing
/// or cannot be read stands in the result's list and is drawn as a pattern; nothing fails.
///
///     archives::ContentFiles content(gameDirectory, sink);
///     TextureCache cache;
///     const MaterialSet set = LoadMaterials(names, directories, {content, modelPath}, cache);
MaterialSet LoadMaterials(const std::vector<std::string>& names, const std::vector<std::string>& directories,
                          const MaterialFiles& files, TextureCache& cache);

}  // namespace tarnwick::view
