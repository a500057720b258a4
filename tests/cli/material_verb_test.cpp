#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "command_line.h"
#include "images/test_image.h"

namespace tarnwick::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class MaterialVerbTest : public testing::Test {
 protected:
  MaterialVerbTest() {
    std::filesystem::create_directory(Folder.Path("game"));
    WriteImage(Folder.Path("Brick.png"), Gradient(48, 30));
    WriteImage(Folder.Path("brick_n.png"), Gradient(16, 16));
    WriteImage(Folder.Path("shine.png"), Gradient(8, 8));
  }
  CommandResult Compile(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"material", "--game", Folder.Path("game")});
    return RunCommand(arguments);
  }
  ScratchFolder Folder;
};

TEST_F(MaterialVerbTest, CompilesAnImageWithItsMapsIntoAGameWithoutAnSdk) {
  const auto result =
      Compile({"-d", "props", "--normal", Folder.Path("brick_n.png"), "--specular", Folder.Path("shine.png"), "--mask",
               "normal", "--envmap", "--contrast", "0.5", Folder.Path("Brick.png")});
  ASSERT_EQ(result.ExitCode, 0) << result.Err;
  const std::string compiled = Folder.Path("game/materials/models/props/brick");
  EXPECT_EQ(WithSlashes(result.Out), compiled + ".vtf\n" + compiled + ".vmt\n");
  EXPECT_THAT(ReadText(compiled + ".vmt"),
              AllOf(HasSubstr("\"VertexLitGeneric\""), HasSubstr("$bumpmap"), HasSubstr("brick_n"),
                    HasSubstr("$normalmapalphaenvmapmask"), HasSubstr("\"$envmapcontrast\" \"0.5\"")));
  EXPECT_THAT(result.Err, HasSubstr("Replacing Alpha Channel in brick_n.png from shine.png\n"));
  EXPECT_EQ(ReadImage(Folder.Path("game/materialsrc/models/props/brick.tga")).Width, 64);
  EXPECT_EQ(ReadImage(Folder.Path("game/materialsrc/models/props/brick_n.tga")).Depth, 32);

  // And back: the texture shows the image that went in.
  ASSERT_EQ(RunCommand({"vtf", "-o", Folder.Path("back.png"), compiled + ".vtf"}).ExitCode, 0);
  const TestImage back = ReadImage(Folder.Path("back.png"));
  EXPECT_EQ(back.Height, 32);
  for (const int x : {4, 32, 60}) EXPECT_NEAR(back.At(x, 16).Red, x * 4, 20);
}

TEST_F(MaterialVerbTest, PutsMapMaterialsStraightBelowMaterials) {
  const auto result = Compile({"-q", "-d", "walls", "--for-maps", "--shader", "LightmappedGeneric", "--glow",
                               Folder.Path("shine.png"), Folder.Path("Brick.png")});
  ASSERT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_THAT(ReadText(Folder.Path("game/materials/walls/brick.vmt")),
              AllOf(HasSubstr("LightmappedGeneric"), HasSubstr("$selfillum"), Not(HasSubstr("$model"))));
}

TEST_F(MaterialVerbTest, GoesOnPastAnImageThatCannotBeRead) {
  WriteText(Folder.Path("bad.png"), "no image");
  WriteImage(Folder.Path("brick.bmp"), Gradient(8, 8));
  const auto result =
      Compile({"--json", "-q", Folder.Path("bad.png"), Folder.Path("Brick.png"), Folder.Path("brick.bmp")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_THAT(result.Err, AllOf(HasSubstr("bad.png: TGA Error: Unable to create TGA file "),
                                HasSubstr(": bad.png: the file cannot be read as a PNG image\n"),
                                HasSubstr("brick.bmp both become brick.tga\n")));
  EXPECT_THAT(result.Out, AllOf(HasSubstr("\"outcome\":\"failed\""), HasSubstr("\"outcome\":\"ok\""),
                                HasSubstr("vtex.exe -"), HasSubstr("brick.tga")));
  EXPECT_TRUE(std::filesystem::exists(Folder.Path("game/materials/models/brick.vtf")));
}

TEST_F(MaterialVerbTest, UsesDamagedImagesByForceAlone) {
  WriteImage(Folder.Path("cut.jpg"), Gradient(64, 64));
  const std::string whole = ReadText(Folder.Path("cut.jpg"));
  WriteText(Folder.Path("cut.jpg"), whole.substr(0, whole.size() / 2 + 200));
  auto result = Compile({"-d", "props", "--json", Folder.Path("cut.jpg")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_THAT(result.Out, AllOf(HasSubstr("\"outcome\":\"failed\""),
                                HasSubstr("cut.jpg: the file is damaged (Premature end of JPEG file)")));
  EXPECT_FALSE(std::filesystem::exists(Folder.Path("game/materials")));
  result = Compile({"-d", "props", "--json", "--force", Folder.Path("cut.jpg")});
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_THAT(result.Out, HasSubstr("\"warnings\":[\"cut.jpg is used though it is damaged: "));
  EXPECT_TRUE(std::filesystem::exists(Folder.Path("game/materials/models/props/cut.vtf")));
}

TEST_F(MaterialVerbTest, NeedsAGame) {
  EXPECT_EQ(RunCommand({"material", Folder.Path("Brick.png")}).ExitCode, 2);
  const auto result = RunCommand({"material", "--game", Folder.Path("typo"), Folder.Path("Brick.png")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_THAT(result.Err, HasSubstr("typo does not exist"));
  EXPECT_FALSE(std::filesystem::exists(Folder.Path("typo")));
  EXPECT_EQ(Compile({"--glow", "x.png", "--translucent", Folder.Path("Brick.png")}).ExitCode, 2);
}

}  // namespace

}  // namespace tarnwick::tests
