#include <cstring>

#include "conversion_fixture.h"

namespace tarnwick::tests {

namespace {

/// Makes BMP files as editors write them.
class BmpBuilder {
 public:
  BmpBuilder(uint32_t headerSize, int width, int height, int bits)
      : m_headerSize(headerSize), m_width(width), m_height(height), m_bits(bits) {}

  BmpBuilder& Compression(uint32_t number) {
    m_compression = number;
    return *this;
  }
  BmpBuilder& Masks(uint32_t red, uint32_t green, uint32_t blue, uint32_t alpha) {
    m_masks = {red, green, blue, alpha};
    return Compression(3);
  }
  /// A palette of greys: colour i is i, i, 255 - i.
  BmpBuilder& Greys() {
    for (int i = 0; i < 1 << m_bits; ++i) {
      m_palette += {static_cast<char>(255 - i), static_cast<char>(i), static_cast<char>(i), 0};
    }
    return *this;
  }
  std::string Build(const std::string& pixels) const {
    std::string header;
    Put(header, m_headerSize);
    Put(header, static_cast<uint32_t>(m_width));
    Put(header, static_cast<uint32_t>(m_height));
    Put(header, 1u | static_cast<uint32_t>(m_bits) << 16);
    Put(header, m_compression);
    Put(header, static_cast<uint32_t>(pixels.size()));
    for (int i = 0; i < 4; ++i) Put(header, 0);
    if (m_headerSize > 40) {
      for (const uint32_t mask : m_masks) Put(header, mask);
    }
    header.resize(m_headerSize);
    std::string file = "BM";
    const auto offset = static_cast<uint32_t>(14 + header.size() + m_palette.size());
    Put(file, offset + static_cast<uint32_t>(pixels.size()));
    Put(file, 0);
    Put(file, offset);
    return file + header + m_palette + pixels;
  }

 private:
  static void Put(std::string& text, uint32_t value) {
    char bytes[4];
    std::memcpy(bytes, &value, 4);
    text.append(bytes, 4);
  }
  uint32_t m_headerSize;
  int m_width, m_height, m_bits;
  uint32_t m_compression = 0;
  std::array<uint32_t, 4> m_masks{};
  std::string m_palette;
};

class BmpTest : public ConversionTest {
 protected:
  TestImage Convert(const std::string& file) {
    WriteText(Folder.Path("x.bmp"), file);
    const std::string tga = ToTga(Folder.Path("x.bmp"));
    EXPECT_EQ(tga, Out("x.tga")) << Report.LogText;
    return tga.empty() ? TestImage{} : ReadImage(tga);
  }
};

/// Pixels of `bytes` bytes, the lowest row first, in rows of whole words.
std::string Rows(int width, int height, const std::function<std::string(int x, int y)>& pixel) {
  std::string all;
  for (int y = height - 1; y >= 0; --y) {
    std::string row;
    for (int x = 0; x < width; ++x) row += pixel(x, y);
    row.resize((row.size() + 3) / 4 * 4);
    all += row;
  }
  return all;
}

TEST_F(BmpTest, ReadsTheLongerHeaders) {
  const std::string rgb = Rows(4, 2, [](int x, int y) {
    return std::string{static_cast<char>(30), static_cast<char>(y * 20), static_cast<char>(x * 10)};
  });
  const std::string rgba = Rows(4, 2, [](int x, int y) {
    return std::string{static_cast<char>(x * 10), static_cast<char>(y * 20), 30, static_cast<char>(100 + x)};
  });
  const std::string noAlpha = Rows(4, 2, [](int x, int y) {
    return std::string{static_cast<char>(x * 10), static_cast<char>(y * 20), 30, 0};
  });
  for (const uint32_t size : {108u, 124u}) {
    SCOPED_TRACE(size);
    TestImage image = Convert(BmpBuilder(size, 4, 2, 24).Build(rgb));
    EXPECT_EQ(image.Depth, 24);
    EXPECT_EQ(image.At(3, 0), (Rgba{30, 0, 30}));
    EXPECT_EQ(image.At(0, 1), (Rgba{0, 20, 30}));
    // Red lies in the lowest byte by these masks.
    image = Convert(BmpBuilder(size, 4, 2, 32).Masks(0xFF, 0xFF00, 0xFF0000, 0xFF000000).Build(rgba));
    EXPECT_EQ(image.Depth, 32);
    EXPECT_EQ(image.At(3, 1), (Rgba{30, 20, 30, 103}));
    image = Convert(BmpBuilder(size, 4, 2, 32).Masks(0xFF, 0xFF00, 0xFF0000, 0xFF000000).Build(noAlpha));
    EXPECT_EQ(image.Depth, 24) << "an alpha of 0 everywhere is none";
    image = Convert(BmpBuilder(size, 4, 2, 16).Masks(0xF800, 0x7E0, 0x1F, 0).Build(Rows(4, 2, [](int x, int) {
      return x == 1 ? std::string("\x00\xF8", 2) : std::string("\xE0\x07", 2);
    })));
    EXPECT_EQ(image.At(1, 0), (Rgba{255, 0, 0}));
    EXPECT_EQ(image.At(2, 1), (Rgba{0, 255, 0}));
  }
  const TestImage topDown = Convert(BmpBuilder(124, 4, -2, 24).Build(rgb));
  EXPECT_EQ(topDown.At(0, 0), (Rgba{0, 20, 30}));
  EXPECT_EQ(Convert(BmpBuilder(56, 4, 2, 32).Masks(0xFF, 0xFF00, 0xFF0000, 0xFF000000).Build(rgba)).At(1, 0),
            (Rgba{10, 0, 30, 101}));
  const TestImage palette = Convert(BmpBuilder(108, 8, 1, 4).Greys().Build(std::string("\x01\x23\x45\x67", 4)));
  EXPECT_EQ(palette.At(6, 0), (Rgba{6, 6, 249}));
}

TEST_F(BmpTest, ReadsRunLengths) {
  using namespace std::string_literals;
  for (const uint32_t size : {40u, 124u}) {
    SCOPED_TRACE(size);
    // Rows from the lowest: a run and three literal pixels filled up to a word; nothing but a jump; an open row.
    const TestImage image =
        Convert(BmpBuilder(size, 8, 4, 8)
                    .Compression(1)
                    .Greys()
                    .Build("\5\x07\0\3\x01\x02\x03\0\0\0"s + "\0\2\4\0"s + "\4\x09\0\0"s + "\2\x05\0\1"s));
    EXPECT_EQ(image.At(0, 3), (Rgba{7, 7, 248}));
    EXPECT_EQ(image.At(4, 3), (Rgba{7, 7, 248}));
    EXPECT_EQ(image.At(5, 3), (Rgba{1, 1, 254}));
    EXPECT_EQ(image.At(7, 3), (Rgba{3, 3, 252}));
    EXPECT_EQ(image.At(3, 2), (Rgba{0, 0, 0})) << "jumped over";
    EXPECT_EQ(image.At(4, 2), (Rgba{9, 9, 246}));
    EXPECT_EQ(image.At(1, 1), (Rgba{5, 5, 250}));
    EXPECT_EQ(image.At(2, 1), (Rgba{0, 0, 0}));
    EXPECT_EQ(image.At(0, 0), (Rgba{0, 0, 0}));
    const TestImage nibbles =
        Convert(BmpBuilder(size, 8, 1, 4).Compression(2).Greys().Build("\3\x12\0\5\x34\x56\x70\0\0\1"s));
    const int expected[] = {1, 2, 1, 3, 4, 5, 6, 7};
    for (int x = 0; x < 8; ++x) EXPECT_EQ(nibbles.At(x, 0).Red, expected[x]);
  }
}

TEST_F(BmpTest, TellsWhatIsMissingOrUnknown) {
  const std::string pixels(48, 'x');
  const std::string sound = BmpBuilder(124, 4, 4, 24).Build(pixels);
  using namespace std::string_literals;
  const struct {
    std::string File;
    const char* Reason;
  } cases[] = {
      {sound.substr(0, sound.size() - 20), "its header speaks of 48 bytes of pixels, 28 are there"},
      {BmpBuilder(124, 8, 4, 8).Compression(1).Greys().Build("\x08\x07\0\0\x08"s), "not all of its rows are there"},
      {BmpBuilder(124, 8, 4, 24).Compression(4).Build(pixels), "24 bits with compression 4 cannot be read"},
      {BmpBuilder(124, 0, 4, 24).Build(pixels), "the file cannot be read as a BMP image"},
      {BmpBuilder(108, 20000, 1, 24).Build(pixels), "larger than 16384 on a side"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Reason);
    Report = {};
    WriteText(Folder.Path("x.bmp"), test.File);
    EXPECT_EQ(ToTga(Folder.Path("x.bmp")), "");
    EXPECT_THAT(Report.LogText, testing::HasSubstr(test.Reason));
  }
}

}  // namespace

}  // namespace tarnwick::tests
