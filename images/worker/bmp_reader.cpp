#include "images/worker/bmp_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace tarnwick::images {

namespace {

constexpr uint32_t FileHeaderSize = 14;
constexpr uint32_t ShortHeader = 40;
constexpr uint32_t LongestHeader = 124;

enum Compression : uint32_t { Plain = 0, Runs8 = 1, Runs4 = 2, Masks = 3, MasksWithAlpha = 6 };

#pragma pack(push, 1)
/// The start of a BMP file, little-endian. The fields from RedMask on are there where HeaderSize covers them.
struct BmpHeader {
  char Signature[2];  // "BM"
  uint32_t FileSize;
  uint8_t Reserved[4];
  uint32_t PixelOffset;
  uint32_t HeaderSize;  // from here on
  int32_t Width;
  int32_t Height;  // negative: the topmost row first
  uint16_t Planes;
  uint16_t Bits;
  uint32_t Compression;
  uint32_t PixelBytes;
  int32_t Resolution[2];
  uint32_t Colours;  // of the palette; 0: as many as the bits allow
  uint32_t Important;
  uint32_t RedMask;
  uint32_t GreenMask;
  uint32_t BlueMask;
  uint32_t AlphaMask;
};
#pragma pack(pop)
static_assert(sizeof(BmpHeader) == FileHeaderSize + 56);

using Palette = std::array<RGBQUAD, 256>;

/// The header, if it is one that is read here. Fields that it does not cover are 0.
std::optional<BmpHeader> ReadHeader(const ImageFile& file) {
  BmpHeader header{};
  file.Rewind();
  const size_t size = std::fread(&header, 1, sizeof header, file.Handle());
  if (size < FileHeaderSize + ShortHeader || std::memcmp(header.Signature, "BM", 2) != 0) return std::nullopt;
  const bool isLong = header.HeaderSize == 52 || header.HeaderSize == 56 || header.HeaderSize == 108 ||
                      header.HeaderSize == LongestHeader;
  const bool runs = header.Compression == Runs8 || header.Compression == Runs4;
  if (!isLong && !(header.HeaderSize == ShortHeader && runs)) return std::nullopt;
  if (header.HeaderSize < 52) header.RedMask = header.GreenMask = header.BlueMask = 0;
  if (header.HeaderSize < 56) header.AlphaMask = 0;
  const bool masked = header.Compression == Masks || header.Compression == MasksWithAlpha;
  if (masked && header.RedMask == 0 && header.GreenMask == 0 && header.BlueMask == 0) return std::nullopt;
  if (!masked) {
    const bool narrow = header.Bits == 16;
    header.RedMask = narrow ? 0x7C00 : 0xFF0000;
    header.GreenMask = narrow ? 0x3E0 : 0xFF00;
    header.BlueMask = narrow ? 0x1F : 0xFF;
    header.AlphaMask = 0;
  }
  return header;
}

int64_t Rows(const BmpHeader& header) {
  return std::abs(int64_t{header.Height});
}

/// What is wrong with a header of the right kind.
std::string Fault(const BmpHeader& header) {
  constexpr uint16_t KnownBits[] = {1, 4, 8, 16, 24, 32};
  const bool known = std::find(std::begin(KnownBits), std::end(KnownBits), header.Bits) != std::end(KnownBits);
  const bool fits = header.Compression == Plain || (header.Compression == Runs8 && header.Bits == 8) ||
                    (header.Compression == Runs4 && header.Bits == 4) ||
                    ((header.Compression == Masks || header.Compression == MasksWithAlpha) &&
                     (header.Bits == 16 || header.Bits == 32));
  if (known && fits) return {};
  return "a BMP image of " + std::to_string(header.Bits) + " bits with compression " +
         std::to_string(header.Compression) + " cannot be read";
}

Palette ReadPalette(const BmpHeader& header, const ImageFile& file) {
  Palette palette{};
  if (header.Bits > 8) return palette;
  const uint32_t most = 1u << header.Bits;
  const uint32_t count = header.Colours == 0 ? most : std::min(header.Colours, most);
  std::fseek(file.Handle(), static_cast<long>(FileHeaderSize) + static_cast<long>(header.HeaderSize), SEEK_SET);
  if (std::fread(palette.data(), sizeof(RGBQUAD), count, file.Handle()) < count) return palette;  // the rest is black
  return palette;
}

/// `channel` of `mask` in `word`, stretched to 0 to 255.
BYTE Channel(uint32_t word, uint32_t mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  const uint64_t largest = mask >> shift;
  return static_cast<BYTE>((uint64_t{(word & mask) >> shift} * 255 + largest / 2) / largest);
}

/// The line of the bitmap that row `row` of the file goes to.
BYTE* Line(FIBITMAP* image, const BmpHeader& header, int64_t row) {
  const int64_t line = header.Height < 0 ? Rows(header) - 1 - row : row;
  return FreeImage_GetScanLine(image, static_cast<int>(line));
}

void Put(BYTE* pixel, const RGBQUAD& colour) {
  pixel[FI_RGBA_RED] = colour.rgbRed;
  pixel[FI_RGBA_GREEN] = colour.rgbGreen;
  pixel[FI_RGBA_BLUE] = colour.rgbBlue;
}

void DecodeRow(const BmpHeader& header, const Palette& palette, const BYTE* stored, BYTE* line) {
  const BYTE step = header.AlphaMask != 0 ? 4 : 3;
  for (int64_t x = 0; x < header.Width; ++x, line += step) {
    if (header.Bits <= 8) {
      const int64_t bit = x * header.Bits;
      const unsigned shift = 8u - header.Bits - static_cast<unsigned>(bit % 8);
      Put(line, palette[static_cast<unsigned>(stored[bit / 8]) >> shift & ((1u << header.Bits) - 1)]);
      continue;
    }
    uint32_t word = 0;
    std::memcpy(&word, stored + x * (header.Bits / 8), header.Bits / 8u);
    line[FI_RGBA_RED] = Channel(word, header.RedMask);
    line[FI_RGBA_GREEN] = Channel(word, header.GreenMask);
    line[FI_RGBA_BLUE] = Channel(word, header.BlueMask);
    if (step == 4) line[FI_RGBA_ALPHA] = Channel(word, header.AlphaMask);
  }
}

/// Reads rows as they stand. Tells how many bytes of pixels the file lacks.
int64_t ReadPlain(const BmpHeader& header, const Palette& palette, const ImageFile& file, FIBITMAP* image) {
  const int64_t used = (int64_t{header.Width} * header.Bits + 7) / 8;
  std::vector<BYTE> stored(static_cast<size_t>((used + 3) / 4 * 4));
  for (int64_t row = 0; row < Rows(header); ++row) {
    const size_t read = std::fread(stored.data(), 1, stored.size(), file.Handle());
    std::fill(stored.begin() + static_cast<ptrdiff_t>(read), stored.end(), BYTE{0});
    DecodeRow(header, palette, stored.data(), Line(image, header, row));
    // What fills up the last row may be missing.
    if (read < static_cast<size_t>(used)) {
      return used - static_cast<int64_t>(read) + (Rows(header) - 1 - row) * static_cast<int64_t>(stored.size());
    }
  }
  return 0;
}

/// Run-length encoded pixels, one at a time: where the next one goes, and whether it is inside.
class RunReader {
 public:
  RunReader(const BmpHeader& header, const Palette& palette, const ImageFile& file, FIBITMAP* image)
      : m_header(header), m_palette(palette), m_file(file.Handle()), m_image(image) {}

  /// False if the file ended before the end of the image was told or reached.
  bool Read() {
    while (m_row < Rows(m_header)) {
      const int count = std::getc(m_file);
      const int value = std::getc(m_file);
      if (value == EOF) return m_row == Rows(m_header) - 1 && m_column >= m_header.Width;
      if (count > 0) {
        for (int i = 0; i < count; ++i) PutIndex(value, i);
      } else if (value == 0) {
        NextRow();
      } else if (value == 1) {
        return true;
      } else if (value == 2) {
        m_column += std::max(std::getc(m_file), 0);
        m_row += std::max(std::getc(m_file), 0);
      } else if (!ReadLiteral(value)) {
        return false;
      }
    }
    return true;
  }

 private:
  bool IsNibbles() const { return m_header.Compression == Runs4; }

  /// The next pixel from the byte `value`, which in images of 4 bits holds two colours in turn.
  void PutIndex(int value, int turn) {
    const int index = !IsNibbles() ? value : turn % 2 == 0 ? value >> 4 : value & 15;
    if (m_column < m_header.Width) {
      Put(Line(m_image, m_header, m_row) + m_column * 3, m_palette[static_cast<size_t>(index)]);
    }
    ++m_column;
  }

  /// `count` pixels as they are, filled up to whole words.
  bool ReadLiteral(int count) {
    const int bytes = IsNibbles() ? (count + 1) / 2 : count;
    int byte = 0;
    for (int i = 0; i < count; ++i) {
      if (!IsNibbles() || i % 2 == 0) byte = std::getc(m_file);
      if (byte == EOF) return false;
      PutIndex(byte, i);
    }
    if (bytes % 2 != 0) std::getc(m_file);
    return true;
  }

  void NextRow() {
    ++m_row;
    m_column = 0;
  }

  const BmpHeader& m_header;
  const Palette& m_palette;
  FILE* m_file;
  FIBITMAP* m_image;
  int64_t m_row = 0;
  int64_t m_column = 0;
};

/// Writers that set a mask for alpha and leave every alpha 0 mean an opaque image.
Bitmap WithoutUnusedAlpha(Bitmap image) {
  for (unsigned y = 0; y < FreeImage_GetHeight(image.get()); ++y) {
    const BYTE* line = FreeImage_GetScanLine(image.get(), static_cast<int>(y));
    for (unsigned x = 0; x < FreeImage_GetWidth(image.get()); ++x) {
      if (line[4 * x + FI_RGBA_ALPHA] != 0) return image;
    }
  }
  return Bitmap(FreeImage_ConvertTo24Bits(image.get()));
}

}  // namespace

std::optional<HeaderSize> OwnBmpSize(const ImageFile& file) {
  const auto header = ReadHeader(file);
  if (!header) return std::nullopt;
  return HeaderSize{header->Width, Rows(*header), header->AlphaMask != 0 ? 32 : 24};
}

Decoded ReadOwnBmp(const ImageFile& file) {
  Decoded decoded;
  const auto header = ReadHeader(file);
  if (!header) return decoded;
  decoded.Failure = Fault(*header);
  if (!decoded.Failure.empty()) return decoded;
  const Palette palette = ReadPalette(*header, file);
  decoded.Image.reset(
      FreeImage_Allocate(header->Width, static_cast<int>(Rows(*header)), header->AlphaMask != 0 ? 32 : 24));
  if (!decoded.Image) {
    decoded.Failure = "there is not enough memory for the image";
    return decoded;
  }
  std::fseek(file.Handle(), static_cast<long>(header->PixelOffset), SEEK_SET);
  if (header->Compression == Runs8 || header->Compression == Runs4) {
    if (!RunReader(*header, palette, file, decoded.Image.get()).Read()) {
      decoded.Damage = "the file ends early: not all of its rows are there";
    }
    return decoded;
  }
  const int64_t missing = ReadPlain(*header, palette, file, decoded.Image.get());
  const int64_t wanted = (int64_t{header->Width} * header->Bits + 31) / 32 * 4 * Rows(*header);
  if (missing > 0) decoded.Damage = EndsEarly(wanted, wanted - missing);
  if (header->AlphaMask != 0) decoded.Image = WithoutUnusedAlpha(std::move(decoded.Image));
  return decoded;
}

}  // namespace tarnwick::images
