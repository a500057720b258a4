#include "images/worker/job.h"

#include <algorithm>
#include <array>

#include "images/limits.h"
#include "images/power_of_two.h"
#include "images/worker/bitmap_fit.h"
#include "images/worker/decode.h"
#include "images/worker/familiar.h"
#include "images/worker/header_size.h"

namespace tarnwick::images {

namespace {

std::string FormatName(FREE_IMAGE_FORMAT format) {
  const char* name = format == FIF_UNKNOWN ? nullptr : FreeImage_GetFormatFromFIF(format);
  return name == nullptr ? "unknown" : name == std::string_view("TARGA") ? "TGA" : name;
}

WorkerAnswer Failed(std::string reason) {
  WorkerAnswer answer;
  answer.Reason = std::move(reason);
  return answer;
}

WorkerAnswer Damaged(std::string reason) {
  WorkerAnswer answer = Failed(std::move(reason));
  answer.Damaged = true;
  return answer;
}

WorkerAnswer Done(FIBITMAP* image) {
  WorkerAnswer answer;
  answer.Done = true;
  answer.Width = static_cast<int>(FreeImage_GetWidth(image));
  answer.Height = static_cast<int>(FreeImage_GetHeight(image));
  return answer;
}

/// Why a file could not be read as `format`, with what it seems to be instead.
std::string Unreadable(FREE_IMAGE_FORMAT format, const ImageFile& file, const std::string& failure = {}) {
  const FREE_IMAGE_FORMAT content = FamiliarFormatOf(file);
  std::string reason = "the file cannot be read as a " + FormatName(format) + " image";
  const std::string& detail = failure.empty() ? LibraryMessage() : failure;
  if (content != FIF_UNKNOWN && content != format && content != FIF_TARGA) {
    reason += "; it holds a " + FormatName(content) + " image";
  } else if (!detail.empty()) {
    reason += " (" + detail + ")";
  }
  return reason;
}

/// The format of an image: what its first bytes are, whatever its name says; where they tell nothing, its name. None,
/// with the `reason`, where neither does or the format is not allowed.
FREE_IMAGE_FORMAT FormatOf(const WorkerRequest& request, const ImageFile& file, std::string& reason) {
  FREE_IMAGE_FORMAT format = FamiliarFormatOf(file);
  const FREE_IMAGE_FORMAT named = FreeImage_GetFIFFromFilename(request.Source.c_str());
  // Only a name tells a TGA file for sure, or one of the formats that are TIFF files of a special kind.
  const bool special = format == FIF_TIFF && !IsFamiliar(named);
  if (format == FIF_UNKNOWN || ((format == FIF_TARGA || special) && named != FIF_UNKNOWN)) format = named;
  if (format == FIF_UNKNOWN) reason = "its name tells no image format that is known, nor does its content";
  if (format == FIF_UNKNOWN || !request.FamiliarOnly || IsFamiliar(format)) return format;
  reason = "images of the format " + FormatName(format) + " are not read, as the settings say";
  return FIF_UNKNOWN;
}

/// Whether images of these sizes may be held at once. `reason` says why not.
bool FitsLimits(std::initializer_list<HeaderSize> sizes, std::string& reason) {
  int64_t bytes = 0;
  for (const HeaderSize& size : sizes) {
    if (size.Width > LargestSide || size.Height > LargestSide) {
      reason = "an image of " + std::to_string(size.Width) + " by " + std::to_string(size.Height) +
               " pixels is larger than " + std::to_string(LargestSide) + " on a side";
      return false;
    }
    bytes += size.Bytes();
  }
  if (bytes <= LargestPixelBytes) return true;
  reason = "the conversion needs " + std::to_string(bytes >> 20) + " MiB of pixels, more than " +
           std::to_string(LargestPixelBytes >> 20);
  return false;
}

HeaderSize SizeOf(FIBITMAP* image) {
  return {FreeImage_GetWidth(image), FreeImage_GetHeight(image), FreeImage_GetBPP(image)};
}

WorkerAnswer Save(Bitmap image, FREE_IMAGE_FORMAT format, const ImageFile& output) {
  if (format == FIF_UNKNOWN || !FreeImage_FIFSupportsWriting(format)) {
    return Failed("images cannot be written in the format " + FormatName(format));
  }
  ForgetMessages();
  image = FitToFormat(std::move(image), format);
  if (!image) return Failed("the image cannot be brought to the format " + FormatName(format));
  if (!FreeImage_SaveToHandle(format, image.get(), FileAccess(), output.Handle(), 0)) {
    const std::string detail = LibraryMessage().empty() ? "" : " (" + LibraryMessage() + ")";
    return Failed("the image cannot be written as " + FormatName(format) + detail);
  }
  if (!output.Flush()) return Failed("the result could not be written whole");
  return Done(image.get());
}

/// The size to which an image is rescaled.
HeaderSize PowerOfTwoSize(const HeaderSize& size) {
  return {RoundedToPowerOfTwo(static_cast<uint32_t>(size.Width)),
          RoundedToPowerOfTwo(static_cast<uint32_t>(size.Height)), 32};
}

bool IsPowerOfTwoSize(const HeaderSize& size) {
  return IsPowerOfTwo(static_cast<uint32_t>(size.Width)) && IsPowerOfTwo(static_cast<uint32_t>(size.Height));
}

Bitmap Rescaled(FIBITMAP* image, const HeaderSize& size, FREE_IMAGE_FILTER filter) {
  return Bitmap(FreeImage_Rescale(image, static_cast<int>(size.Width), static_cast<int>(size.Height), filter));
}

/// The size that the header of `file` tells; of formats where none can be had nothing is known, which is no fault.
std::optional<HeaderSize> KnownSize(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  return TellsSizeByHeader(format) ? ReadHeaderSize(format, file) : HeaderSize{};
}

/// Why the image in `alpha` cannot become the alpha channel of an image of the format `format` and of these sizes;
/// otherwise it is decoded into `image`.
std::string LoadAlpha(FREE_IMAGE_FORMAT format, const ImageFile& alpha, const HeaderSize& source,
                      const HeaderSize& target, Bitmap& image) {
  std::string reason;
  if (!alpha) return "it cannot be opened";
  const auto header = KnownSize(format, alpha);
  if (!header) return Unreadable(format, alpha) + ", as the source is";
  // It is as large as it likes to be only within what the source leaves.
  if (!FitsLimits({source, target, *header}, reason)) return reason;
  Decoded decoded = Decode(format, alpha);
  if (!decoded.Image) return Unreadable(format, alpha, decoded.Failure);
  if (!decoded.Damage.empty()) return decoded.Damage;
  image = std::move(decoded.Image);
  return {};
}

/// Puts the greyscale of `alpha` into the alpha channel of `image`, which gets one if it has none. False, with `image`
/// as it was, if that cannot be done.
bool ReplaceAlpha(Bitmap& image, Bitmap alpha) {
  alpha = alpha ? ToStandard(std::move(alpha)) : nullptr;
  Bitmap grey(alpha ? FreeImage_ConvertToGreyscale(alpha.get()) : nullptr);
  if (!grey) return false;
  const HeaderSize size = SizeOf(image.get());
  if (SizeOf(grey.get()).Width != size.Width || SizeOf(grey.get()).Height != size.Height) {
    grey = Rescaled(grey.get(), size, FILTER_BILINEAR);
  }
  if (!grey) return false;
  Bitmap target(FreeImage_GetBPP(image.get()) == 32 ? FreeImage_Clone(image.get())
                                                    : FreeImage_ConvertTo32Bits(image.get()));
  if (!target || !FreeImage_SetChannel(target.get(), grey.get(), FICC_ALPHA)) return false;
  image = std::move(target);
  return true;
}

WorkerAnswer ToTga(const WorkerRequest& request, const JobFiles& files) {
  std::string reason;
  const FREE_IMAGE_FORMAT format = FormatOf(request, files.Source, reason);
  if (format == FIF_UNKNOWN) return Failed(reason);
  const auto header = KnownSize(format, files.Source);
  if (!header) return Failed(Unreadable(format, files.Source));
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  const HeaderSize target = IsPowerOfTwoSize(*header) ? HeaderSize{} : PowerOfTwoSize(*header);
  if (!FitsLimits({*header, target}, reason)) return Failed(reason);

  Decoded decoded = Decode(format, files.Source);
  if (!decoded.Image) return Failed(Unreadable(format, files.Source, decoded.Failure));
  if (!decoded.Damage.empty() && !request.UseDamaged) return Damaged(decoded.Damage);
  Bitmap image = std::move(decoded.Image);
  if (!FitsLimits({SizeOf(image.get())}, reason)) return Failed(reason);  // the header was not the whole truth
  image = ToStandard(std::move(image), format);
  std::string alphaReason;
  bool alphaReplaced = false;
  if (image && !request.Alpha.empty()) {
    Bitmap alpha;
    alphaReason = LoadAlpha(format, files.Alpha, SizeOf(image.get()), target, alpha);
    alphaReplaced = alpha && ReplaceAlpha(image, std::move(alpha));
    if (!alphaReplaced && alphaReason.empty()) alphaReason = "there is not enough memory for it";
  }
  if (image && !IsPowerOfTwoSize(SizeOf(image.get()))) {
    image = Rescaled(image.get(), PowerOfTwoSize(SizeOf(image.get())), FILTER_BICUBIC);
  }
  if (!image) return Failed("there is not enough memory for the image");
  WorkerAnswer answer = Save(std::move(image), FIF_TARGA, files.Output);
  answer.AlphaReplaced = alphaReplaced;
  answer.AlphaReason = alphaReason;
  answer.Doubt = decoded.Damage;
  return answer;
}

WorkerAnswer FromTga(const WorkerRequest& request, const JobFiles& files) {
  const auto header = ReadHeaderSize(FIF_TARGA, files.Source);
  std::string reason;
  if (!header) return Failed(Unreadable(FIF_TARGA, files.Source));
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  Decoded decoded = Decode(FIF_TARGA, files.Source);
  if (!decoded.Image) return Failed(Unreadable(FIF_TARGA, files.Source));
  if (!decoded.Damage.empty() && !request.UseDamaged) return Damaged(decoded.Damage);
  WorkerAnswer answer =
      Save(std::move(decoded.Image), FreeImage_GetFIFFromFilename(request.Name.c_str()), files.Output);
  answer.Doubt = decoded.Damage;
  return answer;
}

/// The pixels as a window wants them: red, green, blue, alpha, top row first.
std::string PixelsTopDown(FIBITMAP* image) {
  const unsigned width = FreeImage_GetWidth(image);
  const unsigned height = FreeImage_GetHeight(image);
  std::string pixels;
  pixels.reserve(size_t{4} * width * height);
  for (unsigned row = height; row-- > 0;) {
    const BYTE* line = FreeImage_GetScanLine(image, static_cast<int>(row));
    for (unsigned x = 0; x < width; ++x, line += 4) {
      for (const int channel : {FI_RGBA_RED, FI_RGBA_GREEN, FI_RGBA_BLUE, FI_RGBA_ALPHA}) {
        pixels += static_cast<char>(line[channel]);
      }
    }
  }
  return pixels;
}

/// Bits of the library's flags where a JPEG image can be asked for in about that size, which costs less.
constexpr int JpegSideShift = 16;

WorkerAnswer Preview(const WorkerRequest& request, const JobFiles& files) {
  std::string reason;
  const FREE_IMAGE_FORMAT format = FormatOf(request, files.Source, reason);
  if (format == FIF_UNKNOWN) return Failed(reason);
  const auto header = KnownSize(format, files.Source);
  if (!header) return Failed(Unreadable(format, files.Source));
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  if (IsThumbnail(request) && format != FIF_JPEG && header->Bytes() > LargestThumbnailBytes) {
    return Failed("an image of " + std::to_string(header->Width) + " by " + std::to_string(header->Height) +
                  " pixels is too large for a small picture");
  }
  Decoded decoded = Decode(format, files.Source, format == FIF_JPEG ? request.Side << JpegSideShift : 0);
  if (!decoded.Image) return Failed(Unreadable(format, files.Source, decoded.Failure));
  Bitmap image = std::move(decoded.Image);
  image = ToStandard(std::move(image), format);
  const unsigned side = static_cast<unsigned>(request.Side);
  if (image && (FreeImage_GetWidth(image.get()) > side || FreeImage_GetHeight(image.get()) > side)) {
    image = Bitmap(FreeImage_MakeThumbnail(image.get(), request.Side, TRUE));
  }
  if (image) image = Bitmap(FreeImage_ConvertTo32Bits(image.get()));
  if (!image) return Failed("there is not enough memory for the image");
  WorkerAnswer answer = Done(image.get());
  answer.Payload = PixelsTopDown(image.get());
  return answer;
}

}  // namespace

WorkerAnswer RunJob(const WorkerRequest& request, const JobFiles& files) {
  HearTheLibrary();
  switch (request.Task) {
    case WorkerRequest::Job::ToTga:
      return ToTga(request, files);
    case WorkerRequest::Job::FromTga:
      return FromTga(request, files);
    case WorkerRequest::Job::Preview:
      return Preview(request, files);
    case WorkerRequest::Job::Formats:
      break;
  }
  return ListFormats();
}

WorkerAnswer ListFormats() {
  WorkerAnswer answer;
  answer.Done = true;
  for (int number = 0; number < FreeImage_GetFIFCount(); ++number) {
    const auto format = static_cast<FREE_IMAGE_FORMAT>(number);
    answer.Payload += FreeImage_GetFormatFromFIF(format);
    answer.Payload += '\t';
    answer.Payload += FreeImage_GetFIFExtensionList(format);
    answer.Payload += '\t';
    if (FreeImage_FIFSupportsReading(format)) answer.Payload += 'r';
    if (FreeImage_FIFSupportsWriting(format)) answer.Payload += 'w';
    answer.Payload += '\n';
  }
  return answer;
}

}  // namespace tarnwick::images
