#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "support/pixel_reference.h"
#include "support/tga_builder.h"
#include "textures/dds_format.h"
#include "textures/dds_reader.h"
#include "textures/dds_writer.h"

namespace tarnwick::textures {
namespace {

using ::testing::HasSubstr;

std::optional<DdsPicture> Read(const std::string& file, std::string& reason) {
  return ReadDds(core::ImageView(std::as_bytes(std::span(file))), reason);
}

/// The file of these levels.
std::string FileOf(std::span<const StoredImage> levels) {
  std::string file;
  EXPECT_TRUE(WriteDds(levels, [&](std::string_view bytes) {
    file += bytes;
    return true;
  }));
  return file;
}

TEST(Dds, HoldsEveryFormatOfItsListPixelForPixel) {
  int held = 0;
  for (int number = 0; number <= 26; ++number) {
    const PixelFormat format{number};
    if (!DdsHolds(format)) continue;
    ++held;
    SCOPED_TRACE(PixelFormatName(format));
    std::string pixels(static_cast<size_t>(ImageBytes(*FindPixelFormat(format), 8, 4)), '\0');
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<char>(37 * i + 11);
    const StoredImage image{format, 8, 4, std::as_bytes(std::span(pixels))};
    const std::string file = FileOf(std::span(&image, 1));
    EXPECT_EQ(file.size(), sizeof(DdsHeader) + pixels.size());
    std::string reason;
    const auto read = Read(file, reason);
    ASSERT_TRUE(read) << reason;
    EXPECT_EQ(read->MissingBytes, 0);
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 8; ++x) {
        const Bgra got = read->Image.Pixels[static_cast<size_t>(8 * y + x)];
        const Bgra expected = tests::ReferencePixel(image, x, y);
        // Channels of 5 and 6 bits are stretched by repeating or by rounding: one apart at most.
        EXPECT_NEAR(got.R, expected.R, 1);
        EXPECT_NEAR(got.G, expected.G, 1);
        EXPECT_NEAR(got.B, expected.B, 1);
        EXPECT_EQ(got.A, expected.A);
      }
    }
  }
  EXPECT_GE(held, 15);
}

TEST(Dds, WritesAllLevelsAndSaysSo) {
  const std::string large(16, 'a'), small(8, 'b');
  const StoredImage levels[] = {{PixelFormat::Dxt1, 8, 4, std::as_bytes(std::span(large))},
                                {PixelFormat::Dxt1, 4, 2, std::as_bytes(std::span(small))}};
  const std::string file = FileOf(levels);
  DdsHeader header;
  std::memcpy(&header, file.data(), sizeof header);
  EXPECT_EQ(header.MipLevels, 2u);
  EXPECT_EQ(header.PitchOrSize, 16u);
  EXPECT_EQ(file.substr(sizeof header), large + small);
}

TEST(Dds, CompressesAPictureAsItsAlphaAsks) {
  for (const int alpha : {255, 40}) {
    const Picture picture = tests::PictureOf(8, 8, [&](int x, int) {
      return Bgra{10, 200, static_cast<uint8_t>(x * 20), static_cast<uint8_t>(alpha)};
    });
    std::string file, reason;
    ASSERT_TRUE(WriteDds(picture, [&](std::string_view bytes) {
      file += bytes;
      return true;
    }));
    EXPECT_EQ(file.substr(84, 4), alpha == 255 ? "DXT1" : "DXT5");
    const auto read = Read(file, reason);
    ASSERT_TRUE(read) << reason;
    EXPECT_EQ(read->HoldsAlpha, alpha != 255);
    EXPECT_EQ(read->Image.Pixels[0].A, alpha);
    EXPECT_NEAR(read->Image.Pixels[7].R, 140, 12);
  }
}

TEST(Dds, TellsHowMuchIsMissingAndWhatItCannotRead) {
  const std::string pixels(32, 'x');
  const StoredImage image{PixelFormat::Dxt5, 8, 4, std::as_bytes(std::span(pixels))};
  const std::string sound = FileOf(std::span(&image, 1));
  std::string reason;
  const auto cut = Read(sound.substr(0, sound.size() - 5), reason);
  ASSERT_TRUE(cut);
  EXPECT_EQ(cut->MissingBytes, 5);
  EXPECT_EQ(cut->WantedBytes, 32);

  const auto changed = [&](size_t offset, std::string_view bytes) {
    return std::string(sound).replace(offset, bytes.size(), bytes);
  };
  const struct {
    std::string File;
    const char* Reason;
  } cases[] = {
      {"DDS", "does not start as a DDS file"},
      {changed(84, "ATI2"), "images of the kind \"ATI2\""},
      {changed(84, "DX10").substr(0, 140), "ends inside its header"},
      {changed(84, "DX10"), "images of format"},
      {changed(16, std::string(4, '\0')), "size of 0 by 4 pixels"},
      {changed(12, "\xFF\xFF\xFF\x7F"), "cannot be read"},
  };
  for (const auto& test : cases) {
    EXPECT_FALSE(Read(test.File, reason));
    EXPECT_THAT(reason, HasSubstr(test.Reason));
  }
}

}  // namespace
}  // namespace tarnwick::textures
