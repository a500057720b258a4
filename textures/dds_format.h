#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick::textures {

/// How the pixels of a DDS file are stored: by a code of four letters, or by the bits of a pixel that hold each
/// channel.
struct DdsPixelFormat {
  uint32_t Size;  // 32
  uint32_t Flags;
  char Code[4];  // "DXT1", "DXT3", "DXT5", "DX10"
  uint32_t Bits;
  uint32_t RedMask;
  uint32_t GreenMask;
  uint32_t BlueMask;
  uint32_t AlphaMask;
};

/// The start of a DDS file, little-endian.
struct DdsHeader {
  char Signature[4];  // "DDS "
  uint32_t Size;      // 124
  uint32_t Flags;
  uint32_t Height;
  uint32_t Width;
  uint32_t PitchOrSize;  // bytes of a row; of blocks: of the largest level
  uint32_t Depth;
  uint32_t MipLevels;  // 0 counts as 1
  uint8_t Reserved[44];
  DdsPixelFormat Format;
  uint32_t Caps;
  uint32_t Caps2;
  uint8_t Reserved2[12];
};

/// Follows the header where the code is "DX10".
struct DdsHeader10 {
  uint32_t Format;
  uint32_t Dimension;
  uint32_t Flags;
  uint32_t ArraySize;
  uint32_t Flags2;
};

static_assert(sizeof(DdsHeader) == 128 && offsetof(DdsHeader, Format) == 76 && offsetof(DdsHeader, Caps) == 108);
static_assert(sizeof(DdsHeader10) == 20);

/// Bits of DdsPixelFormat::Flags.
enum DdsPixelFlag : uint32_t {
  DdsAlphaPixels = 0x1,
  DdsAlphaOnly = 0x2,
  DdsCode = 0x4,
  DdsColours = 0x40,
  DdsLuminance = 0x20000,
};

/// Bits of DdsHeader::Flags.
enum DdsFlag : uint32_t {
  DdsHasSizeAndFormat = 0x1 | 0x2 | 0x4 | 0x1000,
  DdsHasPitch = 0x8,
  DdsHasMipLevels = 0x20000,
  DdsHasLinearSize = 0x80000,
};

/// Bits of DdsHeader::Caps.
enum DdsCap : uint32_t {
  DdsComplex = 0x8,
  DdsTexture = 0x1000,
  DdsMipMap = 0x400000,
};

}  // namespace tarnwick::textures
