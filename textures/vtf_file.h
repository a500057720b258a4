#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/image_view.h"
#include "textures/vtf_format.h"

namespace tarnwick::textures {

/// What the header of a texture tells, the numbers already checked against the size of the file.
struct VtfInfo {
  int MajorVersion = 0;
  int MinorVersion = 0;
  int Width = 0;  // of the largest image, in pixels
  int Height = 0;
  int Depth = 1;  // slices of the largest image
  uint32_t Flags = 0;
  int Frames = 0;
  int FirstFrame = 0;
  int Faces = 1;  // 6 or 7 in an environment map
  int MipLevels = 0;
  PixelFormat Format = PixelFormat::None;
  std::array<float, 3> Reflectivity{};
  float BumpScale = 0;
  PixelFormat LowFormat = PixelFormat::None;  // None: there is no low resolution image
  int LowWidth = 0;
  int LowHeight = 0;
};

/// Width, height or depth of mip level `level`, where `size` is that of the largest (level 0).
constexpr int MipSize(int size, int level) {
  const int shifted = level < 31 ? size >> level : 0;
  return shifted > 0 ? shifted : 1;
}

/// Mip levels of a full chain, from width, height and depth down to 1.
int FullMipLevels(int width, int height, int depth);

/// Which image of a texture: mip level 0 is the largest.
struct VtfImagePlace {
  int Mip = 0;
  int Frame = 0;
  int Face = 0;
  int Slice = 0;
};

/// A texture file of version 7.0 to 7.5. It owns nothing: the bytes that it was opened over must outlive it.
class VtfFile {
 public:
  /// Checks the header, the resource table and that every image lies inside `file`. Nothing if something is wrong,
  /// or the format cannot be decoded; then `reason` tells what, such as "the image (87,040 bytes at byte 208) runs past
  /// the end of the file (4,096 bytes)". Allocates nothing that grows with the numbers in the header.
  static std::optional<VtfFile> Open(core::ImageView file, std::string& reason);

  const VtfInfo& Info() const { return m_info; }

  /// The stored pixels of one image. `place` must lie inside the numbers of Info.
  std::span<const std::byte> Image(const VtfImagePlace& place) const;

  /// The stored pixels of the low resolution image; empty if there is none.
  std::span<const std::byte> LowImage() const { return m_lowImage; }

 private:
  VtfFile() = default;

  VtfInfo m_info;
  const PixelFormatFacts* m_facts = nullptr;
  std::span<const std::byte> m_images;
  std::span<const std::byte> m_lowImage;
};

}  // namespace tarnwick::textures
