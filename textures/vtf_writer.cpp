#include "textures/vtf_writer.h"

#include <algorithm>
#include <cstring>

#include "textures/picture_encode.h"
#include "textures/vtf_format.h"

namespace tarnwick::textures {

namespace {

constexpr int LargestLowSide = 16;

const Picture& LowImage(const VtfSource& source) {
  return *std::find_if(source.Frames[0].begin(), source.Frames[0].end(), [](const Picture& level) {
    return level.Width <= LargestLowSide && level.Height <= LargestLowSide;
  });
}

std::array<float, 3> MeanReflectivity(const VtfSource& source) {
  std::array<float, 3> mean{};
  for (const auto& frame : source.Frames) {
    const auto one = Reflectivity(frame[0]);
    for (size_t i = 0; i < 3; ++i) mean[i] += one[i] / static_cast<float>(source.Frames.size());
  }
  return mean;
}

VtfHeader MakeHeader(const VtfSource& source) {
  const Picture& largest = source.Frames[0][0];
  const Picture& low = LowImage(source);
  VtfHeader header{};
  std::memcpy(header.Signature, "VTF", 4);
  header.MajorVersion = 7;
  header.MinorVersion = 2;
  header.HeaderSize = VtfHeaderSize72;
  header.Width = static_cast<uint16_t>(largest.Width);
  header.Height = static_cast<uint16_t>(largest.Height);
  header.Flags = source.Flags;
  header.Frames = static_cast<uint16_t>(source.Frames.size());
  const auto reflectivity = MeanReflectivity(source);
  std::copy(reflectivity.begin(), reflectivity.end(), header.Reflectivity);
  header.BumpScale = source.BumpScale;
  header.Format = static_cast<int32_t>(source.Format);
  header.MipLevels = static_cast<uint8_t>(WrittenMipLevels(source));
  header.LowFormat = static_cast<int32_t>(PixelFormat::Dxt1);
  header.LowWidth = static_cast<uint8_t>(low.Width);
  header.LowHeight = static_cast<uint8_t>(low.Height);
  header.Depth = 1;
  return header;
}

}  // namespace

int WrittenMipLevels(const VtfSource& source) {
  return (source.Flags & VtfNoMips) != 0 ? 1 : static_cast<int>(source.Frames[0].size());
}

bool WriteVtf(const VtfSource& source, const std::function<bool(std::string_view)>& write) {
  const VtfHeader header = MakeHeader(source);
  if (!write({reinterpret_cast<const char*>(&header), sizeof header})) return false;
  if (!write(EncodePicture(LowImage(source), PixelFormat::Dxt1, source.Effort))) return false;
  for (int level = WrittenMipLevels(source) - 1; level >= 0; --level) {
    for (const auto& frame : source.Frames) {
      if (!write(EncodePicture(frame[static_cast<size_t>(level)], source.Format, source.Effort))) return false;
    }
  }
  return true;
}

}  // namespace tarnwick::textures
