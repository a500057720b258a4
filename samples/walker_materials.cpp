// What the figure wears: small textures that are computed, with their materials.

#include <algorithm>
#include <cmath>
#include <functional>

#include "textures/vtf_format.h"
#include "textures/vtf_writer.h"
#include "walker_materials.h"

namespace tarnwick::samples {

namespace {

using textures::Bgra;

constexpr int Side = 64;

/// The colour of the pixel in that column and row.
using Pattern = std::function<Bgra(int, int)>;

Bgra Shade(const Bgra& colour, int percent) {
  const auto part = [&](uint8_t channel) { return static_cast<uint8_t>(std::min(255, channel * percent / 100)); };
  return {part(colour.B), part(colour.G), part(colour.R), 255};
}

/// Threads that cross, two pixels wide, with a lighter one now and then.
Pattern Cloth(Bgra colour) {
  return [colour](int x, int y) {
    const bool over = ((x / 2) + (y / 2)) % 2 == 0;
    return Shade(colour, (over ? 100 : 84) + (x % 16 < 2 || y % 16 < 2 ? 22 : 0));
  };
}

/// An even colour with the slightest grain.
Bgra Skin(int x, int y) {
  return Shade({118, 160, 214, 255}, 97 + (x * 7 + y * 13) % 5);
}

/// The white, with the iris and the pupil in its middle.
Bgra Eye(int x, int y) {
  const int across = 2 * x + 1 - Side, down = 2 * y + 1 - Side;
  const int distance = (across * across + down * down) * 100 / (Side * Side);
  if (distance < 4) return {20, 16, 16, 255};
  if (distance < 16) return Shade({150, 110, 60, 255}, 85 + distance * 2);
  return {238, 240, 242, 255};
}

std::string TextureOf(const Pattern& pattern) {
  textures::Picture picture{.Width = Side, .Height = Side, .Pixels = {}};
  for (int y = 0; y < Side; ++y) {
    for (int x = 0; x < Side; ++x) picture.Pixels.push_back(pattern(x, y));
  }
  std::string bytes;
  textures::WriteVtf({.Frames = {textures::MipChain(std::move(picture), textures::PictureKind::Colour)},
                      .Format = textures::PixelFormat::Bgr888},
                     [&](std::string_view piece) {
                       bytes += piece;
                       return true;
                     });
  return bytes;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> WalkerMaterials() {
  struct Row {
    const char* Name;
    Pattern Colours;  // none: the texture of the row before
  };
  const Row rows[] = {{"walker_cloth", Cloth({150, 104, 58, 255})},
                      {"walker_cloth_red", Cloth({52, 60, 176, 255})},
                      {"walker_skin", Skin},
                      {"eyeball_l", Eye},
                      {"eyeball_r", {}}};
  std::vector<std::pair<std::string, std::string>> files;
  const std::string folder = "materials/models/walker/";
  std::string texture;
  for (const Row& row : rows) {
    if (row.Colours) {
      texture = row.Name;
      files.emplace_back(folder + texture + ".vtf", TextureOf(row.Colours));
    }
    files.emplace_back(folder + row.Name + ".vmt",
                       "\"VertexLitGeneric\"\n{\n\t\"$basetexture\" \"models/walker/" + texture + "\"\n}\n");
  }
  return files;
}

}  // namespace tarnwick::samples
