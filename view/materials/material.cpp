#include "view/materials/material.h"

#include <set>

namespace tarnwick::view {

size_t MaterialSet::TextureBytes() const {
  std::set<const Texture*> known;
  size_t bytes = 0;
  for (const Material& material : Materials) {
    for (const SharedTexture& texture : {material.Base, material.Bump, material.SelfIllumMask}) {
      if (texture != nullptr && known.insert(texture.get()).second) bytes += texture->Bytes();
    }
  }
  return bytes;
}

MaterialSet MaterialSet::WithoutTextures() const {
  MaterialSet result = *this;
  for (Material& material : result.Materials) material.Base = material.Bump = material.SelfIllumMask = nullptr;
  return result;
}

}  // namespace tarnwick::view
