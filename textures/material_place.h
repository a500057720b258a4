#pragma once

#include <optional>
#include <string>

namespace tarnwick::textures {

/// Where the texture and the material of a TGA file go.
struct MaterialPlace {
  std::string Folder;  // where they are written, with a separator at its end
  std::string Stem;    // their file name without the extension
  std::string Name;    // what a material calls the texture: the path below "materials", slashes between its parts
};

/// Derives the place from the path of a TGA file:
///
///     <game>/materialsrc/models/props/brick.tga
///     -> <game>/materials/models/props/, "brick", "models/props/brick"
///
/// The last folder of that name counts, in any case. A relative path starts in the current folder. `outputFolder`, if
/// not empty, is taken for the folder instead, and the name is then the path below its last "materials", or just the
/// stem. Nothing, with the `reason`, if the path has no such folder and no output folder is given.
std::optional<MaterialPlace> PlaceOfMaterial(const std::string& tgaPath, const std::string& outputFolder,
                                             std::string& reason);

}  // namespace tarnwick::textures
