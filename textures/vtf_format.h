#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick::textures {

/// How the pixels of a texture are stored; the numbers stand in the file. A name tells the order of the bytes in the
/// file; in the packed 16-bit formats the first channel lies in the lowest bits.
enum class PixelFormat : int32_t {
  None = -1,
  Rgba8888 = 0,
  Abgr8888 = 1,
  Rgb888 = 2,
  Bgr888 = 3,
  Rgb565 = 4,
  I8 = 5,
  Ia88 = 6,
  P8 = 7,
  A8 = 8,
  Rgb888BlueScreen = 9,
  Bgr888BlueScreen = 10,
  Argb8888 = 11,
  Bgra8888 = 12,
  Dxt1 = 13,
  Dxt3 = 14,
  Dxt5 = 15,
  Bgrx8888 = 16,
  Bgr565 = 17,
  Bgrx5551 = 18,
  Bgra4444 = 19,
  Dxt1OneBitAlpha = 20,
  Bgra5551 = 21,
  Uv88 = 22,
  Uvwq8888 = 23,
  Rgba16161616F = 24,
  Rgba16161616 = 25,
  Uvlx8888 = 26,
};

/// What is known of one format.
struct PixelFormatFacts {
  PixelFormat Format;
  std::string_view Name;
  int BytesPerUnit;  // of a pixel, or of a block of 4 by 4 pixels; 0 where the format cannot be decoded
  bool Blocks;       // stored in blocks of 4 by 4 pixels, partial ones whole
  bool HoldsAlpha;   // each pixel has an alpha value of its own (of DXT1 the blocks themselves have to be asked)
};

/// The facts of `format`; null for a number that names no format.
const PixelFormatFacts* FindPixelFormat(PixelFormat format);

/// The name of `format`, such as "DXT5"; "none" for -1 and "format 99" for a number that names no format.
std::string PixelFormatName(PixelFormat format);

/// Bytes that an image of `width` by `height` pixels takes in a format that can be decoded.
int64_t ImageBytes(const PixelFormatFacts& facts, int width, int height);

/// Bits of a texture's flags.
enum VtfFlag : uint32_t {
  VtfPointSample = 0x1,
  VtfTrilinear = 0x2,
  VtfClampS = 0x4,
  VtfClampT = 0x8,
  VtfAnisotropic = 0x10,
  VtfNormalMap = 0x80,
  VtfNoMips = 0x100,
  VtfNoLod = 0x200,
  VtfOneBitAlpha = 0x1000,
  VtfEightBitAlpha = 0x2000,
  VtfEnvironmentMap = 0x4000,
};

/// A flag and the word for it in reports; in the order of the bits.
struct VtfFlagName {
  VtfFlag Flag;
  std::string_view Name;
};
std::span<const VtfFlagName> VtfFlagNames();

#pragma pack(push, 1)
/// The start of a texture file, little-endian. Versions 7.0 and 7.1 end it after 64 bytes, 7.2 after 80; from 7.3 on
/// `ResourceCount` entries follow at byte 80.
struct VtfHeader {
  char Signature[4];  // "VTF" and NUL
  int32_t MajorVersion;
  int32_t MinorVersion;
  int32_t HeaderSize;
  uint16_t Width;  // of the largest image
  uint16_t Height;
  uint32_t Flags;
  uint16_t Frames;
  uint16_t FirstFrame;  // 0xFFFF in an environment map without a sphere map
  uint8_t Unused28[4];
  float Reflectivity[3];  // mean colour, linear light, red first
  uint8_t Unused44[4];
  float BumpScale;
  int32_t Format;
  uint8_t MipLevels;  // the largest included
  int32_t LowFormat;  // of the low resolution image; -1 for none
  uint8_t LowWidth;
  uint8_t LowHeight;
  uint16_t Depth;  // 7.2 on; in older files only its first byte lies inside the header
  uint8_t Unused65[3];
  int32_t ResourceCount;  // 7.3 on
  uint8_t Unused72[8];
};

/// An entry of the resource table.
struct VtfResource {
  uint8_t Tag[3];
  uint8_t Flags;
  uint32_t Offset;  // from the start of the file
};
#pragma pack(pop)

static_assert(sizeof(VtfHeader) == 80 && offsetof(VtfHeader, Reflectivity) == 32 && offsetof(VtfHeader, Format) == 52 &&
              offsetof(VtfHeader, LowFormat) == 57 && offsetof(VtfHeader, Depth) == 63 &&
              offsetof(VtfHeader, ResourceCount) == 68);
static_assert(sizeof(VtfResource) == 8);

inline constexpr int32_t VtfHeaderSize70 = 64;  // of versions 7.0 and 7.1
inline constexpr int32_t VtfHeaderSize72 = 80;
inline constexpr uint8_t VtfLowImageTag = 0x01;  // first byte of the tag; the others are 0
inline constexpr uint8_t VtfImageTag = 0x30;
inline constexpr uint16_t VtfNoSphereMap = 0xFFFF;

}  // namespace tarnwick::textures
