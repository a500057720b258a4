#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

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

TEST_F(MaterialVerbTest, EveryOptionReachesTheMaterial) {
  const auto material = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"-q", Folder.Path("Brick.png")});
    const auto result = Compile(options);
    EXPECT_EQ(result.ExitCode, 0) << result.Err;
    return result.ExitCode == 0 ? ReadText(Folder.Path("game/materials/models/brick.vmt")) : std::string();
  };
  EXPECT_THAT(material({}), Not(testing::AnyOf(HasSubstr("$translucent"), HasSubstr("$envmap"), HasSubstr("$selfillum"),
                                               HasSubstr("$bumpmap"))));
  EXPECT_THAT(material({"--translucent"}), HasSubstr("\"$translucent\" \"1\""));
  EXPECT_THAT(material({"--envmap", "--mask", "base", "--saturation", "0.25", "--tint", "1 0 0.5"}),
              AllOf(HasSubstr("\"$envmap\" \"env_cubemap\""), HasSubstr("\"$basealphaenvmapmask\" \"1\""),
                    HasSubstr("\"$envmapsaturation\" \"0.25\""), HasSubstr("$envmaptint"), HasSubstr("1 0 0.5"),
                    Not(HasSubstr("$normalmapalphaenvmapmask"))));
  const std::string glow = Folder.Path("shine.png");
  EXPECT_THAT(material({"--glow", glow}), HasSubstr("\"$selfillum\" \"1\""));
  EXPECT_THAT(material({"--envmap", "--mask", "illum", "--glow", glow, "--glow-texture"}),
              AllOf(HasSubstr("$selfillum_envmapmask_alpha"), HasSubstr("$selfillumtexture")));
  for (const char* option : {"--contrast", "--saturation", "--tint", "--mask", "--glow-texture"}) {
    EXPECT_EQ(Compile({option, "1", Folder.Path("Brick.png")}).ExitCode, 2) << option << " alone says nothing";
  }
}

TEST_F(MaterialVerbTest, GoesOnPastAnImageThatCannotBeRead) {
  WriteText(Folder.Path("bad.png"), "no image");
  WriteImage(Folder.Path("brick.bmp"), Gradient(8, 8));
  const auto result =
      Compile({"--json", "-q", Folder.Path("bad.png"), Folder.Path("Brick.png"), Folder.Path("brick.bmp")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_THAT(result.Err, AllOf(HasSubstr("bad.png: TGA Error: Unable to create TGA file "),
                                HasSubstr("bad.tga: bad.png: the file cannot be read as a PNG image\n"),
                                HasSubstr("brick.bmp both become brick.tga\n")));
  std::istringstream lines(result.Out);
  std::vector<nlohmann::json> told;
  for (std::string line; std::getline(lines, line);) told.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(told.size(), 3u);
  EXPECT_EQ(told[0]["image"], Folder.Path("bad.png"));
  EXPECT_EQ(told[0]["outcome"], "failed");
  EXPECT_EQ(told[0]["files"], nlohmann::json::array());
  EXPECT_EQ(told[0]["errors"].size(), 1u);
  EXPECT_EQ(told[1]["outcome"], "ok");
  EXPECT_THAT(told[1]["command"].get<std::string>(), AllOf(HasSubstr("vtex.exe -"), HasSubstr("brick.tga")));
  std::vector<std::string> files;
  for (const std::string file : told[1]["files"]) files.push_back(WithSlashes(file));
  const std::string compiled = Folder.Path("game/materials/models/brick");
  EXPECT_THAT(files, testing::ElementsAre(compiled + ".vtf", compiled + ".vmt"));
  EXPECT_EQ(told[1]["errors"], nlohmann::json::array());
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
