#include "textures/vtf_file.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tarnwick::textures {

namespace {

/// A number for a message, with commas between the thousands.
std::string Count(int64_t value) {
  const std::string digits = std::to_string(value);
  const size_t sign = value < 0 ? 1 : 0;
  std::string text;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i > sign && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string Version(const VtfHeader& header) {
  return std::to_string(header.MajorVersion) + "." + std::to_string(header.MinorVersion);
}

/// The header, with zeros for the fields that its version does not have. Nothing, with `reason`, if the file does not
/// start as a texture.
std::optional<VtfHeader> ReadHeader(core::ImageView file, std::string& reason) {
  const auto refuse = [&](std::string why) {
    reason = std::move(why);
    return std::nullopt;
  };
  const auto start = file.Bytes(0, VtfHeaderSize70);
  if (!start) return refuse("the file is too short for a texture (" + Count(file.Size()) + " bytes)");
  VtfHeader header{};
  std::memcpy(&header, start->data(), start->size());
  if (std::memcmp(header.Signature, "VTF", 4) != 0) return refuse("the file is no texture: it does not start with VTF");
  if (header.MajorVersion != 7 || header.MinorVersion < 0 || header.MinorVersion > 5) {
    return refuse("version " + Version(header) + " is not known; 7.0 to 7.5 are");
  }
  const int32_t needed = header.MinorVersion < 2 ? VtfHeaderSize70 : VtfHeaderSize72;
  if (header.HeaderSize < needed || header.HeaderSize > file.Size()) {
    return refuse("the header's size is given as " + Count(header.HeaderSize) + " bytes, which version " +
                  Version(header) + " and a file of " + Count(file.Size()) + " bytes cannot have");
  }
  header.Depth = 1;
  if (header.MinorVersion < 2) return header;
  std::memcpy(&header, file.Bytes(0, VtfHeaderSize72)->data(), VtfHeaderSize72);
  if (header.Depth == 0) header.Depth = 1;
  if (header.MinorVersion < 3) header.ResourceCount = 0;
  return header;
}

/// Whether the images stand right behind the header: before version 7.3, and in files of later versions whose table is
/// empty.
bool ImagesFollowHeader(const VtfHeader& header) {
  return header.MinorVersion < 3 || header.ResourceCount == 0;
}

/// Where the two images start; -1: there is none.
struct ImageOffsets {
  int64_t Low = -1;
  int64_t Image = -1;
};

std::optional<ImageOffsets> FindImages(core::ImageView file, const VtfHeader& header, std::string& reason) {
  ImageOffsets offsets;
  if (ImagesFollowHeader(header)) {
    offsets.Low = header.HeaderSize;
    return offsets;
  }
  const auto resources = file.Array<VtfResource>(VtfHeaderSize72, header.ResourceCount);
  if (!resources) {
    reason = "the resource table at byte 80 (" + Count(header.ResourceCount) +
             " entries) does not fit into the file (" + Count(file.Size()) + " bytes)";
    return std::nullopt;
  }
  for (const auto resource : *resources) {
    if (resource->Tag[1] != 0 || resource->Tag[2] != 0) continue;
    if (resource->Tag[0] == VtfLowImageTag) offsets.Low = resource->Offset;
    if (resource->Tag[0] == VtfImageTag) offsets.Image = resource->Offset;
  }
  if (offsets.Image < 0) {
    reason = "the resource table has no entry for the image";
    return std::nullopt;
  }
  return offsets;
}

/// Bytes of all mip levels; nothing as soon as they are more than `limit`.
std::optional<int64_t> ImagesSize(const PixelFormatFacts& facts, const VtfInfo& info, int64_t limit) {
  int64_t total = 0;
  for (int mip = 0; mip < info.MipLevels; ++mip) {
    const int64_t one = ImageBytes(facts, MipSize(info.Width, mip), MipSize(info.Height, mip));
    const int64_t count = int64_t{info.Frames} * info.Faces * MipSize(info.Depth, mip);
    if (count > (limit - total) / one) return std::nullopt;
    total += count * one;
  }
  return total;
}

VtfInfo InfoOf(const VtfHeader& header) {
  VtfInfo info;
  info.MajorVersion = header.MajorVersion;
  info.MinorVersion = header.MinorVersion;
  info.Width = header.Width;
  info.Height = header.Height;
  info.Depth = header.Depth;
  info.Flags = header.Flags;
  info.Frames = header.Frames;
  info.FirstFrame = header.FirstFrame;
  info.MipLevels = header.MipLevels;
  info.Format = static_cast<PixelFormat>(header.Format);
  info.Reflectivity = std::to_array(header.Reflectivity);
  info.BumpScale = header.BumpScale;
  if ((header.Flags & VtfEnvironmentMap) != 0) {
    info.Faces = header.MinorVersion < 5 && header.FirstFrame != VtfNoSphereMap ? 7 : 6;
  }
  if (header.LowWidth != 0 && header.LowHeight != 0) {
    info.LowFormat = static_cast<PixelFormat>(header.LowFormat);
    info.LowWidth = header.LowWidth;
    info.LowHeight = header.LowHeight;
  }
  return info;
}

/// What is wrong with the header's numbers by themselves; empty if nothing is.
std::string Fault(const VtfInfo& info) {
  const std::string size = Count(info.Width) + " x " + Count(info.Height);
  if (info.Width == 0 || info.Height == 0) return "the image has no pixels (" + size + ")";
  if (info.Frames == 0) return "the header says that there are no frames";
  const int full = FullMipLevels(info.Width, info.Height, info.Depth);
  if (info.MipLevels < 1 || info.MipLevels > full) {
    return "the header says that there are " + std::to_string(info.MipLevels) + " mip levels; an image of " + size +
           " has 1 to " + std::to_string(full);
  }
  const PixelFormatFacts* facts = FindPixelFormat(info.Format);
  if (facts == nullptr)
    return "the image has an unknown format (number " + std::to_string(static_cast<int32_t>(info.Format)) + ")";
  if (facts->BytesPerUnit == 0) return "images of the format " + std::string(facts->Name) + " cannot be read";
  return {};
}

}  // namespace

int FullMipLevels(int width, int height, int depth) {
  return static_cast<int>(std::bit_width(static_cast<unsigned>(std::max({width, height, depth}))));
}

std::optional<VtfFile> VtfFile::Open(core::ImageView file, std::string& reason) {
  const auto header = ReadHeader(file, reason);
  if (!header) return std::nullopt;
  VtfFile vtf;
  vtf.m_info = InfoOf(*header);
  VtfInfo& info = vtf.m_info;
  reason = Fault(info);
  if (!reason.empty()) return std::nullopt;
  vtf.m_facts = FindPixelFormat(info.Format);

  const auto offsets = FindImages(file, *header, reason);
  if (!offsets) return std::nullopt;

  int64_t lowSize = 0;
  const PixelFormatFacts* lowFacts = FindPixelFormat(info.LowFormat);
  if (lowFacts != nullptr && lowFacts->BytesPerUnit > 0 && offsets->Low >= 0) {
    lowSize = ImageBytes(*lowFacts, info.LowWidth, info.LowHeight);
    // It only stands in for the image while that loads, so one that is cut off is no reason to refuse the image.
    vtf.m_lowImage = file.Bytes(offsets->Low, lowSize).value_or(std::span<const std::byte>());
  }
  if (lowSize == 0 && info.LowFormat != PixelFormat::None && ImagesFollowHeader(*header)) {
    reason = "the low resolution image, which stands before the image, has an unknown format (number " +
             std::to_string(header->LowFormat) + ")";
    return std::nullopt;
  }
  if (vtf.m_lowImage.empty()) info.LowFormat = PixelFormat::None;

  const int64_t start = offsets->Image >= 0 ? offsets->Image : header->HeaderSize + lowSize;
  const int64_t room = std::max<int64_t>(file.Size() - start, 0);
  auto size = ImagesSize(*vtf.m_facts, info, room);
  if (!size) {
    reason = "the image (" + std::string(vtf.m_facts->Name) + ", " + Count(info.Width) + " x " + Count(info.Height) +
             ", mip levels " + Count(info.MipLevels) + ", frames " + Count(info.Frames) + ", faces " +
             Count(info.Faces) + ", slices " + Count(info.Depth) + ") at byte " + Count(start) +
             " runs past the end of the file (" + Count(file.Size()) + " bytes)";
    return std::nullopt;
  }
  vtf.m_images = *file.Bytes(start, *size);
  return vtf;
}

std::span<const std::byte> VtfFile::Image(const VtfImagePlace& place) const {
  // The levels stand from the smallest to the largest, in each the frames, the faces, the slices.
  int64_t offset = 0;
  const auto one = [&](int mip) {
    return ImageBytes(*m_facts, MipSize(m_info.Width, mip), MipSize(m_info.Height, mip));
  };
  for (int mip = m_info.MipLevels - 1; mip > place.Mip; --mip) {
    offset += one(mip) * m_info.Frames * m_info.Faces * MipSize(m_info.Depth, mip);
  }
  const int64_t index =
      (int64_t{place.Frame} * m_info.Faces + place.Face) * MipSize(m_info.Depth, place.Mip) + place.Slice;
  return m_images.subspan(static_cast<size_t>(offset + index * one(place.Mip)), static_cast<size_t>(one(place.Mip)));
}

}  // namespace tarnwick::textures
