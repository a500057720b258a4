#include "textures/dds_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>
#include <vector>

#include "textures/dds_format.h"
#include "textures/pixel_rows.h"

namespace tarnwick::textures {

namespace {

/// How the pixels lie in the file: in blocks, or with channels in masks of a word of `Bytes` bytes.
struct Storage {
  PixelFormat Blocks = PixelFormat::None;
  int Bytes = 0;
  uint32_t Red = 0, Green = 0, Blue = 0, Alpha = 0;  // red alone of a grey image
  bool Grey = false;
};

template <typename T>
std::optional<T> RecordAt(core::ImageView file, int64_t offset) {
  const auto bytes = file.Bytes(offset, sizeof(T));
  if (!bytes) return std::nullopt;
  T record;
  std::memcpy(&record, bytes->data(), sizeof record);
  return record;
}

std::optional<Storage> BlocksOf(PixelFormat format) {
  Storage storage;
  storage.Blocks = format;
  return storage;
}

/// Of the numbers that the longer header has for formats.
std::optional<Storage> StorageOfNumber(uint32_t number) {
  switch (number) {
    case 70:
    case 71:
    case 72:
      return BlocksOf(PixelFormat::Dxt1);
    case 73:
    case 74:
    case 75:
      return BlocksOf(PixelFormat::Dxt3);
    case 76:
    case 77:
    case 78:
      return BlocksOf(PixelFormat::Dxt5);
    case 27:
    case 28:
    case 29:
      return Storage{PixelFormat::None, 4, 0xFF, 0xFF00, 0xFF0000, 0xFF000000, false};
    case 87:
    case 90:
    case 91:
      return Storage{PixelFormat::None, 4, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, false};
    case 88:
    case 92:
    case 93:
      return Storage{PixelFormat::None, 4, 0xFF0000, 0xFF00, 0xFF, 0, false};
    default:
      return std::nullopt;
  }
}

std::optional<Storage> StorageOf(const DdsPixelFormat& format, std::string& reason) {
  const std::string_view code(format.Code, 4);
  if ((format.Flags & DdsCode) != 0) {
    if (code == "DXT1") return BlocksOf(PixelFormat::Dxt1);
    if (code == "DXT2" || code == "DXT3") return BlocksOf(PixelFormat::Dxt3);
    if (code == "DXT4" || code == "DXT5") return BlocksOf(PixelFormat::Dxt5);
    reason = "images of the kind \"" + std::string(code) + "\" cannot be read";
    return std::nullopt;
  }
  const bool grey = (format.Flags & DdsLuminance) != 0;
  const bool alphaOnly = (format.Flags & DdsAlphaOnly) != 0 && format.RedMask == 0;
  if (format.Bits < 8 || format.Bits > 32 || format.Bits % 8 != 0 ||
      ((format.Flags & DdsColours) == 0 && !grey && !alphaOnly)) {
    reason = "pixels of " + std::to_string(format.Bits) + " bits of this kind cannot be read";
    return std::nullopt;
  }
  const bool alpha = (format.Flags & (DdsAlphaPixels | DdsAlphaOnly)) != 0;
  return Storage{PixelFormat::None,
                 static_cast<int>(format.Bits / 8),
                 format.RedMask,
                 format.GreenMask,
                 format.BlueMask,
                 alpha ? format.AlphaMask : 0,
                 grey};
}

/// The bits of `mask` in `word`, stretched to 0 to 255; `missing` where the mask is empty.
uint8_t Channel(uint32_t word, uint32_t mask, uint8_t missing) {
  if (mask == 0) return missing;
  const int shift = std::countr_zero(mask);
  const uint64_t largest = mask >> shift;
  return static_cast<uint8_t>((uint64_t{(word & mask) >> shift} * 255 + largest / 2) / largest);
}

void ReadWords(const Storage& storage, const std::vector<std::byte>& bytes, Picture& picture) {
  const std::byte* at = bytes.data();
  const uint8_t noColour = storage.Red == 0 && storage.Green == 0 && storage.Blue == 0 ? 255 : 0;  // alpha alone
  for (Bgra& pixel : picture.Pixels) {
    uint32_t word = 0;
    std::memcpy(&word, at, static_cast<size_t>(storage.Bytes));
    at += storage.Bytes;
    pixel.R = Channel(word, storage.Red, noColour);
    pixel.G = storage.Grey ? pixel.R : Channel(word, storage.Green, noColour);
    pixel.B = storage.Grey ? pixel.R : Channel(word, storage.Blue, noColour);
    pixel.A = Channel(word, storage.Alpha, 255);
  }
}

}  // namespace

std::optional<DdsPicture> ReadDds(core::ImageView file, std::string& reason) {
  const auto header = RecordAt<DdsHeader>(file, 0);
  if (!header || std::string_view(header->Signature, 4) != "DDS ") {
    reason = "it does not start as a DDS file";
    return std::nullopt;
  }
  int64_t start = sizeof(DdsHeader);
  std::optional<Storage> storage;
  if ((header->Format.Flags & DdsCode) != 0 && std::string_view(header->Format.Code, 4) == "DX10") {
    const auto more = RecordAt<DdsHeader10>(file, start);
    if (more) storage = StorageOfNumber(more->Format);
    if (!storage)
      reason =
          more ? "images of format " + std::to_string(more->Format) + " cannot be read" : "it ends inside its header";
    start += static_cast<int64_t>(sizeof(DdsHeader10));
  } else {
    storage = StorageOf(header->Format, reason);
  }
  if (!storage) return std::nullopt;
  if (header->Width == 0 || header->Height == 0 || header->Width > LargestSide || header->Height > LargestSide) {
    reason = "its size of " + std::to_string(header->Width) + " by " + std::to_string(header->Height) +
             " pixels cannot be read";
    return std::nullopt;
  }

  DdsPicture result;
  Picture& picture = result.Image;
  picture.Width = static_cast<int>(header->Width);
  picture.Height = static_cast<int>(header->Height);
  const bool blocks = storage->Blocks != PixelFormat::None;
  result.WantedBytes = blocks ? ImageBytes(*FindPixelFormat(storage->Blocks), picture.Width, picture.Height)
                              : int64_t{picture.Width} * picture.Height * storage->Bytes;
  const int64_t there = std::clamp<int64_t>(file.Size() - start, 0, result.WantedBytes);
  result.MissingBytes = result.WantedBytes - there;
  std::vector<std::byte> bytes(static_cast<size_t>(result.WantedBytes));
  if (there > 0) std::memcpy(bytes.data(), file.Bytes(start, there)->data(), static_cast<size_t>(there));

  picture.Pixels.resize(static_cast<size_t>(int64_t{picture.Width} * picture.Height));
  if (!blocks) {
    ReadWords(*storage, bytes, picture);
    result.HoldsAlpha = storage->Alpha != 0;
    return result;
  }
  const StoredImage image{storage->Blocks, picture.Width, picture.Height, bytes};
  result.HoldsAlpha = LayoutFor(image) == PixelLayout::Bgra32;
  DecodeRows(image, 0, picture.Height, PixelLayout::Bgra32, reinterpret_cast<uint8_t*>(picture.Pixels.data()),
             ptrdiff_t{4} * picture.Width);
  return result;
}

}  // namespace tarnwick::textures
