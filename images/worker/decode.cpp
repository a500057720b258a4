#include "images/worker/decode.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "core/image_view.h"
#include "images/worker/bmp_reader.h"
#include "images/worker/tga_damage.h"
#include "textures/dds_reader.h"
#include "textures/tga_reader.h"

namespace tarnwick::images {

namespace {

std::string& Message() {
  static std::string message;
  return message;
}

/// Decoders that ask for just what they need: one that gets less has met the end of the file too early. The others fill
/// buffers of their own and always run into the end.
constexpr FREE_IMAGE_FORMAT Exact[] = {FIF_PNG, FIF_BMP, FIF_GIF, FIF_TIFF, FIF_PSD, FIF_EXR, FIF_HDR, FIF_ICO};

/// What the library warns of though every pixel is there.
constexpr std::string_view Harmless[] = {
    "extraneous bytes before marker",
    "unknown JFIF revision",
    "Unknown Adobe color transform",
    "Inconsistent progression",
    "Invalid SOS parameters",
    "too many scanlines",
    "unknown tag",
    "unknown field with tag",
    "EXIF",
};

constexpr std::string_view NoMemory = "there is not enough memory for the image";

std::string WarningOf(std::string_view message) {
  const bool harmless = message.empty() || std::any_of(std::begin(Harmless), std::end(Harmless), [&](auto part) {
                          return message.find(part) != std::string_view::npos;
                        });
  return harmless ? "" : "the file is damaged (" + std::string(message) + ")";
}

Decoded DecodeByLibrary(FREE_IMAGE_FORMAT format, const ImageFile& file, int flags) {
  Decoded decoded;
  if (format == FIF_TARGA) decoded.Damage = TgaDamage(file);
  file.Rewind();
  ImageFile::ForgetShortReads();
  decoded.Image.reset(FreeImage_LoadFromHandle(format, FileAccess(), file.Handle(), flags));
  if (!decoded.Image || !decoded.Damage.empty()) return decoded;
  decoded.Damage = WarningOf(Message());
  if (decoded.Damage.empty() && ImageFile::ShortReads() > 0 &&
      std::find(std::begin(Exact), std::end(Exact), format) != std::end(Exact)) {
    decoded.Damage = "the file ends early: not all of its pixels are there";
  }
  return decoded;
}

std::vector<char> ReadWhole(const ImageFile& file) {
  std::vector<char> bytes;
  std::fseek(file.Handle(), 0, SEEK_END);
  bytes.resize(static_cast<size_t>(std::max(std::ftell(file.Handle()), 0L)));
  file.Rewind();
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.Handle()));
  return bytes;
}

/// The picture with 24 or 32 bits a pixel.
Bitmap BitmapOf(const textures::Picture& picture, bool withAlpha) {
  Bitmap bitmap(FreeImage_Allocate(picture.Width, picture.Height, 32));
  if (!bitmap) return bitmap;
  const textures::Bgra* pixel = picture.Pixels.data();
  for (int y = picture.Height - 1; y >= 0; --y) {
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), y);
    for (int x = 0; x < picture.Width; ++x, ++pixel, line += 4) {
      line[FI_RGBA_RED] = pixel->R;
      line[FI_RGBA_GREEN] = pixel->G;
      line[FI_RGBA_BLUE] = pixel->B;
      line[FI_RGBA_ALPHA] = pixel->A;
    }
  }
  return withAlpha ? std::move(bitmap) : Bitmap(FreeImage_ConvertTo24Bits(bitmap.get()));
}

Decoded DecodeDds(const ImageFile& file) {
  Decoded decoded;
  const std::vector<char> bytes = ReadWhole(file);
  const auto dds = textures::ReadDds(core::ImageView(std::as_bytes(std::span(bytes))), decoded.Failure);
  if (!dds) return decoded;
  decoded.Image = BitmapOf(dds->Image, dds->HoldsAlpha);
  if (!decoded.Image) decoded.Failure = std::string(NoMemory);
  if (dds->MissingBytes > 0) decoded.Damage = EndsEarly(dds->WantedBytes, dds->WantedBytes - dds->MissingBytes);
  return decoded;
}

/// Decodes a run-length encoded TGA file without the library, which misreads runs that cross the end of a row. No image
/// for any other file, and for a damaged one.
Decoded DecodeTgaRuns(const ImageFile& file) {
  constexpr size_t KindAt = 2;
  constexpr size_t BitsAt = 16;
  constexpr char RunLengths = 8;
  Decoded decoded;
  char head[BitsAt + 1];
  file.Rewind();
  if (std::fread(head, 1, sizeof head, file.Handle()) < sizeof head || (head[KindAt] & RunLengths) == 0) return decoded;
  const std::vector<char> bytes = ReadWhole(file);
  const auto picture = textures::ReadTga(core::ImageView(std::as_bytes(std::span(bytes))), decoded.Failure);
  if (picture) decoded.Image = BitmapOf(*picture, head[BitsAt] == 32 || textures::UsesAlpha(*picture));
  return decoded;
}

/// A number with commas between the thousands.
std::string Grouped(int64_t value) {
  std::string text = std::to_string(value);
  for (int64_t at = static_cast<int64_t>(text.size()) - 3; at > 0; at -= 3) {
    text.insert(static_cast<size_t>(at), ",");
  }
  return text;
}

}  // namespace

void HearTheLibrary() {
  FreeImage_SetOutputMessage([](FREE_IMAGE_FORMAT, const char* message) { Message() = message; });
}

std::string LibraryMessage() {
  return Message();
}

void ForgetMessages() {
  Message().clear();
}

std::string EndsEarly(int64_t wantedBytes, int64_t bytesThere) {
  return "the file ends early: its header speaks of " + Grouped(wantedBytes) + " bytes of pixels, " +
         Grouped(bytesThere) + " are there";
}

Decoded Decode(FREE_IMAGE_FORMAT format, const ImageFile& file, int flags) {
  ForgetMessages();
  if (format == FIF_DDS) return DecodeDds(file);
  if (format == FIF_TARGA) {
    if (Decoded runs = DecodeTgaRuns(file); runs.Image) return runs;
  }
  if (format == FIF_BMP && OwnBmpSize(file)) return ReadOwnBmp(file);
  return DecodeByLibrary(format, file, flags);
}

}  // namespace tarnwick::images
