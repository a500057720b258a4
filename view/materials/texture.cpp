#include "view/materials/texture.h"

#include <algorithm>
#include <utility>

#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"

namespace tarnwick::view {

namespace {

constexpr int PatternSide = 64;
constexpr int PatternSquare = 8;
constexpr textures::Bgra Magenta{255, 0, 255, 255};
constexpr textures::Bgra Black{0, 0, 0, 255};

textures::Picture Decode(const textures::VtfFile& vtf, int mip) {
  const textures::VtfInfo& info = vtf.Info();
  textures::Picture picture{textures::MipSize(info.Width, mip), textures::MipSize(info.Height, mip), {}};
  picture.Pixels.resize(static_cast<size_t>(picture.Width) * static_cast<size_t>(picture.Height));
  const textures::StoredImage image{info.Format, picture.Width, picture.Height, vtf.Image({.Mip = mip})};
  textures::DecodeRows(image, 0, picture.Height, textures::PixelLayout::Bgra32,
                       reinterpret_cast<uint8_t*>(picture.Pixels.data()), ptrdiff_t{picture.Width} * 4);
  return picture;
}

/// Adds levels down to 1 by 1.
void CompleteLevels(std::vector<textures::Picture>& levels, textures::PictureKind kind) {
  while (levels.back().Width > 1 || levels.back().Height > 1) {
    levels.push_back(textures::Halve(levels.back(), kind, true, true));
  }
}

bool IsAbove(int width, int height, int side) {
  return side > 0 && std::max(width, height) > side;
}

}  // namespace

size_t Texture::Bytes() const {
  size_t bytes = 0;
  for (const textures::Picture& level : Levels) bytes += level.Pixels.size() * sizeof(textures::Bgra);
  return bytes;
}

std::optional<Texture> DecodeTexture(core::ImageView file, int largestSide, std::string& reason) {
  const auto vtf = textures::VtfFile::Open(file, reason);
  if (!vtf) return std::nullopt;
  const textures::VtfInfo& info = vtf->Info();
  if (info.Frames < 1 || info.MipLevels < 1) {
    reason = "it holds no image";
    return std::nullopt;
  }
  if (info.Faces > 1) {
    reason = "it is an environment map, which covers no surface";
    return std::nullopt;
  }
  int first = 0;
  while (first + 1 < info.MipLevels &&
         IsAbove(textures::MipSize(info.Width, first), textures::MipSize(info.Height, first), largestSide)) {
    ++first;
  }
  if (IsAbove(textures::MipSize(info.Width, first), textures::MipSize(info.Height, first), textures::LargestSide)) {
    reason = "it is larger than " + std::to_string(textures::LargestSide) + " pixels";
    return std::nullopt;
  }
  const auto kind =
      (info.Flags & textures::VtfNormalMap) != 0 ? textures::PictureKind::NormalMap : textures::PictureKind::Colour;
  Texture texture;
  texture.Levels.push_back(Decode(*vtf, first));
  while (IsAbove(texture.Levels.back().Width, texture.Levels.back().Height, largestSide)) {
    texture.Levels.back() = textures::Halve(texture.Levels.back(), kind, true, true);
  }
  for (int mip = first + 1; mip < info.MipLevels; ++mip) {
    const textures::Picture& last = texture.Levels.back();
    if (last.Width == 1 && last.Height == 1) break;
    texture.Levels.push_back(Decode(*vtf, mip));
  }
  CompleteLevels(texture.Levels, kind);
  texture.ClampS = (info.Flags & textures::VtfClampS) != 0;
  texture.ClampT = (info.Flags & textures::VtfClampT) != 0;
  texture.PointSample = (info.Flags & textures::VtfPointSample) != 0;
  texture.UsesAlpha = textures::UsesAlpha(texture.Levels.front());
  return texture;
}

SharedTexture MissingPattern() {
  static const SharedTexture pattern = [] {
    textures::Picture picture{PatternSide, PatternSide, {}};
    picture.Pixels.reserve(size_t{PatternSide} * PatternSide);
    for (int y = 0; y < PatternSide; ++y) {
      for (int x = 0; x < PatternSide; ++x) {
        picture.Pixels.push_back((x / PatternSquare + y / PatternSquare) % 2 == 0 ? Magenta : Black);
      }
    }
    auto texture = std::make_shared<Texture>();
    texture->Levels.push_back(std::move(picture));
    CompleteLevels(texture->Levels, textures::PictureKind::Colour);
    return texture;
  }();
  return pattern;
}

SharedTexture PlainTexture(textures::Bgra colour) {
  auto texture = std::make_shared<Texture>();
  texture->Levels.push_back({1, 1, {colour}});
  texture->UsesAlpha = colour.A != 255;
  return texture;
}

}  // namespace tarnwick::view
