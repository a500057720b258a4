#include "conversion_fixture.h"
#include "images/image_format.h"
#include "images/known_formats.h"

namespace tarnwick::tests {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

TEST_F(ConversionTest, RoundsEachSideUpToAPowerOfTwoAndNamesTheFormat) {
  const struct {
    const char* Name;
    int Width, Height, NewWidth, NewHeight;
    const char* Line;
  } cases[] = {
      {"a.png", 256, 100, 256, 128, "Converting a.png from PNG to TGA\r\n"},
      {"b.bmp", 300, 513, 512, 1024, "Converting b.bmp from BMP to TGA\r\n"},
      {"c.jpg", 64, 64, 64, 64, "Converting c.jpg from JPEG to TGA\r\n"},
      {"d.tiff", 1, 3, 1, 4, "Converting d.tiff from TIFF to TGA\r\n"},
      {"e.tga", 5, 8, 8, 8, "Converting e.tga from "},  // a word only for the other operation
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Name);
    Report = {};
    WriteImage(Folder.Path(test.Name), Gradient(test.Width, test.Height));
    const std::string tga = ToTga(Folder.Path(test.Name));
    EXPECT_EQ(tga, Out(std::filesystem::path(test.Name).stem().string() + ".tga"));
    EXPECT_EQ(Report.LogText, test.Line);
    const TestImage image = ReadImage(tga);
    EXPECT_EQ(image.Width, test.NewWidth);
    EXPECT_EQ(image.Height, test.NewHeight);
    // Stretched, not cropped or padded: the gradient still runs from one end to the other.
    EXPECT_NEAR(image.At(image.Width - 1, 0).Red, 255 * (test.Width - 1) / test.Width, 12);
    EXPECT_NEAR(image.At(0, image.Height - 1).Green, 255 * (test.Height - 1) / test.Height, 12);
  }
  EXPECT_THAT(Report.Boxes, testing::IsEmpty());
}

TEST_F(ConversionTest, KeepsEveryPixelOfAPowerOfTwoImage) {
  const TestImage source = Gradient(64, 32, 32);
  WriteImage(Folder.Path("plain.png"), source);
  const TestImage image = ReadImage(ToTga(Folder.Path("plain.png")));
  EXPECT_EQ(image.Depth, 32);
  EXPECT_EQ(image.Pixels, source.Pixels);
}

TEST_F(ConversionTest, BringsDeepColoursToEightBits) {
  WriteDeepImage(Folder.Path("deep.png"), 16, 16, {200, 100, 50});
  const TestImage image = ReadImage(ToTga(Folder.Path("deep.png")));
  EXPECT_EQ(image.Depth, 24);
  EXPECT_EQ(image.At(3, 3), (Rgba{200, 100, 50}));
}

TEST_F(ConversionTest, LeavesAFileAloneThatIsItsOwnDestination) {
  WriteImage(Out("Skin.TGA"), Gradient(48, 48));
  const std::string before = ReadText(Out("Skin.TGA"));
  std::string typed = Out("Skin.TGA");
  typed[typed.rfind('/')] = '\\';
  EXPECT_EQ(ToTga(typed), ToldImage(Out("Skin.TGA")));
  EXPECT_EQ(Report.LogText, "WARNING, Source and destination files are the same, file is not checked\r\n");

  Report = {};
  EXPECT_EQ(ToTgaWithAlpha(Out("Skin.TGA"), Out("Skin.TGA")), ToldImage(Out("Skin.TGA")));
  EXPECT_EQ(Report.LogText, "WARNING, Source and destination files are the same, file is unmodified\r\n");

  // The same file by another road would be read and overwritten at once.
  std::filesystem::rename(Out("Skin.TGA"), Out("skin.tga"));
#ifdef _WIN32  // which lets not everybody make other links
  std::filesystem::create_hard_link(Out("skin.tga"), Folder.Path("skin.tga"));
#else
  std::filesystem::create_symlink(Out("skin.tga"), Folder.Path("skin.tga"));
#endif
  EXPECT_EQ(ToTga(Folder.Path("skin.tga")), ToldImage(Folder.Path("skin.tga")));
  EXPECT_EQ(ReadText(Out("skin.tga")), before);
}

TEST_F(ConversionTest, NamesTheDestinationInSmallLettersAndReadsTheSourceInItsOwn) {
  const std::string wall = Folder.Path() + "/Über Wand 2.V3.png", made = Folder.Path() + "/out/Über wand 2.v3.tga";
  WriteImage(wall, Gradient(8, 8));
  EXPECT_EQ(ToTga(wall), made);
  EXPECT_THAT(Report.LogText, HasSubstr("Converting " + ToldImage("Über Wand 2.V3.png") + " from "));
  ReadImage(made);
}

TEST_F(ConversionTest, PutsTheGreyOfASecondImageIntoTheAlphaChannel) {
  // The left half of the mask is pure green, whose grey is not 255; the right half is white.
  WriteImage(Folder.Path("mask.png"), MakeImage(16, 16, 24, [](int x, int) {
               return x < 8 ? Rgba{0, 255, 0} : Rgba{255, 255, 255};
             }));
  for (const int depth : {24, 32}) {
    SCOPED_TRACE(depth);
    Report = {};
    WriteImage(Folder.Path("base.png"), Gradient(64, 64, depth));
    const TestImage image = ReadImage(ToTgaWithAlpha(Folder.Path("base.png"), Folder.Path("mask.png")));
    EXPECT_EQ(image.Depth, 32);
    EXPECT_NEAR(image.At(5, 20).Alpha, 0.7152 * 255, 2);
    EXPECT_EQ(image.At(60, 20).Alpha, 255);
    EXPECT_EQ(image.At(60, 20).Red, Gradient(64, 64).At(60, 20).Red);
    EXPECT_EQ(Report.LogText,
              "Converting base.png from PNG to TGA\r\nReplacing Alpha Channel in base.png from mask.png\r\n");
  }
}

TEST_F(ConversionTest, KeepsItsAlphaWhenTheAlphaImageCannotBeReadInTheSourcesFormat) {
  WriteImage(Folder.Path("base.png"), Gradient(32, 32, 32));
  WriteImage(Folder.Path("mask.bmp"), Gradient(32, 32, 24));
  for (const char* mask : {"mask.bmp", "missing.png", ""}) {
    SCOPED_TRACE(mask);
    const std::string tga = ToTgaWithAlpha(Folder.Path("base.png"), *mask ? Folder.Path(mask) : "");
    EXPECT_EQ(ReadImage(tga).Pixels, Gradient(32, 32, 32).Pixels);
  }
  WriteImage(Folder.Path("photo.jpg"), Gradient(32, 32, 24));
  EXPECT_EQ(ReadImage(ToTgaWithAlpha(Folder.Path("photo.jpg"), Folder.Path("base.png"))).Depth, 24);
  EXPECT_THAT(Report.Boxes, testing::IsEmpty());
}

TEST_F(ConversionTest, TellsWhyAnAlphaImageWasNotUsed) {
  WriteImage(Folder.Path("photo.jpg"), Gradient(32, 32, 24));
  WriteImage(Folder.Path("mask.png"), Gradient(32, 32, 24));
  WriteImage(Folder.Path("cut.jpg"), Gradient(64, 64, 24));
  const std::string whole = ReadText(Folder.Path("cut.jpg"));
  WriteText(Folder.Path("cut.jpg"), whole.substr(0, whole.size() * 3 / 4));
  const struct {
    const char* Mask;
    const char* Reason;
  } cases[] = {
      {"mask.png", "mask.png was not used: the file cannot be read as a JPEG image; it holds a PNG image, as the"},
      {"missing.jpg", "missing.jpg was not used: it cannot be opened"},
      {"cut.jpg", "cut.jpg was not used: the file is damaged (Premature end of JPEG file)"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Mask);
    Report = {};
    EXPECT_EQ(ReadImage(ToTgaWithAlpha(Folder.Path("photo.jpg"), Folder.Path(test.Mask))).Depth, 24);
    EXPECT_THAT(Report.LogText,
                HasSubstr(std::string("WARNING, the alpha channel of photo.jpg stays, for ") + test.Reason));
    ASSERT_EQ(Report.Troubles.size(), 1u);
    EXPECT_EQ(Report.Troubles[0].Level, core::Severity::Warning);
    EXPECT_EQ(Report.Troubles[0].File, Folder.Path(test.Mask));
  }
}

TEST_F(ConversionTest, ReadsAnImageAsWhatItsContentIs) {
  WriteImage(Folder.Path("photo.jpg"), Gradient(8, 8));
  std::filesystem::rename(Folder.Path("photo.jpg"), Folder.Path("photo.png"));
  EXPECT_EQ(ReadImage(ToTga(Folder.Path("photo.png"))).Width, 8);
  WriteImage(Folder.Path("brick.png"), Gradient(8, 4));
  std::filesystem::rename(Folder.Path("brick.png"), Folder.Path("brick"));
  EXPECT_EQ(ReadImage(ToTga(Folder.Path("brick"))).At(7, 3).Red, Gradient(8, 4).At(7, 3).Red);
  EXPECT_THAT(Report.Troubles, testing::IsEmpty());
}

TEST_F(ConversionTest, ReadsUncommonFormatsUnlessTheUserWantsLessToTrust) {
  for (const char* name : {"a.jp2", "a.ppm", "a.xpm", "a.png"}) {
    SCOPED_TRACE(name);
    if (!HasFormat(name)) continue;  // its codec is left out on Windows
    Report = {};
    WriteImage(Folder.Path(name), Gradient(64, 64));
    Worker.ReadFamiliarOnly(false);
    EXPECT_EQ(ToTga(Folder.Path(name)), Out("a.tga"));
    Worker.ReadFamiliarOnly(true);
    const bool familiar = std::string_view(name) == "a.png";
    EXPECT_EQ(ToTga(Folder.Path(name)), familiar ? Out("a.tga") : "");
    EXPECT_EQ(Report.LogText.find("are not read, as the settings say") == std::string::npos, familiar);
  }
}

TEST_F(ConversionTest, WritesDdsFilesThatItReadsAgain) {
  for (const bool transparent : {false, true}) {
    SCOPED_TRACE(transparent);
    Report = {};
    WriteImage(Folder.Path("t.tga"), MakeImage(16, 8, 32, [&](int x, int) {
                 return Rgba{200, 100, 50, static_cast<uint8_t>(transparent && x < 8 ? 0 : 255)};
               }));
    EXPECT_TRUE(ToImage(Folder.Path("t.tga"), Out("t.dds")));
    EXPECT_EQ(Report.LogText, "Converting t.tga from TGA to DDS\r\n");
    EXPECT_EQ(ReadText(Out("t.dds")).substr(84, 4), transparent ? "DXT5" : "DXT1");
    std::filesystem::create_directory(Folder.Path("back"));
    const TestImage image = ReadImage(images::ConvertToTga(Out("t.dds"), Folder.Path("back"), Context()));
    EXPECT_EQ(image.Depth, transparent ? 32 : 24);
    EXPECT_NEAR(image.At(12, 4).Red, 200, 6);
    EXPECT_EQ(image.At(4, 4).Alpha, transparent ? 0 : 255);
  }
}

TEST_F(ConversionTest, WritesATgaInTheFormatOfTheName) {
  WriteImage(Folder.Path("t.tga"), MakeImage(48, 48, 32, [](int x, int) {
               return x < 24 ? Rgba{250, 10, 10, 255} : Rgba{10, 10, 250, 0};
             }));
  const struct {
    const char* Name;
    const char* Line;
    int Depth;
  } cases[] = {
      {"t.bmp", "TGA to BMP\r\n", 32},  {"t.ico", "TGA to ICO\r\n", 32},
      {"t.jpg", "TGA to JPEG\r\n", 24}, {"t.png", "TGA to PNG\r\n", 32},
      {"t.tif", "TGA to TIFF\r\n", 32}, {"t.psd", "TGA to PSD\r\n", 32},
      {"t.gif", "TGA to GIF\r\n", 8},   {"t.webp", "", 32},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Name);
    Report = {};
    EXPECT_TRUE(ToImage(Folder.Path("t.tga"), Out(test.Name)));
    EXPECT_EQ(Report.LogText, std::string("Converting t.tga from ") + test.Line);
    const TestImage image = ReadImage(Out(test.Name));
    EXPECT_EQ(image.Width, 48);
    EXPECT_EQ(image.Height, 48);
    EXPECT_EQ(image.Depth, test.Depth);
    EXPECT_NEAR(image.At(8, 10).Red, 250, 6);
    EXPECT_EQ(image.At(40, 10).Alpha, test.Depth == 24 ? 255 : 0) << "the transparent half";
  }
}

TEST_F(ConversionTest, ConvertsNothingToTga) {
  WriteImage(Folder.Path("t.tga"), Gradient(8, 8));
  EXPECT_FALSE(ToImage(Folder.Path("t.tga"), Out("other.TGA")));
  EXPECT_EQ(Report.LogText, "");
  EXPECT_THAT(Folder.Files(), ElementsAre("t.tga"));
}

TEST_F(ConversionTest, KnowsTheNamedFormatsAsTheWorkerDoes) {
  const auto formats = images::KnownFormats(Worker);
  int named = 0;
  for (size_t number = 0; number < formats.size(); ++number) {
    for (const std::string& ending : formats[number].Endings) {
      const images::ImageFormat* format = images::FormatOfFileName(ending);
      if (format == nullptr) continue;
      EXPECT_EQ(format->Number, static_cast<int>(number)) << ending;
      ++named;
    }
  }
  EXPECT_EQ(named, 15) << "every ending of a named format is known";
  std::string reason;
  EXPECT_THAT(images::KnownFormats(images::ImageWorker("/nowhere"), &reason), testing::IsEmpty());
  EXPECT_THAT(reason, HasSubstr("/nowhere cannot be started"));
}

}  // namespace

}  // namespace tarnwick::tests
