// Opens any bytes as a texture, decodes its images and compares the fast decoders with the plain one.

#include <cstdlib>
#include <vector>

#include "support/pixel_reference.h"
#include "textures/pixel_rows.h"
#include "textures/tga_writer.h"
#include "textures/vtf_file.h"
#include "textures/vtf_info_text.h"

using namespace tarnwick;
using namespace tarnwick::textures;
using tarnwick::tests::ReferencePixel;

namespace {

constexpr int64_t MostPixels = 1 << 12;  // compared one by one, more would only make the fuzzer slow

void Check(const StoredImage& image) {
  const PixelLayout layout = LayoutFor(image);
  std::vector<uint8_t> tga;
  WriteTga(image, layout, [&](std::string_view bytes) {
    tga.insert(tga.end(), bytes.begin(), bytes.end());
    return tga.size() < size_t{1} << 24;
  });
  if (int64_t{image.Width} * image.Height > MostPixels) return;
  const uint8_t* pixel = tga.data() + sizeof(TgaHeader);
  for (int y = image.Height - 1; y >= 0; --y) {
    for (int x = 0; x < image.Width; ++x, pixel += BytesPerPixel(layout)) {
      const Bgra expected = ReferencePixel(image, x, y);
      const uint8_t alpha = layout == PixelLayout::Bgra32 ? pixel[3] : uint8_t{255};
      if (Bgra{pixel[0], pixel[1], pixel[2], alpha} != expected) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string reason;
  const auto vtf = VtfFile::Open(core::ImageView(std::as_bytes(std::span(data, size))), reason);
  if (vtf.has_value() != reason.empty()) std::abort();
  if (!vtf) return 0;
  const VtfInfo& info = vtf->Info();
  if (VtfInfoText("x", info).empty() || VtfInfoJson("\xFF", info).empty()) std::abort();
  for (int mip = 0; mip < info.MipLevels; ++mip) {
    const VtfImagePlace places[] = {{mip, 0, 0, 0},
                                    {mip, info.Frames - 1, info.Faces - 1, MipSize(info.Depth, mip) - 1}};
    for (const VtfImagePlace& place : places) {
      Check({info.Format, MipSize(info.Width, mip), MipSize(info.Height, mip), vtf->Image(place)});
    }
  }
  return 0;
}
