#include <random>

#include "conversion_fixture.h"

namespace tarnwick::tests {

namespace {

/// `bytes` with a few of them changed, cut off or doubled; always in the same way for the same seed.
std::string Damaged(std::string bytes, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](size_t end) { return random() % end; };
  if (seed % 3 == 0) bytes.resize(below(bytes.size()));
  for (size_t change = 0; change < 1 + seed % 5 && !bytes.empty(); ++change) {
    // Headers are where the sizes stand, so most changes go there.
    const size_t end = below(4) == 0 ? bytes.size() : std::min<size_t>(bytes.size(), 64);
    bytes[below(end)] = static_cast<char>(below(3) == 0 ? 255 : random());
  }
  return bytes;
}

TEST_F(ConversionTest, EndsEveryDamagedImageInAFileOrABox) {
  for (const std::string ending : {"png", "jpg", "bmp", "tga", "gif", "tif"}) {
    const std::string name = "x." + ending;
    WriteImage(Folder.Path(name), Gradient(40, 24, ending == "gif" ? 8 : 24));
    const std::string sound = ReadText(Folder.Path(name));
    for (unsigned seed = 0; seed < 12; ++seed) {
      SCOPED_TRACE(ending + " with seed " + std::to_string(seed));
      Report = {};
      WriteText(Folder.Path(name), Damaged(sound, seed));
      const std::string tga = ToTga(Folder.Path(name));
      EXPECT_EQ(Report.Boxes.size(), tga.empty() ? 1u : 0u);
      if (!tga.empty()) {
        const TestImage image = ReadImage(tga);
        EXPECT_TRUE(image.Width > 0 && (image.Width & (image.Width - 1)) == 0);
        std::filesystem::remove(tga);
      }
      EXPECT_THAT(Folder.Files(), testing::ElementsAre(name));
    }
    std::filesystem::remove(Folder.Path(name));
  }
}

}  // namespace

}  // namespace tarnwick::tests
