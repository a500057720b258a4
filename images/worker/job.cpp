#include "images/worker/job.h"

#include <algorithm>
#include <array>

#include "images/limits.h"
#include "images/power_of_two.h"
#include "images/worker/bitmap_fit.h"
#include "images/worker/header_size.h"

namespace tarnwick::images {

namespace {

/// The last thing that the library had to say.
std::string& LibraryMessage() {
  static std::string message;
  return message;
}

std::string FormatName(FREE_IMAGE_FORMAT format) {
  const char* name = format == FIF_UNKNOWN ? nullptr : FreeImage_GetFormatFromFIF(format);
  return name == nullptr ? "unknown" : name == std::string_view("TARGA") ? "TGA" : name;
}

WorkerAnswer Failed(std::string reason) {
  WorkerAnswer answer;
  answer.Reason = std::move(reason);
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
std::string Unreadable(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  file.Rewind();
  const FREE_IMAGE_FORMAT content = FreeImage_GetFileTypeFromHandle(FileAccess(), file.Handle(), 0);
  std::string reason = "the file cannot be read as a " + FormatName(format) + " image";
  if (content != FIF_UNKNOWN && content != format)
    reason += "; it holds a " + FormatName(content) + " image";
  else if (!LibraryMessage().empty())
    reason += " (" + LibraryMessage() + ")";
  return reason;
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

Bitmap Load(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  LibraryMessage().clear();
  file.Rewind();
  return Bitmap(FreeImage_LoadFromHandle(format, FileAccess(), file.Handle(), 0));
}

WorkerAnswer Save(Bitmap image, FREE_IMAGE_FORMAT format, const ImageFile& output) {
  if (format == FIF_UNKNOWN || !FreeImage_FIFSupportsWriting(format)) {
    return Failed("images cannot be written in the format " + FormatName(format));
  }
  LibraryMessage().clear();
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
  const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(request.Source.c_str());
  if (format == FIF_UNKNOWN) return Failed("its name tells no image format that is known");
  const auto header = ReadHeaderSize(format, files.Source);
  if (!header) return Failed(Unreadable(format, files.Source));
  std::string reason;
  // The alpha image is as large as it likes to be only within what the source leaves.
  auto alphaHeader = files.Alpha ? ReadHeaderSize(format, files.Alpha) : std::nullopt;
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  const HeaderSize target = IsPowerOfTwoSize(*header) ? HeaderSize{} : PowerOfTwoSize(*header);
  if (!FitsLimits({*header, target}, reason)) return Failed(reason);
  if (alphaHeader && !FitsLimits({*header, target, *alphaHeader}, reason)) alphaHeader.reset();

  Bitmap image = Load(format, files.Source);
  if (!image) return Failed(Unreadable(format, files.Source));
  if (!FitsLimits({SizeOf(image.get())}, reason)) return Failed(reason);  // the header was not the whole truth
  image = ToStandard(std::move(image));
  const bool alphaReplaced = image && alphaHeader && ReplaceAlpha(image, Load(format, files.Alpha));
  if (image && !IsPowerOfTwoSize(SizeOf(image.get()))) {
    image = Rescaled(image.get(), PowerOfTwoSize(SizeOf(image.get())), FILTER_BICUBIC);
  }
  if (!image) return Failed("there is not enough memory for the image");
  WorkerAnswer answer = Save(std::move(image), FIF_TARGA, files.Output);
  answer.AlphaReplaced = alphaReplaced;
  return answer;
}

WorkerAnswer FromTga(const WorkerRequest& request, const JobFiles& files) {
  const auto header = ReadHeaderSize(FIF_TARGA, files.Source);
  std::string reason;
  if (!header) return Failed(Unreadable(FIF_TARGA, files.Source));
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  Bitmap image = Load(FIF_TARGA, files.Source);
  if (!image) return Failed(Unreadable(FIF_TARGA, files.Source));
  return Save(std::move(image), FreeImage_GetFIFFromFilename(request.Name.c_str()), files.Output);
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

WorkerAnswer Preview(const WorkerRequest& request, const JobFiles& files) {
  FREE_IMAGE_FORMAT format = FreeImage_GetFileTypeFromHandle(FileAccess(), files.Source.Handle(), 0);
  if (format == FIF_UNKNOWN) format = FreeImage_GetFIFFromFilename(request.Source.c_str());
  if (format == FIF_UNKNOWN) return Failed("neither its name nor its content tells an image format that is known");
  const auto header = ReadHeaderSize(format, files.Source);
  std::string reason;
  if (!header) return Failed(Unreadable(format, files.Source));
  if (!FitsLimits({*header}, reason)) return Failed(reason);
  Bitmap image = Load(format, files.Source);
  if (!image) return Failed(Unreadable(format, files.Source));
  image = ToStandard(std::move(image));
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
  FreeImage_SetOutputMessage([](FREE_IMAGE_FORMAT, const char* message) { LibraryMessage() = message; });
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
