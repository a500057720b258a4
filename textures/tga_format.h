#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick::textures {

#pragma pack(push, 1)
/// The start of a TGA file, little-endian. An identification of IdLength bytes follows, then the colour map, then the
/// pixels.
struct TgaHeader {
  uint8_t IdLength;
  uint8_t HasColourMap;  // 0 or 1
  uint8_t ImageType;     // TgaType; +8 where the pixels are run-length encoded
  uint16_t ColourMapFirst;
  uint16_t ColourMapLength;  // entries
  uint8_t ColourMapBits;     // of an entry
  uint16_t XOrigin;
  uint16_t YOrigin;
  uint16_t Width;
  uint16_t Height;
  uint8_t PixelBits;
  uint8_t Descriptor;  // TgaDescriptor
};
#pragma pack(pop)
static_assert(sizeof(TgaHeader) == 18 && offsetof(TgaHeader, Width) == 12);

enum TgaType : uint8_t { TgaColourMapped = 1, TgaTrueColour = 2, TgaGrey = 3, TgaRunLength = 8 };

enum TgaDescriptor : uint8_t {
  TgaAlphaBits = 0x0F,    // how many bits of a pixel are alpha
  TgaRightToLeft = 0x10,  // the first pixel of a row is the rightmost
  TgaTopToBottom = 0x20,  // the first row is the topmost; otherwise the lowest
  TgaInterleaved = 0xC0,
};

}  // namespace tarnwick::textures
