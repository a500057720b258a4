#include "textures/texture_export.h"

#include "core/output_file.h"
#include "core/paths.h"
#include "textures/frame_number.h"
#include "textures/pixel_rows.h"
#include "textures/tga_writer.h"

namespace tarnwick::textures {

std::string ExportPath(const std::string& path, const VtfImagePlace& place) {
  std::string number;
  if (place.Frame > 0) number = FrameNumber(place.Frame);
  if (place.Face > 0) number.append("_face").append(std::to_string(place.Face));
  if (place.Slice > 0) number.append("_slice").append(std::to_string(place.Slice));
  const size_t dot = core::LastComponent(path).rfind('.');
  const size_t stem = dot == std::string_view::npos ? path.size() : core::DirectoryWithSeparator(path).size() + dot;
  return path.substr(0, stem) + number + path.substr(stem);
}

bool ExportTexture(
    const VtfFile& vtf, int mip, const std::string& path,
    const std::function<void(const std::string& file, const StoredImage& image, PixelLayout layout)>& written,
    std::string& reason) {
  const VtfInfo& info = vtf.Info();
  const auto exportOne = [&](const VtfImagePlace& place) {
    const StoredImage image{info.Format, MipSize(info.Width, mip), MipSize(info.Height, mip), vtf.Image(place)};
    const PixelLayout layout = LayoutFor(image);
    const std::string name = ExportPath(path, place);
    auto file = core::OutputFile::Create(name, &reason);
    if (file) {
      WriteTga(image, layout, [&](std::string_view bytes) { return file->Write(bytes); });
      if (file->Commit()) {
        written(name, image, layout);
        return true;
      }
      reason = file->Error();
    }
    reason = name + ": " + reason;
    return false;
  };
  for (int frame = 0; frame < info.Frames; ++frame) {
    for (int face = 0; face < info.Faces; ++face) {
      for (int slice = 0; slice < MipSize(info.Depth, mip); ++slice) {
        if (!exportOne({mip, frame, face, slice})) return false;
      }
    }
  }
  return true;
}

}  // namespace tarnwick::textures
