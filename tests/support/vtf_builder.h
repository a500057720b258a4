#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "textures/vtf_format.h"

namespace tarnwick::tests {

/// Makes the bytes of a texture file. A builder that was told nothing makes a sound 7.2 file: 4 by 4 pixels, I8, one
/// frame, one mip level, no low resolution image, and pixel bytes that count up from 0.
class VtfBuilder {
 public:
  VtfBuilder();

  VtfBuilder& Version(int minor);
  VtfBuilder& Size(int width, int height, int depth = 1);
  VtfBuilder& Format(textures::PixelFormat format);
  VtfBuilder& Mips(int levels);
  VtfBuilder& Frames(int frames);
  /// Sets the flag; `firstFrame` 0xFFFF for one without a sphere map.
  VtfBuilder& EnvironmentMap(int firstFrame);
  /// A DXT1 image of 8 by 8 pixels whose bytes are `fill`.
  VtfBuilder& LowImage(char fill);
  /// An empty table of resources, which versions from 7.3 on may have: the images follow the header.
  VtfBuilder& NoResources();
  /// The bytes of all images together, instead of those that count up.
  VtfBuilder& Pixels(std::string_view pixels);
  /// The header, for what the other functions do not set.
  textures::VtfHeader& Header() { return m_header; }

  std::string Build() const;

 private:
  size_t PixelBytes() const;

  textures::VtfHeader m_header{};
  bool m_hasResources = true;
  std::string m_low;
  std::string m_pixels;
};

}  // namespace tarnwick::tests
