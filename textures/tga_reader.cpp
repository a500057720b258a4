#include "textures/tga_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "textures/tga_format.h"

namespace tarnwick::textures {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr int64_t LongestRun = 128;

Bgra From555(const uint8_t* at, bool hasAlpha) {
  const unsigned value = static_cast<unsigned>(at[0] | at[1] << 8);
  const auto stretch = [](unsigned channel) { return static_cast<uint8_t>((channel & 31) * 33 >> 2); };
  const uint8_t alpha = hasAlpha && (value & 0x8000) == 0 ? 0 : 255;
  return {stretch(value), stretch(value >> 5), stretch(value >> 10), alpha};
}

/// A pixel or a colour map's entry of `bits` bits.
Bgra Colour(const uint8_t* at, int bits, bool hasAlpha) {
  if (bits == 24) return {at[0], at[1], at[2], 255};
  if (bits == 32) return {at[0], at[1], at[2], at[3]};
  return From555(at, hasAlpha);
}

bool IsColourBits(int bits) {
  return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

/// Reads `count` pixels of `Size` bytes each, each turned into a colour by `convert`, into `pixels`, which is empty.
/// Says how many there are, which is fewer where the bytes end early.
template <int Size, typename Convert>
void ReadPixels(Bytes bytes, bool runLength, size_t count, std::vector<Bgra>& pixels, Convert convert) {
  const uint8_t* at = bytes.data();
  const uint8_t* const end = at + bytes.size();
  const auto left = [&] { return static_cast<size_t>(end - at) / Size; };
  if (!runLength) {
    if (left() < count) return;
    pixels.resize(count);
    for (size_t i = 0; i < count; ++i, at += Size) pixels[i] = convert(at);
    return;
  }
  pixels.reserve(count);
  while (pixels.size() < count && at < end) {
    const uint8_t packet = *at++;
    const size_t wanted = std::min<size_t>((packet & 127u) + 1, count - pixels.size());
    const bool run = (packet & 128) != 0;
    if (left() < (run ? 1 : wanted)) return;
    if (run) {
      pixels.insert(pixels.end(), wanted, convert(at));
      at += Size;
    } else {
      for (size_t i = 0; i < wanted; ++i, at += Size) pixels.push_back(convert(at));
    }
  }
}

/// What is wrong with the header by itself; empty if nothing is.
std::string Fault(const TgaHeader& header) {
  const int type = header.ImageType & ~TgaRunLength;
  const int bits = header.PixelBits;
  const auto text = [](int number) { return std::to_string(number); };
  if (header.ImageType == 0) return "the file holds no image";
  if (type != TgaColourMapped && type != TgaTrueColour && type != TgaGrey) {
    return "the file is no TGA image, or of an unknown type (number " + text(header.ImageType) + ")";
  }
  if (header.HasColourMap > 1) return "the file is no TGA image: its colour map flag is " + text(header.HasColourMap);
  const bool fits = type == TgaTrueColour ? IsColourBits(bits) : bits == 8 || bits == 16;
  if (!fits) return text(bits) + " bits a pixel do not go with image type " + text(header.ImageType);
  if (type == TgaColourMapped && header.HasColourMap == 0) return "the colours are mapped, but there is no colour map";
  if (header.HasColourMap == 1 && type == TgaColourMapped && !IsColourBits(header.ColourMapBits)) {
    return "the colour map has entries of " + text(header.ColourMapBits) + " bits";
  }
  if ((header.Descriptor & TgaInterleaved) != 0) return "the rows are interleaved, which is not supported";
  const std::string size = text(header.Width) + " x " + text(header.Height);
  if (header.Width == 0 || header.Height == 0) return "the image has no pixels (" + size + ")";
  if (header.Width > LargestSide || header.Height > LargestSide) {
    return "the image is too large (" + size + "; at most " + text(LargestSide) + " a side)";
  }
  return {};
}

/// Puts the first pixel of `picture` into the upper left corner, from where the header says that it is.
void Turn(Picture& picture, uint8_t descriptor) {
  const auto rowAt = [&](int y) { return picture.Pixels.begin() + int64_t{y} * picture.Width; };
  if ((descriptor & TgaTopToBottom) == 0) {
    for (int y = 0; y < picture.Height / 2; ++y) {
      std::swap_ranges(rowAt(y), rowAt(y + 1), rowAt(picture.Height - 1 - y));
    }
  }
  if ((descriptor & TgaRightToLeft) != 0) {
    for (int y = 0; y < picture.Height; ++y) std::reverse(rowAt(y), rowAt(y + 1));
  }
}

struct ColourMap {
  int First = 0;
  std::vector<Bgra> Colours;
};

}  // namespace

std::optional<Picture> ReadTga(core::ImageView file, std::string& reason) {
  const auto refuse = [&](std::string why) {
    reason = std::move(why);
    return std::nullopt;
  };
  const auto header = file.At<TgaHeader>(0);
  if (!header) return refuse("the file is too short for a TGA image (" + std::to_string(file.Size()) + " bytes)");
  if (std::string fault = Fault(**header); !fault.empty()) return refuse(fault);
  const TgaHeader& tga = **header;
  const int type = tga.ImageType & ~TgaRunLength;
  const bool runLength = (tga.ImageType & TgaRunLength) != 0;
  const bool alphaBits = (tga.Descriptor & TgaAlphaBits) != 0;

  // A colour map that a true colour image brings along is passed over.
  const int entryBytes = (tga.ColourMapBits + 7) / 8;
  const int64_t mapOffset = int64_t{sizeof(TgaHeader)} + tga.IdLength;
  const int64_t mapBytes = tga.HasColourMap == 1 ? int64_t{tga.ColourMapLength} * entryBytes : 0;
  const auto mapData = file.Bytes(mapOffset, mapBytes);
  if (!mapData) return refuse("the file ends inside its colour map");
  ColourMap map{tga.ColourMapFirst, {}};
  if (type == TgaColourMapped) {
    const uint8_t* at = reinterpret_cast<const uint8_t*>(mapData->data());
    for (int i = 0; i < tga.ColourMapLength; ++i, at += entryBytes) {
      map.Colours.push_back(Colour(at, tga.ColourMapBits, alphaBits));
    }
  }

  const int64_t dataOffset = mapOffset + mapBytes;
  const int64_t dataBytes = std::max<int64_t>(file.Size() - dataOffset, 0);
  const int64_t pixelBytes = (tga.PixelBits + 7) / 8;
  const int64_t count = int64_t{tga.Width} * tga.Height;
  const int64_t most = runLength ? (dataBytes + pixelBytes) / (1 + pixelBytes) * LongestRun : dataBytes / pixelBytes;
  const auto tooShort = [&](int64_t held) {
    return refuse("the file ends early: it holds " + std::to_string(held) + " of " + std::to_string(count) + " pixels");
  };
  // Before memory is taken for them: not even the longest runs could hold them.
  if (count > most) return refuse("the file is too short for its " + std::to_string(count) + " pixels");

  Picture picture{tga.Width, tga.Height, {}};
  const auto data = *file.Bytes(dataOffset, dataBytes);
  const Bytes bytes(reinterpret_cast<const uint8_t*>(data.data()), data.size());
  const auto read = [&]<int Size>(auto convert) {
    ReadPixels<Size>(bytes, runLength, static_cast<size_t>(count), picture.Pixels, convert);
  };
  int64_t missing = -1;  // a colour that the map does not have
  const auto mapped = [&](int index) {
    const int at = index - map.First;
    if (at >= 0 && at < static_cast<int>(map.Colours.size())) return map.Colours[static_cast<size_t>(at)];
    missing = index;
    return Bgra{};
  };
  if (type == TgaColourMapped && tga.PixelBits == 8) {
    read.operator()<1>([&](const uint8_t* at) { return mapped(at[0]); });
  } else if (type == TgaColourMapped) {
    read.operator()<2>([&](const uint8_t* at) { return mapped(at[0] | at[1] << 8); });
  } else if (type == TgaGrey && tga.PixelBits == 8) {
    read.operator()<1>([](const uint8_t* at) { return Bgra{at[0], at[0], at[0], 255}; });
  } else if (type == TgaGrey) {
    read.operator()<2>([](const uint8_t* at) { return Bgra{at[0], at[0], at[0], at[1]}; });
  } else if (tga.PixelBits == 24) {
    read.operator()<3>([](const uint8_t* at) { return Colour(at, 24, false); });
  } else if (tga.PixelBits == 32) {
    read.operator()<4>([](const uint8_t* at) { return Colour(at, 32, true); });
  } else {
    read.operator()<2>([&](const uint8_t* at) { return From555(at, alphaBits && tga.PixelBits == 16); });
  }
  const auto held = static_cast<int64_t>(picture.Pixels.size());
  if (held < count) return tooShort(held);
  if (missing >= 0) {
    return refuse("a pixel refers to colour " + std::to_string(missing) + ", which the colour map does not have");
  }

  const auto transparent = [](const Bgra& pixel) { return pixel.A == 0; };
  if (!alphaBits && std::all_of(picture.Pixels.begin(), picture.Pixels.end(), transparent)) {
    for (Bgra& pixel : picture.Pixels) pixel.A = 255;
  }
  Turn(picture, tga.Descriptor);
  return picture;
}

}  // namespace tarnwick::textures
