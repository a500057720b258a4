#include "textures/tga_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/tga_builder.h"

namespace tarnwick::textures {
namespace {

using ::testing::HasSubstr;
using tests::TgaFile;
using tests::TgaHeaderOf;

std::optional<Picture> Read(const std::string& file, std::string& reason) {
  return ReadTga(core::ImageView(std::as_bytes(std::span(file))), reason);
}

std::vector<Bgra> PixelsOf(const std::string& file) {
  std::string reason;
  const auto picture = Read(file, reason);
  EXPECT_TRUE(picture) << reason;
  return picture ? picture->Pixels : std::vector<Bgra>();
}

constexpr Bgra Blue{255, 0, 0, 255}, Green{0, 255, 0, 255}, Red{0, 0, 255, 255};

TEST(ReadTga, ReadsEveryKindOfPixel) {
  TgaHeader header = TgaHeaderOf(TgaTrueColour, 24, 1, 1);
  EXPECT_EQ(PixelsOf(TgaFile(header, "abc"))[0], (Bgra{'a', 'b', 'c', 255}));
  header.PixelBits = 32;
  EXPECT_EQ(PixelsOf(TgaFile(header, "abcd"))[0], (Bgra{'a', 'b', 'c', 'd'}));
  header.PixelBits = 16;
  EXPECT_EQ(PixelsOf(TgaFile(header, "\x1F\x40"))[0], (Bgra{255, 0, 0x84, 255}));
  header.Descriptor |= 1;
  EXPECT_EQ(PixelsOf(TgaFile(header, "\x1F\x40"))[0].A, 0);
  EXPECT_EQ(PixelsOf(TgaFile(header, "\x1F\xC0"))[0].A, 255);
  header.PixelBits = 15;
  EXPECT_EQ(PixelsOf(TgaFile(header, "\x1F\x40"))[0].A, 255);

  EXPECT_EQ(PixelsOf(TgaFile(TgaHeaderOf(TgaGrey, 8, 1, 1), "g"))[0], (Bgra{'g', 'g', 'g', 255}));
  EXPECT_EQ(PixelsOf(TgaFile(TgaHeaderOf(TgaGrey, 16, 1, 1), "ga"))[0], (Bgra{'g', 'g', 'g', 'a'}));
}

TEST(ReadTga, ReadsColourMapsThatStartAtAnyNumber) {
  TgaHeader header = TgaHeaderOf(TgaColourMapped, 8, 2, 1);
  header.IdLength = 3;
  header.HasColourMap = 1;
  header.ColourMapFirst = 5;
  header.ColourMapLength = 2;
  header.ColourMapBits = 24;
  const std::string map("id:\xFF\0\0\0\xFF\0", 9);
  EXPECT_EQ(PixelsOf(TgaFile(header, "\x6\x5", map)), (std::vector<Bgra>{Green, Blue}));

  std::string reason;
  EXPECT_FALSE(Read(TgaFile(header, "\x4\x5", map), reason));
  EXPECT_THAT(reason, HasSubstr("refers to colour 4"));
  header.PixelBits = 16;
  EXPECT_EQ(PixelsOf(TgaFile(header, std::string("\x6\0\x6\0", 4), map)), (std::vector<Bgra>{Green, Green}));
  // A map that a true colour image brings along is passed over.
  header.ImageType = TgaTrueColour;
  header.PixelBits = 24;
  EXPECT_EQ(PixelsOf(TgaFile(header, "abcdef", map))[1], (Bgra{'d', 'e', 'f', 255}));
}

TEST(ReadTga, TurnsTheFirstPixelIntoTheUpperLeftCorner) {
  const std::string pixels = "abcdef";
  const auto firstRowFrom = [&](int descriptor) {
    TgaHeader header = TgaHeaderOf(TgaGrey, 8, 2, 3);
    header.Descriptor = static_cast<uint8_t>(descriptor);
    std::string order;
    for (const Bgra& pixel : PixelsOf(TgaFile(header, pixels))) order += static_cast<char>(pixel.B);
    return order;
  };
  EXPECT_EQ(firstRowFrom(TgaTopToBottom), "abcdef");
  EXPECT_EQ(firstRowFrom(TgaTopToBottom | TgaRightToLeft), "badcfe");
  EXPECT_EQ(firstRowFrom(0), "efcdab");
  EXPECT_EQ(firstRowFrom(TgaRightToLeft), "fedcba");
}

TEST(ReadTga, ReadsRunsThatGoOnInTheNextRow) {
  const TgaHeader header = TgaHeaderOf(TgaTrueColour | TgaRunLength, 24, 3, 2);
  const std::string runs("\x82\xFF\0\0\x01\0\xFF\0\0\0\xFF\x80\xFF\0\0", 15);  // 3 blue, green, red, blue
  EXPECT_EQ(PixelsOf(TgaFile(header, runs)), (std::vector<Bgra>{Blue, Blue, Blue, Green, Red, Blue}));
  // A run that is longer than what is left of the image ends with it.
  EXPECT_EQ(PixelsOf(TgaFile(header, std::string("\xFF\xFF\0\0", 4))), std::vector<Bgra>(6, Blue));
  std::string reason;
  EXPECT_FALSE(Read(TgaFile(header, runs.substr(0, 10)), reason));
  EXPECT_EQ(reason, "the file ends early: it holds 3 of 6 pixels");
}

TEST(ReadTga, TakesAnUnusedFourthByteForOpaque) {
  TgaHeader header = TgaHeaderOf(TgaTrueColour, 32, 2, 1);
  EXPECT_EQ(PixelsOf(TgaFile(header, std::string("abc\0def\0", 8)))[1].A, 255);
  EXPECT_EQ(PixelsOf(TgaFile(header, std::string("abc\0def\1", 8)))[0].A, 0);
  header.Descriptor |= 8;
  EXPECT_EQ(PixelsOf(TgaFile(header, std::string("abc\0def\0", 8)))[1].A, 0);
}

TEST(ReadTga, TellsWhatIsWrongWithADamagedFile) {
  struct Case {
    const char* Reason;
    TgaHeader Header;
  };
  TgaHeader mapWithoutFlag = TgaHeaderOf(TgaColourMapped, 8, 1, 1);
  TgaHeader mapOfSevenBits = mapWithoutFlag;
  mapOfSevenBits.HasColourMap = 1;
  mapOfSevenBits.ColourMapBits = 7;
  TgaHeader longMap = mapOfSevenBits;
  longMap.ColourMapBits = 24;
  longMap.ColourMapLength = 65535;
  TgaHeader interleaved = TgaHeaderOf(TgaTrueColour, 24, 1, 1);
  interleaved.Descriptor |= 0x40;
  const Case cases[] = {
      {"holds no image", TgaHeaderOf(0, 24, 1, 1)},
      {"unknown type (number 32)", TgaHeaderOf(32, 24, 1, 1)},
      {"8 bits a pixel do not go with image type 2", TgaHeaderOf(TgaTrueColour, 8, 1, 1)},
      {"24 bits a pixel do not go with image type 3", TgaHeaderOf(TgaGrey, 24, 1, 1)},
      {"no colour map", mapWithoutFlag},
      {"entries of 7 bits", mapOfSevenBits},
      {"ends inside its colour map", longMap},
      {"interleaved", interleaved},
      {"no pixels (0 x 1)", TgaHeaderOf(TgaTrueColour, 24, 0, 1)},
      {"too large (65535 x 65535", TgaHeaderOf(TgaTrueColour, 32, 65535, 65535)},
      {"too short for its 268435456 pixels", TgaHeaderOf(TgaTrueColour, 32, 16384, 16384)},
      {"too short for its 268435456 pixels", TgaHeaderOf(TgaTrueColour | TgaRunLength, 32, 16384, 16384)},
  };
  for (const Case& damaged : cases) {
    SCOPED_TRACE(damaged.Reason);
    std::string reason;
    EXPECT_FALSE(Read(TgaFile(damaged.Header, std::string(100, '\x80')), reason));
    EXPECT_THAT(reason, HasSubstr(damaged.Reason));
  }
  std::string reason;
  EXPECT_FALSE(Read("TGA", reason));
  EXPECT_THAT(reason, HasSubstr("too short for a TGA image (3 bytes)"));
}

}  // namespace
}  // namespace tarnwick::textures
