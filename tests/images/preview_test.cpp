#include "images/preview.h"

#include "conversion_fixture.h"

namespace tarnwick::tests {

namespace {

TEST_F(ConversionTest, ShrinksALargeImageForAWindowAndKeepsASmallOne) {
  WriteImage(Folder.Path("wide.jpg"), Gradient(400, 100));
  const auto wide = images::LoadPreview(Folder.Path("wide.jpg"), 64, Worker);
  ASSERT_TRUE(wide);
  EXPECT_EQ(wide->Width, 64);
  EXPECT_EQ(wide->Height, 16);

  const TestImage source = MakeImage(2, 2, 32, [](int x, int y) {
    return Rgba{10, static_cast<uint8_t>(x), static_cast<uint8_t>(y), 77};
  });
  WriteImage(Folder.Path("misnamed.png"), source);
  std::filesystem::rename(Folder.Path("misnamed.png"), Folder.Path("misnamed.jpg"));
  const auto small = images::LoadPreview(Folder.Path("misnamed.jpg"), 64, Worker);
  ASSERT_TRUE(small);
  EXPECT_EQ(small->Pixels, (std::vector<uint8_t>{10, 0, 0, 77, 10, 1, 0, 77, 10, 0, 1, 77, 10, 1, 1, 77}));

  std::string reason;
  // 64 MiB of pixels are told by the header alone.
  std::string huge(18, '\0');
  huge[2] = 2;
  huge[13] = huge[15] = 16;
  huge[16] = 32;
  WriteText(Folder.Path("huge.tga"), huge);
  EXPECT_FALSE(images::LoadPreview(Folder.Path("huge.tga"), 64, Worker, &reason));
  EXPECT_THAT(reason, testing::HasSubstr("4096 by 4096 pixels is too large for a small picture"));

  WriteText(Folder.Path("x.vtf"), "VTF");
  EXPECT_FALSE(images::LoadPreview(Folder.Path("x.vtf"), 64, Worker, &reason));
  EXPECT_THAT(reason, testing::HasSubstr("its name tells no image format that is known, nor does its content"));
}

}  // namespace

}  // namespace tarnwick::tests
