#include "textures/picture.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/tga_builder.h"

namespace tarnwick::textures {
namespace {

using tests::PictureOf;

TEST(MipChain, HalvesEachSideDownToOnePixel) {
  const auto chain = MipChain(PictureOf(8, 2,
                                        [](int x, int y) {
                                          const auto value = static_cast<uint8_t>(10 * x + 100 * y);
                                          return Bgra{value, 0, 0, static_cast<uint8_t>(x)};
                                        }),
                              PictureKind::Colour);
  ASSERT_EQ(chain.size(), 4u);
  EXPECT_EQ(chain[1].Width, 4);
  EXPECT_EQ(chain[1].Height, 1);
  EXPECT_EQ(chain[1].Pixels[1], (Bgra{75, 0, 0, 3}));  // of 20, 30, 120, 130 and of 2, 3, 2, 3
  EXPECT_EQ(chain[2].Width, 2);
  EXPECT_EQ(chain[2].Pixels[1], (Bgra{105, 0, 0, 6}));
  EXPECT_EQ(chain[3].Width, 1);
  EXPECT_EQ(chain[3].Height, 1);
}

TEST(MipChain, KeepsNormalsAtUnitLength) {
  // Two directions that lean 60 degrees to either side: their mean points straight out.
  const Bgra left{191, 128, 17, 10};
  const Bgra right{191, 128, 238, 20};
  const auto chain =
      MipChain(PictureOf(2, 2, [&](int x, int) { return x == 0 ? left : right; }), PictureKind::NormalMap);
  EXPECT_EQ(chain[1].Pixels[0], (Bgra{255, 129, 128, 15}));  // green 128 leans a little, more so at full length
  EXPECT_LT(MipChain(chain[0], PictureKind::Colour)[1].Pixels[0].B, 200);
}

TEST(Reflectivity, IsTheMeanInLinearLight) {
  const auto half = PictureOf(2, 1, [](int x, int) { return x == 0 ? Bgra{255, 0, 128, 0} : Bgra{0, 0, 128, 255}; });
  const auto mean = Reflectivity(half);
  EXPECT_FLOAT_EQ(mean[0], std::pow(128 / 255.0f, 2.2f));
  EXPECT_FLOAT_EQ(mean[1], 0);
  EXPECT_FLOAT_EQ(mean[2], 0.5f);
}

}  // namespace
}  // namespace tarnwick::textures
