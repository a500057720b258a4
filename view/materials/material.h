#pragma once

#include <array>
#include <string>
#include <vector>

#include "view/materials/texture.h"

namespace tarnwick::view {

/// A material as it is drawn.
struct Material {
  std::string Name = {};    // as the model names it
  std::string Path = {};    // of its .vmt file, for people; "" if there is none
  std::string Shader = {};  // as the file names it: "VertexLitGeneric"
  /// Whether the pattern stands for it: the file, or the texture that gives its colours, is missing or cannot be read.
  bool Missing = false;

  SharedTexture Base = {};  // null only in what WithoutTextures gave
  SharedTexture Bump = {};  // a normal map; null for none

  bool Translucent = false;
  bool AlphaTest = false;
  bool Additive = false;
  bool NoCull = false;
  bool SelfIllum = false;  // as far as the base texture's alpha tells, or the mask's
  bool Unlit = false;
  bool Phong = false;
  bool NoDraw = false;  // a tool material that a game never shows

  SharedTexture SelfIllumMask = {};      // null: the base texture's alpha
  float AlphaTestReference = 0.5f;       // what lies below is not drawn
  float Alpha = 1;                       // of all pixels
  std::array<float, 3> Colour{1, 1, 1};  // $color times $color2
  bool ColourByBaseAlpha = false;        // only as far as the base texture's alpha tells
  std::array<float, 3> SelfIllumTint{1, 1, 1};
  float PhongExponent = 20;
  float PhongBoost = 1;
  std::array<float, 3> PhongTint{1, 1, 1};
  bool PhongMaskInBase = false;  // the base texture's alpha masks the highlight, else the normal map's

  /// Whether it is blended with what lies behind it, and so has to be drawn after that.
  bool Blended() const { return Translucent || Additive || Alpha < 1; }
};

/// Something that was looked for and is not there, or cannot be used.
struct MissingFile {
  std::string Name;                // as a model or a material names it: "models/props/crate"
  std::string NeededBy;            // the material's name; "" for a material itself
  std::string Reason;              // one sentence: "it was not found", or what is wrong with the file
  std::vector<std::string> Tried;  // the paths, in order
};

/// The materials of a model, in the order of its list of names.
struct MaterialSet {
  std::vector<Material> Materials;
  std::vector<MissingFile> Missing;

  /// The memory of all textures, each counted once.
  size_t TextureBytes() const;
  /// The same without the textures, for whoever reads only what the materials say.
  MaterialSet WithoutTextures() const;
};

}  // namespace tarnwick::view
