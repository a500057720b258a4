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

/// A file of each format that gives an image though it is cut off.
const char* const Forgiving[] = {"x.jpg", "x.bmp", "x.tga", "x.dds", "x.ico"};

class CutImageTest : public ConversionTest {
 protected:
  /// Writes an image under that name and cuts it off at three quarters.
  void WriteCut(const std::string& name) {
    const std::string path = Folder.Path(name);
    WriteImage(Folder.Path("x.tga"), Gradient(64, 64));
    if (name == "x.dds") {
      ASSERT_TRUE(ToImage(Folder.Path("x.tga"), path));
    } else if (name != "x.tga") {
      WriteImage(path, Gradient(64, 64));
    }
    const std::string whole = ReadText(path);
    WriteText(path, whole.substr(0, whole.size() * 3 / 4));
    Report = {};
  }
};

TEST_F(CutImageTest, IsAnErrorThatNamesTheFileAndTheCause) {
  for (const std::string name : Forgiving) {
    SCOPED_TRACE(name);
    WriteCut(name);
    EXPECT_EQ(ToTga(Folder.Path(name)), "");
    ASSERT_EQ(Report.Troubles.size(), 1u);
    const core::Trouble& trouble = Report.Troubles[0];
    EXPECT_EQ(trouble.Kind, core::TroubleKind::Damaged);
    EXPECT_EQ(trouble.File, ToldImage(Folder.Path(name)));
    EXPECT_EQ(trouble.Text, "Unable to create TGA file " + Out("x.tga") + "\n");
    EXPECT_THAT(trouble.Details, testing::StartsWith(name + ": the file "));
    EXPECT_THAT(Report.LogText, testing::HasSubstr(trouble.Details));
    EXPECT_FALSE(std::filesystem::exists(Out("x.tga")));
  }
}

TEST_F(CutImageTest, IsUsedAllTheSameWhereTheUserSaysSo) {
  for (const std::string name : Forgiving) {
    SCOPED_TRACE(name);
    WriteCut(name);
    bool answer = false;
    std::vector<images::DamagedImage> asked;
    images::ConversionContext context = Context();
    context.MayUseDamaged = [&](const images::DamagedImage& question) {
      asked.push_back(question);
      return answer;
    };
    EXPECT_EQ(images::ConvertToTga(Folder.Path(name), Folder.Path("out"), context), "");
    EXPECT_THAT(Report.Boxes, testing::IsEmpty()) << "the question was the box";
    answer = true;
    EXPECT_EQ(images::ConvertToTga(Folder.Path(name), Folder.Path("out"), context), Out("x.tga"));
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[1].Source, ToldImage(Folder.Path(name)));
    EXPECT_EQ(asked[1].Caption, "TGA Error");
    ASSERT_EQ(Report.Troubles.size(), 1u);
    EXPECT_EQ(Report.Troubles[0].Level, core::Severity::Warning);
    EXPECT_EQ(Report.Troubles[0].Text, name + " is used though it is damaged: " + asked[1].Reason);
    EXPECT_EQ(ReadImage(Out("x.tga")).Width, 64);
    std::filesystem::remove(Out("x.tga"));
  }
}

TEST_F(CutImageTest, IsFoundInRunLengthsToo) {
  // Runs of 128 equal pixels: 64 by 64 take 32 of them. A whole file may end with the last run.
  std::string file(18, '\0');
  file[2] = 10;
  file[12] = file[14] = 64;
  file[16] = 24;
  for (int run = 0; run < 32; ++run)
    file +=
        "\xFF"
        "abc";
  WriteText(Folder.Path("x.tga"), file);
  EXPECT_EQ(ToTga(Folder.Path("x.tga")), Out("x.tga"));
  EXPECT_THAT(Report.Troubles, testing::IsEmpty());
  EXPECT_EQ(ReadImage(Out("x.tga")).At(63, 0), (Rgba{'c', 'b', 'a'}));
  EXPECT_EQ(ReadImage(Out("x.tga")).At(0, 63), (Rgba{'c', 'b', 'a'}));
  WriteText(Folder.Path("x.tga"), file.substr(0, file.size() - 1));
  EXPECT_EQ(ToTga(Folder.Path("x.tga")), "");
  EXPECT_THAT(Report.LogText, testing::HasSubstr("it holds 3968 of its 4096 pixels"));
}

TEST_F(CutImageTest, IsNotSuspectedWhereOnlyAWordTooManyStandsInTheFile) {
  WriteImage(Folder.Path("x.jpg"), Gradient(64, 64));
  const std::string whole = ReadText(Folder.Path("x.jpg"));
  // Zeros before the end's marker are no part of the picture.
  WriteText(Folder.Path("x.jpg"), whole.substr(0, whole.size() - 2) + std::string(4, '\0') + "\xFF\xD9");
  EXPECT_EQ(ToTga(Folder.Path("x.jpg")), Out("x.tga"));
  EXPECT_THAT(Report.Troubles, testing::IsEmpty());
}

}  // namespace

}  // namespace tarnwick::tests
