#include "images/tga_path.h"

#include <gtest/gtest.h>

#include "images/image_format.h"
#include "images/power_of_two.h"

namespace tarnwick::tests {

namespace {

TEST(TgaPath, TakesTheNameBehindTheLastSeparatorAndItsLastDot) {
  EXPECT_EQ(images::TgaPath("C:\\Art\\Brick_N.PNG", "/game\\materialsrc\\props"),
            "/game\\materialsrc\\props/brick_n.tga");
  EXPECT_EQ(images::TgaPath("/art.v2/brick", "/out"), "/out/brick.tga");
  EXPECT_EQ(images::TgaPath("a.b.c.jpg", "out"), "out/a.b.c.tga");
  EXPECT_EQ(images::TgaPath("/brick.png", "out"), "out//brick.tga") << "a separator at the very start is not seen";
}

TEST(ImageFormat, GoesByTheEndingInAnyCase) {
  EXPECT_EQ(images::FormatOfFileName("/a.b/Photo.JPG")->Word, "JPEG");
  EXPECT_EQ(images::FormatOfFileName("x.targa")->Word, "TGA");
  EXPECT_EQ(images::FormatOfFileName("x.tif")->Number, 18);
  EXPECT_EQ(images::FormatOfFileName("x.vmt"), nullptr);
  EXPECT_EQ(images::FormatOfFileName("x."), nullptr);
}

TEST(PowerOfTwo, RoundsUpAndNeverDown) {
  EXPECT_EQ(images::RoundedToPowerOfTwo(300), 512u);
  EXPECT_EQ(images::RoundedToPowerOfTwo(513), 1024u);
  EXPECT_EQ(images::RoundedToPowerOfTwo(512), 512u);
  EXPECT_EQ(images::RoundedToPowerOfTwo(1), 1u);
  EXPECT_TRUE(images::IsPowerOfTwo(0));
}

}  // namespace

}  // namespace tarnwick::tests
