#include "jobs/compile_images.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "support/shell_programs.h"
#include "support/tga_builder.h"
#include "support/told_image.h"

namespace tarnwick::jobs {
namespace {

using core::Severity;
using core::TroubleKind;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::RecordingHost;

class CompileImagesTest : public testing::Test {
 protected:
  CompileImagesTest() { std::filesystem::create_directory(m_folder.Path("game")); }

  std::string Image(const std::string& name) {
    tests::WriteText(m_folder.Path(name), tests::TgaOf(tests::PictureOf(8, 8, [](int x, int y) {
                       return textures::Bgra{uint8_t(x), uint8_t(y), 9, 255};
                     })));
    return m_folder.Path(name);
  }
  CompileImages Job(std::vector<std::string> images) {
    CompileImages job{.GameDirectory = m_folder.Path("game")};
    job.Form.Images = std::move(images);
    job.Form.Directory = "props";
    return job;
  }
  std::string Compiled(const std::string& name) { return m_folder.Path("game/materials/models/props/" + name); }
  /// Puts a script in the place of the SDK's vtex.
  std::string Tool(const std::string& commands) {
    std::filesystem::create_directory(m_folder.Path("sdk"));
    tests::WriteShellProgram(m_folder.Path("sdk/vtex.exe"), commands);
    return m_folder.Path("sdk");
  }

  tests::ScratchFolder m_folder;
  RecordingHost m_host;
};

TEST_F(CompileImagesTest, TellsAnImageFromItsConversionToItsFiles) {
  const std::string image = Image("Brick.tga");
  const JobResult result = jobs::Run(Job({image}), m_host, {});
  ASSERT_TRUE(result.Succeeded());
  std::vector<std::string> files;
  for (const core::WrittenFile& file : result.Items[0].Files) files.push_back(tests::WithSlashes(file.Path));
  EXPECT_THAT(files, ElementsAre(Compiled("brick.vtf"), Compiled("brick.vmt")));
  std::vector<ItemStarted> started = m_host.All<ItemStarted>();
  for (ItemStarted& one : started) one.Target = tests::WithSlashes(one.Target);
  EXPECT_EQ(started, std::vector<ItemStarted>({{0, image, Compiled("brick.vtf")}}));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("Converting " + tests::ToldImage("Brick.tga") + " from "));
  EXPECT_THAT(m_host.Text(LineSource::Command), HasSubstr("/vtex.exe -nopause -shader VertexLitGeneric"));
  EXPECT_THAT(m_host.Text(LineSource::Tool), HasSubstr("brick.vtf: 8 x 8, DXT1"));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("vtex: our own"));
  EXPECT_THAT(result.Items[0].Shown, HasSubstr(result.Items[0].CommandLine + "\r\n"));
}

TEST_F(CompileImagesTest, JudgesByWhatTheToolWrote) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  const std::string image = Image("a.tga");
  CompileImages job = Job({image});
  job.SdkDirectory = Tool("echo 'Error: no room'\n");
  JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(result.Items[0].Judged, Verdict::Failed);
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Text, "vtex wrote no " + Compiled("a.vtf") + " (Error: no room)");

  tests::WriteText(Compiled("a.vtf"), "an older texture");
  result = jobs::Run(job, m_host, {});
  EXPECT_THAT(result.Items[0].First(Severity::Error)->Text, HasSubstr("the file there is an older one"));
  EXPECT_THAT(result.Items[0].Files, IsEmpty());

  job.SdkDirectory = Tool("echo made >'" + Compiled("a.vtf") + "'\nexit 3\n");
  result = jobs::Run(job, m_host, {});
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Kind, TroubleKind::Tool);

  job.SdkDirectory = Tool("kill -SEGV $$\n");
  EXPECT_THAT(jobs::Run(job, m_host, {}).Items[0].Notes, HasSubstr("[The tool crashed: "));
}

TEST_F(CompileImagesTest, TellsWhatTheChecksBeforeTheToolFound) {
  const JobResult result = jobs::Run(Job({Image("a.tga")}), m_host, {});
  EXPECT_TRUE(result.Succeeded());
  ASSERT_NE(result.Items[0].First(Severity::Warning), nullptr);
  EXPECT_THAT(result.Items[0].First(Severity::Warning)->Text,
              AllOf(testing::StartsWith("there is no gameinfo.txt in"), HasSubstr(m_folder.Path("game"))));
  EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("Warning: there is no gameinfo.txt in"));
  EXPECT_THAT(result.Items[0].Shown, HasSubstr("Warning: there is no gameinfo.txt in"));
  EXPECT_EQ(result.Items[0].Notes, "");
}

TEST_F(CompileImagesTest, TakesADamagedImageOnlyWhereThatIsWanted) {
  const std::string image = Image("a.tga");
  tests::WriteText(image, tests::ReadText(image).substr(0, 200));
  CompileImages job = Job({image});
  JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(result.Items[0].Judged, Verdict::Failed);
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Kind, TroubleKind::Damaged);
  EXPECT_EQ(result.Items[0].First(Severity::Error)->File, tests::ToldImage(image));
  EXPECT_THAT(result.Items[0].First(Severity::Error)->Text,
              AllOf(HasSubstr("a.tga: the file ends early"), HasSubstr("256 bytes of pixels, 182 are there")));
  const auto asked = std::find_if(m_host.Questions.begin(), m_host.Questions.end(),
                                  [](const Question& question) { return question.Kind == QuestionKind::UseDamaged; });
  ASSERT_NE(asked, m_host.Questions.end());
  EXPECT_EQ(asked->Yes, "Use it all the same");
  EXPECT_THAT(asked->Details, HasSubstr("a.tga: the file ends early"));

  job.UseDamaged = true;
  result = jobs::Run(job, m_host, {});
  EXPECT_TRUE(result.Succeeded());
  EXPECT_EQ(result.Items[0].First(Severity::Warning)->Kind, TroubleKind::Damaged);
  job.UseDamaged = false;
  m_host.Answer = true;
  EXPECT_TRUE(jobs::Run(job, m_host, {}).Succeeded());
}

TEST_F(CompileImagesTest, ReadsUncommonFormatsOnlyWhereThatIsAllowed) {
  const std::string image = m_folder.Path("a.ppm");
  tests::WriteText(image, "P6 4 4 255\n" + std::string(48, 'x'));
  CompileImages job = Job({image});
  job.UncommonFormats = false;
  EXPECT_EQ(jobs::Run(job, m_host, {}).Items[0].Judged, Verdict::Failed);
  job.UncommonFormats = true;
  EXPECT_TRUE(jobs::Run(job, m_host, {}).Succeeded());
}

TEST_F(CompileImagesTest, TellsBeforeItRunsThatTwoImagesBecomeOneTexture) {
  CompileImages job = Job({Image("a.tga"), Image("other/A.tga")});
  job.Form.HasNormalMap = true;
  job.Form.NormalMap = Image("third/a.tga");
  m_host.Answer = false;
  const JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(m_host.Questions.size(), 1u);
  EXPECT_EQ(m_host.Questions[0].Kind, QuestionKind::SameTarget);
  EXPECT_EQ(result.Troubles.size(), 3u) << "both, and that nothing was done";
  EXPECT_THAT(m_host.Questions[0].Text, AllOf(HasSubstr(m_folder.Path("other/A.tga") + " both become a.tga.\n"),
                                              HasSubstr(m_folder.Path("third/a.tga") + " both become a.tga.\n")));
  EXPECT_FALSE(result.Succeeded());
  EXPECT_EQ(result.Count(Verdict::NotBegun), 2u);
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("game/materialsrc")));
}

TEST_F(CompileImagesTest, PlansWhereEachTextureGoesAndWhatClashes) {
  CompileImages job = Job({"Brick.Wall.PNG"});
  job.Form.NormalMap = "other/brick.wall.tga";  // not wanted
  EXPECT_EQ(std::filesystem::path(Plan(job).Items.at(0).Target).generic_string(), Compiled("brick.wall.vtf"));
  EXPECT_THAT(Plan(job).Troubles, IsEmpty());
  job.Form.ModelPath = false;
  job.Form.Directory = "walls/old";
  EXPECT_EQ(std::filesystem::path(Plan(job).Items.at(0).Target).generic_string(),
            m_folder.Path("game/materials/walls/old/brick.wall.vtf"));
  for (std::string tools::MaterialCompile::*map :
       {&tools::MaterialCompile::NormalMap, &tools::MaterialCompile::GlowMap, &tools::MaterialCompile::SpecularMap}) {
    CompileImages clashing = Job({"brick.png"});
    clashing.Form.*map = "other/BRICK.jpg";
    clashing.Form.HasNormalMap = clashing.Form.HasGlowMap = true;
    ASSERT_EQ(Plan(clashing).Troubles.size(), 1u);
    EXPECT_EQ(Plan(clashing).Troubles[0].Level, Severity::Warning);
    EXPECT_EQ(Plan(clashing).Troubles[0].Text, "brick.png and other/BRICK.jpg both become brick.tga");
    clashing.Form.*map = "brick.png";
    EXPECT_THAT(Plan(clashing).Troubles, IsEmpty()) << "the same file becomes the same file";
  }
}

TEST_F(CompileImagesTest, AStopWithinAConversionLeavesNothing) {
  const std::string image = m_folder.Path("a.png");
  tests::WriteText(image, "no image, which nobody finds out any more");
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    const auto* line = std::get_if<Line>(&event);
    if (line != nullptr && line->Text.starts_with("Converting ")) stop.request_stop();
  };
  const JobResult result = jobs::Run(Job({image, Image("b.tga")}), m_host, stop.get_token());
  EXPECT_EQ(result.Items[0].Judged, Verdict::Stopped);
  EXPECT_EQ(result.Items[0].Troubles.size(), 1u);
  EXPECT_EQ(result.Items[1].Judged, Verdict::NotBegun);
  EXPECT_EQ(m_host.Text(LineSource::Command), "") << "the tool was not begun either";
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.png", "b.tga"));
}

TEST_F(CompileImagesTest, NeedsAGameAndAsksBeforeItUsesNoDirectory) {
  CompileImages job = Job({Image("a.tga")});
  job.GameDirectory.clear();
  EXPECT_EQ(ObstacleOf(job)->Text, "No game directory is set.");
  EXPECT_FALSE(jobs::Run(job, m_host, {}).Succeeded());
  EXPECT_THAT(m_host.Questions, IsEmpty()) << "no folder is made in the root";
  job.GameDirectory = m_folder.Path("typo");
  EXPECT_EQ(jobs::Run(job, m_host, {}).Troubles[0].File, m_folder.Path("typo"));
  job.GameDirectory = m_folder.Path("game");
  job.Form.Directory.clear();
  m_host.Answer = false;
  EXPECT_FALSE(jobs::Run(job, m_host, {}).Succeeded());
  EXPECT_EQ(m_host.Questions.back().Text,
            "No material output directory specified.\r\nDo you want materials in materials/models dir ?");
  EXPECT_THAT(m_host.All<Started>(), IsEmpty());
}

TEST_F(CompileImagesTest, ANoToADirectoryHoldsForAllImages) {
  m_host.Answer = false;
  const JobResult result = jobs::Run(Job({Image("a.tga"), Image("b.tga")}), m_host, {});
  ASSERT_EQ(m_host.Questions.size(), 1u);
  EXPECT_EQ(m_host.Questions[0].Kind, QuestionKind::MakeDirectory);
  EXPECT_EQ(m_host.Questions[0].Yes, "Create Directory");
  const std::string missing = "The directory " + m_folder.Path("game/materialsrc/models/props") + " does not exist.";
  EXPECT_EQ(tests::WithSlashes(m_host.Questions[0].Details), missing);
  EXPECT_EQ(tests::WithSlashes(result.Items[0].First(Severity::Error)->Text), missing);
  EXPECT_THAT(tests::WithSlashes(m_host.Text(LineSource::Log)), HasSubstr(missing + "\r\n"))
      << "the box alone would be gone";
  EXPECT_EQ(result.Count(Verdict::Failed), 2u);
  EXPECT_EQ(result.Items[1].First(Severity::Error)->Kind, TroubleKind::Missing);
}

TEST_F(CompileImagesTest, AStopEndsTheToolAndBeginsNoFurtherImage) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  CompileImages job = Job({Image("a.tga"), Image("b.tga")});
  job.SdkDirectory = Tool("echo running\nsleep 60\n");
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    const auto* line = std::get_if<Line>(&event);
    if (line != nullptr && line->Source == LineSource::Tool) stop.request_stop();
  };
  const JobResult result = jobs::Run(job, m_host, stop.get_token());
  EXPECT_EQ(result.Items[0].Judged, Verdict::Stopped);
  EXPECT_EQ(result.Items[1].Judged, Verdict::NotBegun);
}

}  // namespace
}  // namespace tarnwick::jobs
