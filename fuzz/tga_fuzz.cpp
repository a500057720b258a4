// Reads any bytes as a TGA file; a small picture then goes through the texture writer and reader.

#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>

#include "textures/tga_reader.h"
#include "textures/vtf_file.h"
#include "textures/vtf_writer.h"

using namespace tarnwick;
using namespace tarnwick::textures;

namespace {

constexpr int LargestWrittenSide = 64;  // more would only make the fuzzer slow

bool CanBeTexture(int side) {
  return side <= LargestWrittenSide && std::has_single_bit(static_cast<unsigned>(side));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string reason;
  auto picture = ReadTga(core::ImageView(std::as_bytes(std::span(data, size))), reason);
  if (picture.has_value() != reason.empty()) std::abort();
  if (!picture) return 0;
  if (picture->Pixels.size() != static_cast<size_t>(picture->Width) * static_cast<size_t>(picture->Height))
    std::abort();
  if (!CanBeTexture(picture->Width) || !CanBeTexture(picture->Height)) return 0;

  const Picture copy = *picture;
  VtfSource source;
  source.Frames.push_back(MipChain(std::move(*picture), PictureKind::NormalMap));
  source.Format = PixelFormat::Bgra8888;
  std::string bytes;
  WriteVtf(source, [&](std::string_view piece) {
    bytes += piece;
    return true;
  });
  const auto vtf = VtfFile::Open(core::ImageView(std::as_bytes(std::span(bytes))), reason);
  if (!vtf) std::abort();
  const auto stored = vtf->Image({});
  if (std::memcmp(stored.data(), copy.Pixels.data(), stored.size()) != 0) std::abort();
  return 0;
}
