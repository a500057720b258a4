#include "jobs/export_textures.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "core/file_source.h"
#include "jobs/texture_images.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "support/shell_programs.h"
#include "support/tga_builder.h"
#include "support/vtf_builder.h"
#include "textures/dds_format.h"

namespace tarnwick::jobs {
namespace {

using core::Severity;
using core::TroubleKind;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using tests::RecordingHost;
using tests::VtfBuilder;

class ExportTexturesTest : public testing::Test {
 protected:
  std::string Texture(const std::string& name, const VtfBuilder& texture) {
    tests::WriteText(m_folder.Path(name), texture.Build());
    return m_folder.Path(name);
  }
  std::vector<std::string> Files(const JobResult& result, size_t item = 0) {
    std::vector<std::string> files;
    for (const core::WrittenFile& file : result.Items.at(item).Files) {
      files.push_back(std::filesystem::path(file.Path).lexically_relative(m_folder.Path()).generic_string());
    }
    return files;
  }
  std::string Tool(const std::string& commands) {
    std::filesystem::create_directory(m_folder.Path("sdk"));
    tests::WriteShellProgram(m_folder.Path("sdk/vtf2tga.exe"), commands);
    return m_folder.Path("sdk");
  }

  tests::ScratchFolder m_folder;
  RecordingHost m_host;
};

TEST_F(ExportTexturesTest, WritesEveryFrameAndFaceAsAnImage) {
  const std::string water = Texture("water.vtf", VtfBuilder().Frames(3));
  const std::string sky = Texture("sky.vtf", VtfBuilder().EnvironmentMap(0xFFFF));
  const auto result = jobs::Run(
      ExportTextures{.Inputs = {water}, .Place = ImagePlace::ExactlyOutput, .Output = m_folder.Path("out/w.png")},
      m_host, {});
  EXPECT_TRUE(result.Succeeded());
  EXPECT_THAT(Files(result), ElementsAre("out/w.png", "out/w001.png", "out/w002.png"));
  EXPECT_THAT(m_folder.Files(), ElementsAre("out/w.png", "out/w001.png", "out/w002.png", "sky.vtf", "water.vtf"))
      << "nothing but the images is left";

  const auto kept =
      jobs::Run(ExportTextures{.Inputs = {sky}, .Place = ImagePlace::BesideInput, .Output = "x.bmp", .KeepTga = true},
                m_host, {});
  EXPECT_TRUE(kept.Succeeded());
  EXPECT_EQ(Files(kept).size(), 6u);
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("sky_face5.bmp")));
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("sky_face5.tga")));
}

TEST_F(ExportTexturesTest, WritesTheBlocksOfATextureAsTheyAreIntoADdsFile) {
  const auto texture = VtfBuilder().Format(textures::PixelFormat::Dxt5).Size(8, 8).Mips(4).Frames(2);
  const std::string bytes = texture.Build();
  const auto result =
      jobs::Run(ExportTextures{.Inputs = {Texture("a.vtf", texture)}, .Output = m_folder.Path("a.dds")}, m_host, {});
  ASSERT_TRUE(result.Succeeded());
  EXPECT_THAT(Files(result), ElementsAre("a.dds", "a001.dds"));
  const std::string second = tests::ReadText(m_folder.Path("a001.dds"));
  // Of the second frame: the largest level of 64 bytes at the end of the texture, the next one of 16 before both.
  EXPECT_EQ(second.substr(sizeof(textures::DdsHeader), 64), bytes.substr(bytes.size() - 64));
  EXPECT_EQ(second.substr(sizeof(textures::DdsHeader) + 64, 16), bytes.substr(bytes.size() - 128 - 16, 16));
  EXPECT_EQ(second.size(), sizeof(textures::DdsHeader) + 64 + 3 * 16);
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("Converting a.vtf from VTF to DDS\r\n"));

  // The smaller levels of a texture with depth have fewer slices: an image of one slice has none of them.
  const auto volume = VtfBuilder().Format(textures::PixelFormat::Dxt1).Size(8, 8, 2).Mips(4);
  const auto slices =
      jobs::Run(ExportTextures{.Inputs = {Texture("v.vtf", volume)}, .Output = m_folder.Path("v.dds")}, m_host, {});
  ASSERT_EQ(Files(slices).size(), 2u);
  for (const core::WrittenFile& file : slices.Items[0].Files) {
    EXPECT_EQ(file.Size, sizeof(textures::DdsHeader) + 32) << file.Path;
  }
}

TEST_F(ExportTexturesTest, AsksBeforeItReplacesWhatStandsBesideTheImage) {
  const std::string water = Texture("water.vtf", VtfBuilder().Frames(2));
  tests::WriteText(m_folder.Path("w001.tga"), "mine");
  const ExportTextures job{
      .Inputs = {water}, .Place = ImagePlace::ExactlyOutput, .Output = m_folder.Path("w.png"), .KeepTga = true};
  m_host.Answer = false;
  const JobResult refused = jobs::Run(job, m_host, {});
  EXPECT_FALSE(refused.Succeeded());
  ASSERT_EQ(refused.Items.size(), 1u) << "what was asked for is named, though nothing was done";
  EXPECT_EQ(refused.Items[0].Input, water);
  EXPECT_EQ(refused.Items[0].Target, m_folder.Path("w.png"));
  ASSERT_EQ(m_host.Questions.size(), 1u);
  EXPECT_EQ(m_host.Questions[0].Kind, QuestionKind::Overwrite);
  EXPECT_THAT(m_host.Questions[0].Text, StartsWith(m_folder.Path("w001.tga") + " exists already."));
  EXPECT_EQ(tests::ReadText(m_folder.Path("w001.tga")), "mine");
  EXPECT_THAT(m_folder.Files(), ElementsAre("w001.tga", "water.vtf"));
  m_host.Answer = true;
  EXPECT_TRUE(jobs::Run(job, m_host, {}).Succeeded());
  EXPECT_THAT(m_folder.Files(), ElementsAre("w.png", "w.tga", "w001.png", "w001.tga", "water.vtf"));
}

TEST_F(ExportTexturesTest, TellsHowMuchItWouldReplaceAndWhatItDoesNotMake) {
  const std::string a = Texture("a.vtf", VtfBuilder()), b = Texture("b.vtf", VtfBuilder());
  tests::WriteText(m_folder.Path("a.png"), "mine");
  m_host.Answer = false;
  const ExportTextures kept{.Inputs = {a, b}, .Place = ImagePlace::BesideInput, .Output = "x.png", .KeepTga = true};
  const auto beside = jobs::Run(kept, m_host, {});
  EXPECT_FALSE(beside.Succeeded());
  ASSERT_EQ(m_host.Questions.size(), 1u);
  EXPECT_THAT(m_host.Questions[0].Text, StartsWith("1 of 2 textures have been exported before."));

  const auto below =
      jobs::Run(ExportTextures{.Inputs = {b}, .Place = ImagePlace::ExactlyOutput, .Output = m_folder.Path("new/b.png")},
                m_host, {});
  ASSERT_EQ(below.Items.size(), 1u);
  const core::Trouble* error = below.Items[0].First(Severity::Error);
  ASSERT_NE(error, nullptr) << "what is not made is told";
  EXPECT_EQ(below.Items[0].Count(Severity::Error), 1u) << "and nothing is tried behind the no";
  EXPECT_THAT(error->Text, HasSubstr(m_folder.Path("new") + " does not exist"));
  EXPECT_EQ(error->File, m_folder.Path("new"));
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.png", "a.vtf", "b.vtf"));
}

TEST_F(ExportTexturesTest, JudgesByWhatTheToolWrote) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  const std::string input = Texture("a.vtf", VtfBuilder());
  tests::WriteText(m_folder.Path("a.tga"), "an older image");
  ExportTextures job{
      .Inputs = {input}, .Place = ImagePlace::ExactlyOutput, .Output = m_folder.Path("a.png"), .KeepTga = true};
  job.SdkDirectory = Tool("echo it is late\n");
  const JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(result.Items[0].Judged, Verdict::Failed);
  const core::Trouble& error = *result.Items[0].First(Severity::Error);
  EXPECT_EQ(error.Kind, TroubleKind::Tool);
  EXPECT_EQ(error.File, input);
  EXPECT_EQ(error.Text, "Unable to create TGA file " + m_folder.Path("a.png") + "\n");
  EXPECT_EQ(error.Details, "vtf2tga: it is late");
  EXPECT_THAT(result.Items[0].Shown, HasSubstr("it is late")) << "a page shows it";
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("a.png"))) << "the older TGA file is not taken for a new one";

  // The box is for an image of another format whose TGA file was wanted too: else the cause stands alone.
  for (const char* target : {"b.png", "b.tga"}) {
    job.Output = m_folder.Path(target);
    job.KeepTga = job.Output.ends_with(".tga");
    const JobResult alone = jobs::Run(job, m_host, {});
    EXPECT_EQ(alone.Items[0].First(Severity::Error)->Text, "vtf2tga: it is late") << target;
  }

  job.SdkDirectory = Tool("kill -SEGV $$\n");
  EXPECT_THAT(jobs::Run(job, m_host, {}).Items[0].Notes, HasSubstr("[The tool crashed: "));
}

TEST_F(ExportTexturesTest, AnImageThatCannotBeConvertedEndsItsTexture) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  tests::WriteText(m_folder.Path("good.tga"), tests::TgaOf({1, 1, {{1, 2, 3, 255}}}));
  ExportTextures job{.Inputs = {Texture("a.vtf", VtfBuilder())}, .Output = m_folder.Path("out/a.png")};
  job.SdkDirectory =
      Tool("for o; do :; done\necho broken >\"$o\"\ncp '" + m_folder.Path("good.tga") + "' \"${o%.tga}001.tga\"\n");
  const ItemResult result = jobs::Run(job, m_host, {}).Items.at(0);
  EXPECT_EQ(result.Judged, Verdict::Failed);
  EXPECT_EQ(result.Count(Severity::Error), 1u);
  EXPECT_THAT(result.Files, IsEmpty());
  EXPECT_THAT(m_folder.Files(), testing::Not(testing::Contains(StartsWith("out/"))));

  job.SdkDirectory = Tool("for o; do :; done\ncp '" + m_folder.Path("good.tga") + "' \"$o\"\n");
  EXPECT_TRUE(jobs::Run(job, m_host, {}).Succeeded()) << "what the tool wrote was all that was wrong";
}

TEST_F(ExportTexturesTest, AnImageThatCannotTakeItsPlaceEndsItsTexture) {
  std::filesystem::create_directories(m_folder.Path("out/a.tga/full"));
  const ItemResult result = jobs::Run(ExportTextures{.Inputs = {Texture("a.vtf", VtfBuilder().Frames(3))},
                                                     .Place = ImagePlace::ExactlyOutput,
                                                     .Output = m_folder.Path("out/a.tga")},
                                      m_host, {})
                                .Items.at(0);
  EXPECT_EQ(result.Count(Severity::Error), 1u);
  EXPECT_THAT(result.First(Severity::Error)->Text, StartsWith(m_folder.Path("out/a.tga") + " cannot be written: "));
  EXPECT_THAT(result.Files, IsEmpty());
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.vtf"));
}

#ifndef _WIN32
TEST_F(ExportTexturesTest, AToolThatCannotBeStartedFails) {
  ExportTextures job{.Inputs = {Texture("a.vtf", VtfBuilder())}, .Output = m_folder.Path("a.png")};
  job.SdkDirectory = Tool("exit 0\n");
  tests::WriteText(m_folder.Path("sdk/vtf2tga.exe"), "no program");
  const JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(result.Items[0].Judged, Verdict::Failed);
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Kind, TroubleKind::Tool);
}
#endif

TEST_F(ExportTexturesTest, ADdsFileIsWrittenWholeOrTheReasonIsTold) {
  const core::FileSource& disk = core::DiskFiles();
  const TextureImages good(Texture("a.vtf", VtfBuilder().Format(textures::PixelFormat::Dxt1)), disk);
  const TextureImages odd(Texture("b.vtf", VtfBuilder().Format(textures::PixelFormat::Uv88)), disk);
  const TextureImages none(m_folder.Path("none.vtf"), disk);
  const std::string a = m_folder.Path("a.tga");
  std::string reason;
  for (const TextureImages* texture : {&good, &odd, &none}) {
    reason = "of an earlier one";
    const std::string name = texture == &good ? m_folder.Path("other.tga") : a;
    EXPECT_FALSE(texture->WriteDds(name, a, m_folder.Path("a.dds"), reason));
    EXPECT_EQ(reason, "");
  }
  tests::WriteText(m_folder.Path("taken"), "a file");
  EXPECT_FALSE(good.WriteDds(a, a, m_folder.Path("taken/a.dds"), reason));
  EXPECT_NE(reason, "");
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.vtf", "b.vtf", "taken"));
  EXPECT_TRUE(good.WriteDds(a, a, m_folder.Path("a.dds"), reason));

  EXPECT_FALSE(TextureFacts(m_folder.Path("taken"), disk, false, reason));
  EXPECT_THAT(reason, HasSubstr("too short for a texture"));
  EXPECT_THAT(TextureFacts(m_folder.Path("a.vtf"), disk, true, reason), testing::Optional(HasSubstr("DXT1")));
}

TEST_F(ExportTexturesTest, OurOwnToolStandsInForAMissingOneAndThatIsToldOnce) {
  ExportTextures job{.Inputs = {Texture("in/a.vtf", VtfBuilder()), Texture("in/b.vtf", VtfBuilder())},
                     .Output = m_folder.Path("out")};
  job.SdkDirectory = m_folder.Path("none");
  const JobResult result = jobs::Run(job, m_host, {});
  EXPECT_TRUE(result.Succeeded());
  EXPECT_EQ(m_host.Text(LineSource::Log).find("vtf2tga: our own"), m_host.Text(LineSource::Log).rfind("our own") - 9);
}

TEST_F(ExportTexturesTest, AStopEndsTheToolAndLeavesNothingBehind) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  ExportTextures job{.Inputs = {Texture("in/a.vtf", VtfBuilder()), Texture("in/b.vtf", VtfBuilder())},
                     .Output = m_folder.Path("out")};
  job.SdkDirectory = Tool("echo running\nsleep 60\n");
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    const auto* line = std::get_if<Line>(&event);
    if (line != nullptr && line->Source == LineSource::Tool) stop.request_stop();
  };
  const JobResult result = jobs::Run(job, m_host, stop.get_token());
  EXPECT_EQ(result.Items[0].Judged, Verdict::Stopped);
  EXPECT_EQ(result.Items[1].Judged, Verdict::NotBegun);
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("out")));
}

TEST_F(ExportTexturesTest, AStopEndsAConversionAndLeavesNoImage) {
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    const auto* line = std::get_if<Line>(&event);
    if (line != nullptr && line->Text.starts_with("Converting ")) stop.request_stop();
  };
  const JobResult result = jobs::Run(
      ExportTextures{.Inputs = {Texture("a.vtf", VtfBuilder().Frames(2))}, .Output = m_folder.Path("out/a.png")},
      m_host, stop.get_token());
  EXPECT_EQ(result.Items[0].Judged, Verdict::Stopped);
  EXPECT_THAT(result.Items[0].Files, IsEmpty());
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.vtf"));
}

TEST_F(ExportTexturesTest, PlansWhereEachImageGoes) {
  Texture("in/red.vtf", VtfBuilder());
  Texture("in/sub/red.VTF", VtfBuilder());
  const auto targets = [](const ExportTextures& job) {
    std::vector<std::string> all;
    for (const PlannedItem& item : Plan(job).Items) {
      all.push_back(tests::WithSlashes(item.Target));
    }
    return all;
  };
  EXPECT_THAT(targets({.Inputs = {m_folder.Path("in")}, .Output = "o", .Format = "png", .Recursive = true}),
              ElementsAre("o/red.png", "o/sub/red.png"));
  EXPECT_THAT(targets({.Inputs = {m_folder.Path("in")}, .Output = "x.png"}), ElementsAre("x.png/red.tga"))
      << "a folder may get a second texture later";
  EXPECT_THAT(targets({.Inputs = {"a.vtf"}, .Output = "x.y.png"}), ElementsAre("x.y.png"));
  EXPECT_THAT(targets({.Inputs = {"a.vtf"}, .Output = "folder"}), ElementsAre("folder/a.tga"));
  EXPECT_THAT(targets({.Inputs = {"a.vtf"}, .Place = ImagePlace::ExactlyOutput, .Output = "noending"}),
              ElementsAre("noending.tga"));
  EXPECT_THAT(targets({.Inputs = {"a.vtf"}, .Place = ImagePlace::ExactlyOutput, .Output = ""}), ElementsAre("a.tga"));
  EXPECT_THAT(targets({.Inputs = {"d/a.vtf", "e/b.vtf"}, .Place = ImagePlace::BesideInput, .Output = "z.jpg"}),
              ElementsAre("d/a.jpg", "e/b.jpg"));
  EXPECT_THAT(targets({.Inputs = {"d/a.vtf"}, .Place = ImagePlace::BesideInput, .Output = "z.vmt"}),
              ElementsAre("d/a.tga"));
}

}  // namespace
}  // namespace tarnwick::jobs
