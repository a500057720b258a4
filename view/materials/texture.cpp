#include "view/materials/texture.h"

#include <algorithm>
#include <span>
#include <utility>

#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"

namespace tarnwick::view {

namespace {

constexpr int PatternSide = 64;
constexpr int PatternSquare = 8;
constexpr textures::Bgra Magenta{255, 0, 255, 255};
constexpr textures::Bgra Black{0, 0, 0, 255};

/// Adds levels down to 1 by 1 to `pictures`.
void CompleteLevels(std::vector<textures::Picture>& pictures, textures::PictureKind kind) {
  while (pictures.back().Width > 1 || pictures.back().Height > 1) {
    pictures.push_back(textures::Halve(pictures.back(), kind, true, true));
  }
}

/// Gives the texture bytes of its own for a level.
void AddLevel(textures::PixelFormat format, int width, int height, std::span<const std::byte> bytes, Texture& texture) {
  const auto& made = texture.Made.emplace_back(bytes.begin(), bytes.end());
  texture.Levels.push_back({format, width, height, made});
}

void AddPictures(const std::vector<textures::Picture>& pictures, Texture& texture) {
  for (const textures::Picture& picture : pictures) {
    AddLevel(textures::PixelFormat::Bgra8888, picture.Width, picture.Height, std::as_bytes(std::span(picture.Pixels)),
             texture);
  }
}

/// Whether levels of that format are handed to drivers as they are.
bool IsDrawnAsStored(textures::PixelFormat format) {
  return format == textures::PixelFormat::Bgra8888 || textures::FindPixelFormat(format)->Blocks;
}

bool IsAbove(int width, int height, int side) {
  return side > 0 && std::max(width, height) > side;
}

}  // namespace

size_t Texture::Bytes() const {
  size_t bytes = Kept ? Kept->Bytes().size() : 0;
  for (const std::vector<std::byte>& level : Made) bytes += level.size();
  return bytes;
}

textures::Picture DecodedLevel(const textures::StoredImage& level) {
  textures::Picture picture{level.Width, level.Height, {}};
  picture.Pixels.resize(static_cast<size_t>(picture.Width) * static_cast<size_t>(picture.Height));
  textures::DecodeRows(level, 0, picture.Height, textures::PixelLayout::Bgra32,
                       reinterpret_cast<uint8_t*>(picture.Pixels.data()), ptrdiff_t{picture.Width} * 4);
  return picture;
}

std::optional<Texture> ReadTexture(core::FileImage file, int largestSide, std::string& reason) {
  const auto vtf = textures::VtfFile::Open(file.View(), reason);
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
  std::vector<textures::StoredImage> stored;
  size_t bytes = 0;
  for (int mip = 0; mip < info.MipLevels; ++mip) {
    const int width = textures::MipSize(info.Width, mip), height = textures::MipSize(info.Height, mip);
    if (mip + 1 < info.MipLevels && IsAbove(width, height, largestSide)) continue;
    stored.push_back({info.Format, width, height, vtf->Image({.Mip = mip})});
    bytes += stored.back().Pixels.size();
    if (width == 1 && height == 1) break;
  }
  const textures::StoredImage first = stored.front(), last = stored.back();
  if (IsAbove(first.Width, first.Height, textures::LargestSide)) {
    reason = "it is larger than " + std::to_string(textures::LargestSide) + " pixels";
    return std::nullopt;
  }
  Texture texture;
  texture.ClampS = (info.Flags & textures::VtfClampS) != 0;
  texture.ClampT = (info.Flags & textures::VtfClampT) != 0;
  texture.PointSample = (info.Flags & textures::VtfPointSample) != 0;
  texture.Path = file.Path();
  const bool isWhole = last.Width == 1 && last.Height == 1;
  if (!isWhole || !IsDrawnAsStored(info.Format)) {
    const auto kind =
        (info.Flags & textures::VtfNormalMap) != 0 ? textures::PictureKind::NormalMap : textures::PictureKind::Colour;
    std::vector<textures::Picture> pictures;
    pictures.reserve(stored.size());
    for (const textures::StoredImage& level : stored) pictures.push_back(DecodedLevel(level));
    while (IsAbove(pictures.front().Width, pictures.front().Height, largestSide)) {  // then it is the only one
      pictures.front() = textures::Halve(pictures.front(), kind, true, true);
    }
    CompleteLevels(pictures, kind);
    AddPictures(pictures, texture);
  } else if (bytes < file.Bytes().size() / 2) {
    // Of frames and levels that are never drawn nothing is kept.
    for (const textures::StoredImage& level : stored) {
      AddLevel(level.Format, level.Width, level.Height, level.Pixels, texture);
    }
  } else {
    texture.Levels = std::move(stored);
    texture.Kept = std::move(file);
  }
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
    std::vector<textures::Picture> pictures{std::move(picture)};
    CompleteLevels(pictures, textures::PictureKind::Colour);
    auto texture = std::make_shared<Texture>();
    AddPictures(pictures, *texture);
    return texture;
  }();
  return pattern;
}

SharedTexture PlainTexture(textures::Bgra colour) {
  auto texture = std::make_shared<Texture>();
  AddPictures({{1, 1, {colour}}}, *texture);
  return texture;
}

}  // namespace tarnwick::view
