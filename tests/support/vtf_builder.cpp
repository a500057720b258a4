#include "support/vtf_builder.h"

#include <algorithm>
#include <cstring>

namespace tarnwick::tests {

using textures::PixelFormat;

VtfBuilder::VtfBuilder() {
  std::memcpy(m_header.Signature, "VTF", 4);
  m_header.MajorVersion = 7;
  m_header.Frames = 1;
  m_header.MipLevels = 1;
  m_header.BumpScale = 1;
  m_header.LowFormat = -1;
  Version(2).Size(4, 4).Format(PixelFormat::I8);
}

VtfBuilder& VtfBuilder::Version(int minor) {
  m_header.MinorVersion = minor;
  return *this;
}

VtfBuilder& VtfBuilder::Size(int width, int height, int depth) {
  m_header.Width = static_cast<uint16_t>(width);
  m_header.Height = static_cast<uint16_t>(height);
  m_header.Depth = static_cast<uint16_t>(depth);
  return *this;
}

VtfBuilder& VtfBuilder::Format(PixelFormat format) {
  m_header.Format = static_cast<int32_t>(format);
  return *this;
}

VtfBuilder& VtfBuilder::Mips(int levels) {
  m_header.MipLevels = static_cast<uint8_t>(levels);
  return *this;
}

VtfBuilder& VtfBuilder::Frames(int frames) {
  m_header.Frames = static_cast<uint16_t>(frames);
  return *this;
}

VtfBuilder& VtfBuilder::EnvironmentMap(int firstFrame) {
  m_header.Flags |= textures::VtfEnvironmentMap;
  m_header.FirstFrame = static_cast<uint16_t>(firstFrame);
  return *this;
}

VtfBuilder& VtfBuilder::LowImage(char fill) {
  m_header.LowFormat = static_cast<int32_t>(PixelFormat::Dxt1);
  m_header.LowWidth = 8;
  m_header.LowHeight = 8;
  m_low.assign(32, fill);
  return *this;
}

VtfBuilder& VtfBuilder::NoResources() {
  m_hasResources = false;
  return *this;
}

VtfBuilder& VtfBuilder::Pixels(std::string_view pixels) {
  m_pixels = pixels;
  return *this;
}

size_t VtfBuilder::PixelBytes() const {
  const bool cube = (m_header.Flags & textures::VtfEnvironmentMap) != 0;
  const int64_t faces = !cube ? 1 : m_header.MinorVersion < 5 && m_header.FirstFrame != 0xFFFF ? 7 : 6;
  int64_t bytes = 0;
  for (int mip = 0; mip < m_header.MipLevels; ++mip) {
    const int width = std::max(1, m_header.Width >> mip);
    const int height = std::max(1, m_header.Height >> mip);
    bytes += textures::ImageBytes(*textures::FindPixelFormat(PixelFormat{m_header.Format}), width, height) * faces *
             m_header.Frames * std::max(1, m_header.Depth >> mip);
  }
  return static_cast<size_t>(bytes);
}

std::string VtfBuilder::Build() const {
  std::string pixels = m_pixels;
  if (pixels.empty()) {
    pixels.resize(PixelBytes());
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<char>(i);
  }

  textures::VtfHeader header = m_header;
  const bool table = header.MinorVersion >= 3 && m_hasResources;
  size_t size = header.MinorVersion < 2 ? 64 : 80;
  if (table && header.ResourceCount == 0) header.ResourceCount = m_low.empty() ? 1 : 2;
  if (table) size += 8 * static_cast<size_t>(std::clamp(header.ResourceCount, 0, 2));
  if (header.HeaderSize == 0) header.HeaderSize = static_cast<int32_t>(size);

  std::string file(reinterpret_cast<const char*>(&header), header.MinorVersion < 2 ? 64 : 80);
  const auto entry = [&](char tag, size_t offset) {
    file += {tag, 0, 0, 0};
    const auto offset32 = static_cast<uint32_t>(offset);
    file.append(reinterpret_cast<const char*>(&offset32), 4);
  };
  if (table && !m_low.empty()) entry(0x01, size);
  if (table && header.ResourceCount > 0) entry(0x30, size + m_low.size());
  return file + m_low + pixels;
}

}  // namespace tarnwick::tests
