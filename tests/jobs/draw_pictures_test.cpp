#include "jobs/draw_pictures.h"

#include <gmock/gmock.h>
#include <png.h>

#include <filesystem>

#include "support/archive_builder.h"
#include "support/drawing.h"
#include "support/file_bytes.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"

namespace tarnwick::jobs {
namespace {

using core::Severity;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using tests::ModelBuilder;

class DrawPicturesTest : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string reason = tests::WhyNotDrawn(); !reason.empty()) GTEST_SKIP() << reason;
  }
  JobResult Draw(DrawPictures job) {
    job.Width = job.Height = 32;
    return jobs::Run(job, m_host, {});
  }
  std::vector<std::string> Pictures() const {
    std::vector<std::string> files = m_folder.Files();
    std::erase_if(files, [](const std::string& file) { return !file.ends_with(".png"); });
    return files;
  }
  /// Height and width stand behind the signature and the head of the first chunk.
  static std::string SizeOf(const std::string& png) {
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1A\n");
    return png.substr(16, 8);
  }
  /// How much of each pixel is there, row after row.
  static std::vector<uint8_t> AlphaOf(const std::string& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0);
    image.format = PNG_FORMAT_RGBA;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    std::vector<uint8_t> alphas;
    for (size_t i = 3; i < pixels.size(); i += 4) alphas.push_back(pixels[i]);
    return alphas;
  }

  tests::ScratchFolder m_folder;
  tests::RecordingHost m_host;
};

TEST_F(DrawPicturesTest, OneModelGivesTheFileAndSeveralGiveFilesOfTheirPaths) {
  const std::string model = ModelBuilder{}.Write(m_folder.Path("m/a"), "cube");
  ModelBuilder{}.Write(m_folder.Path("m/a"), "CUBE");
  ModelBuilder{}.Write(m_folder.Path("m/a/deep"), "cube");
  EXPECT_TRUE(Draw({.Inputs = {model}, .Output = m_folder.Path("new/One Picture.PNG")}).Succeeded());
  EXPECT_EQ(SizeOf(tests::BytesOf(m_folder.Path("new/One Picture.PNG"))), std::string("\0\0\0 \0\0\0 ", 8));
  EXPECT_TRUE(Draw({.Inputs = {m_folder.Path("m")}, .Output = m_folder.Path("tree"), .Recursive = true, .Threads = 3})
                  .Succeeded());
  if (core::FileExists(m_folder.Path("m/a/Cube.mdl"))) {  // the folder knows no case: both models are one
    EXPECT_THAT(Pictures(), ElementsAre("tree/a/cube.png", "tree/a/deep/cube.png"));
  } else {
    EXPECT_THAT(Pictures(), ElementsAre("tree/a/CUBE.png", "tree/a/cube_2.png", "tree/a/deep/cube.png"));
  }
  EXPECT_EQ(tests::BytesOf(m_folder.Path("tree/a/CUBE.png")), tests::BytesOf(m_folder.Path("tree/a/deep/cube.png")));
}

TEST_F(DrawPicturesTest, EachChoiceChangesThePicture) {
  std::string pixels;
  for (int i = 0; i < 16; ++i) pixels += "\x10\x80\xF0\xFF";
  const std::string texture =
      tests::VtfBuilder().Size(4, 4).Format(textures::PixelFormat::Rgba8888).Pixels(pixels).Build();
  tests::WriteText(m_folder.Path("materials/models/props/blue.vtf"), texture);
  for (const char* name : {"blue", "skin"}) {
    tests::WriteText(m_folder.Path("materials/models/props/") + name + ".vmt",
                     "VertexLitGeneric { $nocull 1 $basetexture models/props/blue" +
                         std::string(name == std::string("skin") ? " $color2 \"[1 0 0]\"" : "") + " }");
  }
  const std::string model =
      ModelBuilder{.Textures = {"skin", "blue"}, .SkinFamilies = {{0, 1}, {1, 0}}}.Write(m_folder.Path("models/props"));
  std::vector<std::string> seen;
  const auto draw = [&](DrawPictures job) {
    job.Inputs = {model};
    job.Output = m_folder.Path("out.png");
    const JobResult result = Draw(std::move(job));
    EXPECT_TRUE(result.Succeeded());
    EXPECT_THAT(result.Items[0].Missing, IsEmpty());
    const std::string png = tests::BytesOf(m_folder.Path("out.png"));
    EXPECT_THAT(seen, testing::Not(testing::Contains(png)));
    seen.push_back(png);
  };
  draw({});
  draw({.Skin = 1});
  draw({.Angle = {80, -20}});
  draw({.Transparent = true});
  // Lines have no light, which turns with the camera: their place alone tells.
  draw({.Wireframe = true});
  draw({.Angle = {.Yaw = 80}, .Wireframe = true});
  draw({.Angle = {.Pitch = -20}, .Wireframe = true});
}

TEST_F(DrawPicturesTest, NothingButTheModelIsInAPicture) {
  tests::WriteText(m_folder.Path("materials/models/props/skin.vmt"), "UnlitGeneric { $nocull 1 }");
  ModelBuilder builder;
  builder.BodyParts[0].Models[0].SwitchDistances = {0, 0.001f};  // far off nothing is left of it
  const std::string model = builder.Write(m_folder.Path("models/props"));
  ASSERT_TRUE(
      Draw({.Inputs = {model}, .Output = m_folder.Path("x.png"), .Angle = {0, 70}, .Transparent = true}).Succeeded());
  const std::vector<uint8_t> alphas = AlphaOf(tests::BytesOf(m_folder.Path("x.png")));
  ASSERT_THAT(alphas, SizeIs(32 * 32));
  EXPECT_THAT(alphas, testing::Contains(testing::Gt(0))) << "the model at its finest, small as it is here";
  for (size_t i = 0; i < 32; ++i) {
    for (const size_t edge : {i, 31 * 32 + i, 32 * i, 32 * i + 31}) EXPECT_EQ(alphas[edge], 0) << edge;
  }
}

TEST_F(DrawPicturesTest, SequencesOfIncludedModelsAreAskedForByName) {
  ModelBuilder moves{.Bones = {{.Name = "root"}}, .Animations = {{.Name = "@lie"}}, .Sequences = {{.Label = "lie"}}};
  moves.Animations[0].Data.Bones = {{.Bone = 0, .RawPosition = std::array<float, 3>{0, 0, 3}}};
  moves.Write(m_folder.Path("mod/models"), "m_anm");
  const std::string model =
      ModelBuilder{.Bones = {{.Name = "root"}}, .IncludedModels = {"models/m_anm.mdl", "models/gone.mdl"}}.Write(
          m_folder.Path("mod/models/props"));
  const JobResult plain = Draw({.Inputs = {model}, .Output = m_folder.Path("plain.png")});
  EXPECT_TRUE(plain.Succeeded());
  const JobResult named = Draw({.Inputs = {model}, .Output = m_folder.Path("lie.png"), .Sequence = "LIE"});
  EXPECT_TRUE(named.Succeeded());
  const auto tellsOfGone = [](const JobResult& result) {
    return std::any_of(result.Items[0].Troubles.begin(), result.Items[0].Troubles.end(), [](const auto& trouble) {
      return trouble.Text.find("included model models/gone.mdl") != std::string::npos;
    });
  };
  EXPECT_TRUE(tellsOfGone(named));
  EXPECT_FALSE(tellsOfGone(plain)) << "nobody asked for its sequences";
}

TEST_F(DrawPicturesTest, WhatIsMissingIsToldAndStandsInTheResult) {
  tests::WriteText(m_folder.Path("game/materials/models/props/skin.vmt"), "UnlitGeneric { $basetexture a/b }");
  const std::string model = ModelBuilder{.Textures = {"skin", "other"}}.Write(m_folder.Path());
  const JobResult result = Draw({.Inputs = {model},
                                 .Content = std::make_shared<InputContent>(m_folder.Path("game")),
                                 .Output = m_folder.Path("x.png")});
  EXPECT_TRUE(result.Succeeded());
  EXPECT_EQ(result.Items[0].Count(Severity::Warning), 2u);
  ASSERT_THAT(result.Items[0].Missing, SizeIs(2));
  EXPECT_EQ(result.Items[0].Missing[0].Name, "a/b");
  EXPECT_EQ(result.Items[0].Missing[0].NeededBy, "skin");
  EXPECT_THAT(result.Items[0].Missing[0].Tried,
              testing::Contains(testing::ResultOf(tests::WithSlashes, EndsWith("game/materials/a/b.vtf"))));
  EXPECT_EQ(result.Items[0].Missing[1].Name, "other");
  EXPECT_THAT(result.Troubles.at(0).Text, HasSubstr("gameinfo.txt"));
}

TEST_F(DrawPicturesTest, AModelInAnArchiveIsDrawnWithTheMaterialsThatLieThere) {
  const tests::ScratchFolder loose;
  ModelBuilder{.Textures = {"skin"}}.Write(loose.Path(), "cube");
  tests::VpkBuilder vpk{.Files = tests::PackedFolder(loose, "models/props")};
  const std::string material = "UnlitGeneric { $basetexture none }";
  vpk.Files.push_back({.Name = "materials/models/props/skin.vmt", .Bytes = material});
  tests::WriteText(m_folder.Path("pak_dir.vpk"), vpk.Build().Directory);
  const std::string archive = m_folder.Path("pak_dir.vpk");
  const JobResult one = Draw({.Inputs = {archive + ":models/props/cube.mdl"}, .Output = m_folder.Path("one.png")});
  EXPECT_TRUE(one.Succeeded());
  ASSERT_THAT(one.Items[0].Missing, SizeIs(1)) << "the material is there, its texture is not";
  EXPECT_EQ(one.Items[0].Missing[0].Name, "none");
  EXPECT_TRUE(Draw({.Inputs = {archive}, .Output = m_folder.Path("all"), .Recursive = true}).Succeeded());
  EXPECT_THAT(Pictures(), ElementsAre("all/models/props/cube.png", "one.png"));
  EXPECT_EQ(tests::BytesOf(m_folder.Path("one.png")), tests::BytesOf(m_folder.Path("all/models/props/cube.png")));
}

TEST_F(DrawPicturesTest, AModelThatCannotBeDrawnLeavesNoFileAndStopsNoOther) {
  const std::string good = ModelBuilder{}.Write(m_folder.Path("in"), "good");
  tests::WriteText(m_folder.Path("in/bad.mdl"), "IDST and no more");
  tests::WriteText(m_folder.Path("taken"), "a file");
  const JobResult result =
      Draw({.Inputs = {m_folder.Path("in"), m_folder.Path("none.mdl")}, .Output = m_folder.Path("out")});
  EXPECT_EQ(result.Count(Verdict::Failed), 2u);
  for (const ItemResult& item : result.Items) {
    EXPECT_EQ(item.Count(Severity::Error), item.Succeeded() ? 0u : 1u) << item.Input << ": the reason, once";
  }
  EXPECT_THAT(Pictures(), ElementsAre("out/good.png"));
  for (DrawPictures job : {DrawPictures{.Sequence = "no such"}, DrawPictures{.Frame = 1000}, DrawPictures{.Skin = 1},
                           DrawPictures{.Output = m_folder.Path("taken/out.png")}}) {
    job.Inputs = {good};
    if (job.Output == ".") job.Output = m_folder.Path("refused/x.png");
    const JobResult refused = Draw(job);
    ASSERT_NE(refused.Items.at(0).First(Severity::Error), nullptr);
    EXPECT_NE(refused.Items[0].First(Severity::Error)->Text, "");
  }
  EXPECT_THAT(Pictures(), ElementsAre("out/good.png"));
  EXPECT_FALSE(core::FileExists(m_folder.Path("refused")));
  std::filesystem::create_directory(m_folder.Path("empty"));
  const JobResult empty = Draw({.Inputs = {m_folder.Path("empty"), good}, .Output = m_folder.Path("out")});
  EXPECT_FALSE(empty.Succeeded()) << "a folder without a model is told";
  ASSERT_THAT(empty.Troubles, SizeIs(1));
  EXPECT_EQ(empty.Troubles[0].File, m_folder.Path("empty"));

  std::stop_source stop;
  stop.request_stop();
  const JobResult stopped = jobs::Run({.Inputs = {good}, .Output = m_folder.Path("s.png")}, m_host, stop.get_token());
  EXPECT_EQ(stopped.Count(Verdict::NotBegun), 1u);
}

TEST_F(DrawPicturesTest, AModelWithoutAMeshIsDrawnAsItsBones) {
  const std::string model =
      ModelBuilder{.Bones = {{.Name = "a"}, {.Name = "b", .Parent = 0, .Position = {0, 0, 10}}}, .BodyParts = {}}.Write(
          m_folder.Path());
  const JobResult result = Draw({.Inputs = {model}, .Output = m_folder.Path("x.png")});
  EXPECT_TRUE(result.Succeeded());
  ASSERT_NE(result.Items[0].First(Severity::Warning), nullptr);
  EXPECT_THAT(Pictures(), ElementsAre("x.png"));
}

}  // namespace
}  // namespace tarnwick::jobs
