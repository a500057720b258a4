#include "textures/vtf_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/vtf_builder.h"

namespace tarnwick::textures {
namespace {

using ::testing::HasSubstr;
using tests::VtfBuilder;

std::optional<VtfFile> Open(const std::string& file, std::string& reason) {
  return VtfFile::Open(core::ImageView(std::as_bytes(std::span(file))), reason);
}

int FirstByte(const VtfFile& file, const VtfImagePlace& place) {
  return std::to_integer<int>(file.Image(place)[0]);
}

TEST(VtfFile, FindsTheImagesBehindTheHeaderOfEachVersion) {
  for (int minor = 0; minor <= 5; ++minor) {
    SCOPED_TRACE(minor);
    const std::string bytes = VtfBuilder().Version(minor).Size(8, 8).Mips(4).LowImage('L').Build();
    std::string reason;
    const auto file = Open(bytes, reason);
    ASSERT_TRUE(file) << reason;
    EXPECT_EQ(file->Info().MinorVersion, minor);
    EXPECT_EQ(file->Info().LowWidth, 8);
    ASSERT_EQ(file->LowImage().size(), 32u);
    EXPECT_EQ(file->LowImage()[31], std::byte{'L'});
    EXPECT_EQ(file->Image({.Mip = 0}).size(), 64u);
    EXPECT_EQ(FirstByte(*file, {.Mip = 0}), 1 + 4 + 16);
    EXPECT_EQ(FirstByte(*file, {.Mip = 3}), 0);
  }
}

TEST(VtfFile, FindsTheImagesBehindTheHeaderWhereTheTableOfResourcesIsEmpty) {
  for (const int minor : {3, 4, 5}) {
    SCOPED_TRACE(minor);
    const std::string bytes = VtfBuilder().Version(minor).NoResources().Size(8, 8).Mips(4).LowImage('L').Build();
    std::string reason;
    const auto file = Open(bytes, reason);
    ASSERT_TRUE(file) << reason;
    ASSERT_EQ(file->LowImage().size(), 32u);
    EXPECT_EQ(file->LowImage()[0], std::byte{'L'});
    EXPECT_EQ(FirstByte(*file, {.Mip = 3}), 0);
    EXPECT_EQ(FirstByte(*file, {.Mip = 0}), 1 + 4 + 16);
    EXPECT_FALSE(Open(bytes.substr(0, bytes.size() - 1), reason));
    EXPECT_THAT(reason, HasSubstr("runs past the end"));
  }
}

TEST(VtfFile, WalksLevelsThenFramesThenFacesThenSlices) {
  const std::string cube = VtfBuilder().Size(2, 2).Mips(2).Frames(2).EnvironmentMap(0).Build();
  const std::string cubeWithoutSphere = VtfBuilder().Size(2, 2).Mips(2).Frames(2).EnvironmentMap(0xFFFF).Build();
  const std::string volume = VtfBuilder().Size(2, 2, 4).Mips(2).Frames(2).Build();
  std::string reason;

  auto file = Open(cube, reason);
  ASSERT_TRUE(file) << reason;
  EXPECT_EQ(file->Info().Faces, 7);
  EXPECT_EQ(FirstByte(*file, {.Mip = 1, .Frame = 1, .Face = 3}), 7 + 3);
  EXPECT_EQ(FirstByte(*file, {.Mip = 0, .Frame = 1, .Face = 6}), 14 + 4 * (7 + 6));

  file = Open(cubeWithoutSphere, reason);
  ASSERT_TRUE(file) << reason;
  EXPECT_EQ(file->Info().Faces, 6);
  EXPECT_EQ(FirstByte(*file, {.Mip = 0, .Frame = 1, .Face = 0}), 12 + 4 * 6);

  file = Open(volume, reason);
  ASSERT_TRUE(file) << reason;
  EXPECT_EQ(file->Info().Depth, 4);
  EXPECT_EQ(FirstByte(*file, {.Mip = 1, .Frame = 1, .Slice = 1}), 3);
  EXPECT_EQ(FirstByte(*file, {.Mip = 0, .Frame = 1, .Slice = 2}), 4 + 4 * (4 + 2));
}

TEST(VtfFile, TellsWhatIsWrongWithADamagedFile) {
  struct Case {
    const char* Reason;
    std::string Bytes;
  };
  const auto with = [](auto change) {
    VtfBuilder builder;
    change(builder.Header());
    return builder.Pixels(std::string(16, 'x')).Build();
  };
  const std::string sound = VtfBuilder().Size(64, 64).Format(PixelFormat::Dxt5).Build();
  std::string withoutImage = VtfBuilder().Version(3).Build();
  withoutImage[80] = 2;
  const Case cases[] = {
      {"too short for a texture (0 bytes)", ""},
      {"too short for a texture (63 bytes)", sound.substr(0, 63)},
      {"does not start with VTF", "PNG" + sound.substr(3)},
      {"version 7.6 is not known", with([](VtfHeader& h) { h.MinorVersion = 6; })},
      {"version 8.2 is not known", with([](VtfHeader& h) { h.MajorVersion = 8; })},
      {"header's size is given as 64 bytes", with([](VtfHeader& h) { h.HeaderSize = 64; })},
      {"header's size is given as 4,000 bytes", with([](VtfHeader& h) { h.HeaderSize = 4000; })},
      {"no pixels (0 x 4)", with([](VtfHeader& h) { h.Width = 0; })},
      {"no frames", with([](VtfHeader& h) { h.Frames = 0; })},
      {"4 mip levels; an image of 4 x 4 has 1 to 3", with([](VtfHeader& h) { h.MipLevels = 4; })},
      {"unknown format (number 27)", with([](VtfHeader& h) { h.Format = 27; })},
      {"format P8 cannot be read", with([](VtfHeader& h) { h.Format = 7; })},
      {"unknown format (number 99)", with([](VtfHeader& h) {
         h.LowFormat = 99;
         h.LowWidth = h.LowHeight = 4;
       })},
      {"at byte 80 runs past the end of the file (4,175 bytes)", sound.substr(0, sound.size() - 1)},
      // The product of these numbers does not fit into 64 bits.
      {"runs past the end of the file (96 bytes)", with([](VtfHeader& h) {
         h.Width = h.Height = h.Depth = h.Frames = 0xFFFF;
         h.Format = static_cast<int32_t>(PixelFormat::Rgba16161616F);
         h.Flags = VtfEnvironmentMap;
         h.MipLevels = 16;
       })},
      {"(1,000,000 entries) does not fit", with([](VtfHeader& h) {
         h.MinorVersion = 4;
         h.ResourceCount = 1'000'000;
       })},
      {"no entry for the image", withoutImage},
  };
  for (const Case& damaged : cases) {
    SCOPED_TRACE(damaged.Reason);
    std::string reason;
    EXPECT_FALSE(Open(damaged.Bytes, reason));
    EXPECT_THAT(reason, HasSubstr(damaged.Reason));
  }
}

TEST(VtfFile, ReadsTheImageThoughTheLowResolutionImageIsBeyondTheEnd) {
  std::string bytes = VtfBuilder().Version(4).LowImage('L').Build();
  bytes.replace(84, 4, "\xFF\xFF\xFF\x7F");
  std::string reason;
  const auto file = Open(bytes, reason);
  ASSERT_TRUE(file) << reason;
  EXPECT_TRUE(file->LowImage().empty());
  EXPECT_EQ(file->Info().LowFormat, PixelFormat::None);
  EXPECT_EQ(FirstByte(*file, {}), 0);
}

}  // namespace
}  // namespace tarnwick::textures
