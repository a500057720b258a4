#include "textures/texture_compile.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <utility>

#include "core/file_image.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "textures/frame_number.h"
#include "textures/tga_reader.h"

namespace tarnwick::textures {

namespace {

namespace fs = std::filesystem;

/// `path` without the extension of its last part.
std::string WithoutExtension(const std::string& path) {
  const std::string_view name = core::LastComponent(path);
  return std::string(core::DirectoryWithSeparator(path)).append(name.substr(0, name.rfind('.')));
}

bool HasExtension(std::string_view path, std::string_view extension) {
  return path.size() > extension.size() &&
         core::EqualIgnoringCase(path.substr(path.size() - extension.size()), extension);
}

std::string FramePath(const std::string& stem, int frame) {
  return stem + FrameNumber(frame) + ".tga";
}

/// The TGA files of all frames. The first frame may also have the plain name, as vtf2tga writes it.
std::vector<std::string> FrameFiles(const TextureInput& input, const TextureOptions& options) {
  if (options.EndFrame < 0) return {input.Tga};
  std::vector<std::string> files;
  const int first = std::max(options.StartFrame, 0);
  for (int frame = first; frame <= options.EndFrame; ++frame) {
    const std::string numbered = FramePath(WithoutExtension(input.Tga), frame);
    const auto found = core::FindIgnoringCase(numbered);
    files.push_back(found ? *found : frame == first && core::FileExists(input.Tga) ? input.Tga : numbered);
  }
  return files;
}

std::optional<Picture> ReadPicture(const std::string& file, std::string& reason) {
  const auto image = core::FileImage::Read(file, &reason);
  std::optional<Picture> picture;
  if (image) picture = ReadTga(image->View(), reason);
  if (picture) {
    const auto isPower = [](int side) { return std::has_single_bit(static_cast<unsigned>(side)); };
    if (isPower(picture->Width) && isPower(picture->Height)) return picture;
    reason = "width and height must be powers of two, and the image is " + std::to_string(picture->Width) + " x " +
             std::to_string(picture->Height);
  }
  reason = file + ": " + reason;
  return std::nullopt;
}

void Apply(const TextureOptions& options, PictureKind kind, Picture& picture) {
  for (Bgra& pixel : picture.Pixels) {
    if (options.StripAlpha) pixel.A = 255;
    if (options.InvertGreen) pixel.G = static_cast<uint8_t>(255 - pixel.G);
  }
  for (int x = options.ReduceX, y = options.ReduceY; x > 1 || y > 1; x /= 2, y /= 2) {
    picture = Halve(picture, kind, x > 1, y > 1);
  }
}

PixelFormat FormatFor(const TextureOptions& options, PictureKind kind, bool alpha) {
  const bool uncompressed = options.NoCompress || (kind == PictureKind::NormalMap && !options.Dxt5);
  if (uncompressed) return alpha ? PixelFormat::Bgra8888 : PixelFormat::Bgr888;
  if (alpha && options.OneBitAlpha && !options.Dxt5) return PixelFormat::Dxt1OneBitAlpha;
  return alpha || options.Dxt5 ? PixelFormat::Dxt5 : PixelFormat::Dxt1;
}

uint32_t FlagsFor(const TextureOptions& options, PictureKind kind, PixelFormat format, bool alpha) {
  uint32_t flags = 0;
  const auto set = [&flags](bool on, VtfFlag flag) { flags |= on ? flag : 0u; };
  set(options.PointSample, VtfPointSample);
  set(options.Trilinear, VtfTrilinear);
  set(options.ClampS, VtfClampS);
  set(options.ClampT, VtfClampT);
  set(options.Anisotropic, VtfAnisotropic);
  set(kind == PictureKind::NormalMap, VtfNormalMap);
  set(options.NoMip, VtfNoMips);
  set(options.NoLod, VtfNoLod);
  set(alpha, format == PixelFormat::Dxt1OneBitAlpha ? VtfOneBitAlpha : VtfEightBitAlpha);
  return flags;
}

}  // namespace

TextureInput FindTextureInput(const std::string& name) {
  std::string tga = name;
  if (HasExtension(name, ".txt")) {
    tga = WithoutExtension(name) + ".tga";
  } else if (!HasExtension(name, ".tga") && !core::FindIgnoringCase(name)) {
    tga = name + ".tga";
  }
  tga = core::FindIgnoringCase(tga).value_or(tga);
  return {tga, core::FindIgnoringCase(WithoutExtension(tga) + ".txt").value_or("")};
}

std::optional<VtfSource> MakeTexture(const TextureInput& input, const TextureOptions& options, bool isNormalMap,
                                     std::string& reason) {
  const PictureKind kind = options.Normal || isNormalMap ? PictureKind::NormalMap : PictureKind::Colour;
  if (options.EndFrame >= 0 && options.EndFrame < options.StartFrame) {
    reason = input.Options + ": endframe is before startframe";
    return std::nullopt;
  }
  VtfSource source;
  bool alpha = false;
  for (const std::string& file : FrameFiles(input, options)) {
    auto picture = ReadPicture(file, reason);
    if (!picture) return std::nullopt;
    Apply(options, kind, *picture);
    if (!source.Frames.empty()) {
      const Picture& first = source.Frames[0][0];
      if (picture->Width != first.Width || picture->Height != first.Height) {
        reason = file + ": the frame is not as large as the first one";
        return std::nullopt;
      }
    }
    alpha = alpha || UsesAlpha(*picture);
    source.Frames.push_back(MipChain(std::move(*picture), kind));
  }
  source.Format = FormatFor(options, kind, alpha);
  source.Flags = FlagsFor(options, kind, source.Format, alpha);
  source.BumpScale = options.BumpScale;
  return source;
}

bool WriteTexture(const VtfSource& source, const std::string& path, uint64_t& bytes, std::string& reason) {
  std::error_code error;
  fs::create_directories(core::NativePath(path).parent_path(), error);
  auto file = core::OutputFile::Create(path, &reason);
  if (!file) {
    if (error) reason = error.message();
    return false;
  }
  WriteVtf(source, [&](std::string_view piece) { return file->Write(piece); });
  bytes = file->Size();
  if (file->Commit()) return true;
  reason = file->Error();
  return false;
}

}  // namespace tarnwick::textures
