#include "jobs/decompile_tree.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "core/paths.h"
#include "jobs/summary.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"

namespace tarnwick::jobs {
namespace {

using core::Severity;
using core::TroubleKind;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tests::ModelBuilder;
using tests::RecordingHost;
using tests::ScratchFolder;

class DecompileTreeTest : public testing::Test {
 protected:
  std::string Model(const std::string& folder, const std::string& name) {
    return ModelBuilder{}.Write(m_models.Path(folder), name);
  }
  /// The directories of the planned models, below the output directory.
  std::vector<std::string> Targets(DecompileTree job) {
    job.OutputDirectory = "out";
    std::vector<std::string> targets;
    for (const PlannedItem& item : Plan(job).Items) {
      targets.push_back(std::filesystem::path(item.Target).generic_string());
    }
    return targets;
  }
  JobResult Decompile(DecompileTree job, const std::stop_token& stop = {}) {
    job.OutputDirectory = m_output.Path("out");
    return jobs::Run(job, m_host, stop);
  }

  ScratchFolder m_models;
  ScratchFolder m_output;
  RecordingHost m_host;
};

TEST_F(DecompileTreeTest, GivesEachModelItsDirectory) {
  const std::string cube = Model("a", "cube");
  const std::string deep = Model("a/deep", "cube");
  const std::string other = Model("b", "CUBE");
  const std::string folder = m_models.Path("a");
  EXPECT_THAT(Targets({.Inputs = {cube}}), ElementsAre("out"));
  EXPECT_THAT(Targets({.Inputs = {cube}, .OwnFolders = true}), ElementsAre("out/cube"));
  EXPECT_THAT(Targets({.Inputs = {cube, other}}), ElementsAre("out/cube", "out/CUBE_2"));
  EXPECT_THAT(Targets({.Inputs = {folder}}), ElementsAre("out/cube")) << "a folder may get a second model later";
  EXPECT_THAT(Targets({.Inputs = {folder}, .Recursive = true}), ElementsAre("out/cube", "out/deep/cube"));
  EXPECT_THAT(Targets({.Inputs = {folder, other}, .Recursive = true}),
              ElementsAre("out/cube", "out/deep/cube", "out/CUBE_2"));
}

TEST_F(DecompileTreeTest, TellsOfAFolderThatHoldsNoModel) {
  std::filesystem::create_directories(m_models.Path("empty/deep"));
  const JobPlan plan = Plan({.Inputs = {m_models.Path("empty")}});
  EXPECT_TRUE(plan.Items.empty());
  ASSERT_EQ(plan.Troubles.size(), 1u);
  EXPECT_EQ(plan.Troubles[0].Kind, TroubleKind::Missing);
  EXPECT_EQ(plan.Troubles[0].File, m_models.Path("empty"));
  EXPECT_FALSE(Decompile({.Inputs = {m_models.Path("empty")}}).Succeeded());
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("out")));
}

#ifndef _WIN32
TEST_F(DecompileTreeTest, RefusesNamesThatWouldLeadOutOfTheTree) {
  Model("tree/in", "m");
  Model("", "outside");  // what the first name below would reach if its backslashes separated
  Model("tree/in", "..\\..\\outside");
  Model("tree/a\\..\\..\\b", "n");
  const JobPlan plan =
      Plan(DecompileTree{.Inputs = {m_models.Path("tree")}, .OutputDirectory = "out", .Recursive = true});
  ASSERT_EQ(plan.Items.size(), 1u);
  EXPECT_EQ(plan.Items[0].Target, "out/in/m");
  EXPECT_THAT(plan.Troubles, AllOf(testing::SizeIs(2), Each(Field(&core::Trouble::Kind, TroubleKind::Refused))));
}
#endif

TEST_F(DecompileTreeTest, TellsOneModelFromItsStartToItsFiles) {
  const std::string model = Model("", "cube");
  const JobResult result = Decompile({.Inputs = {model}});
  const std::string out = m_output.Path("out");
  EXPECT_TRUE(result.Succeeded());
  ASSERT_EQ(result.Items.size(), 1u);
  EXPECT_THAT(result.Items[0].Files, ElementsAre(Field(&core::WrittenFile::Path, EndsWith("ravelback.qc")),
                                                 Field(&core::WrittenFile::Path, EndsWith("cube.smd"))));
  for (const core::WrittenFile& file : result.Items[0].Files) {
    EXPECT_EQ(file.Size, std::filesystem::file_size(file.Path));
  }
  EXPECT_EQ(m_host.All<ItemStarted>(), std::vector<ItemStarted>({{0, model, out}}));
  EXPECT_THAT(m_host.Text(LineSource::Log),
              AllOf(HasSubstr("Loaded model " + model + "\r\n"), EndsWith("\r\nCompleted Dumping Model!\r\n")));
  const Progress last = m_host.All<Progress>().back();
  EXPECT_EQ(last.Done, 1u) << "the script is named behind the last event";
  EXPECT_EQ(last.Begun, 2u);
}

TEST_F(DecompileTreeTest, AFailureEndsNoOtherModelAndLeavesNoEmptyFolder) {
  for (const char* name : {"a", "b", "c"}) Model("", name);
  std::filesystem::remove(m_models.Path("a.dx90.vtx"));
  const JobResult result =
      Decompile({.Inputs = {m_models.Path("a.mdl"), m_models.Path("none.mdl"), m_models.Path("b.mdl")}, .Threads = 2});
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Kind, TroubleKind::Missing);
  EXPECT_EQ(result.Items[1].First(Severity::Error)->Kind, TroubleKind::Unreadable);
  EXPECT_TRUE(result.Items[2].Succeeded());
  EXPECT_THAT(m_output.Files(), ElementsAre("out/b/cube.smd", "out/b/ravelback.qc"));
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("out/a")));
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("out/none")));
}

TEST_F(DecompileTreeTest, SaysWhichDirectoryCannotBeMade) {
  const std::string model = Model("", "cube");
  tests::WriteText(m_output.Path("out"), "a file");
  const JobResult result = Decompile({.Inputs = {model}, .OwnFolders = true});
  const core::Trouble* error = result.Items[0].First(Severity::Error);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->Kind, TroubleKind::Unwritable);
  EXPECT_EQ(error->Caption, "File Error");
  EXPECT_THAT(error->Text, HasSubstr("The output directory " + m_output.Path("out")));
  EXPECT_EQ(tests::ReadText(m_output.Path("out")), "a file");
}

TEST_F(DecompileTreeTest, AFolderAppearsWithItsFilesOrIsMissedAloud) {
  const std::string model = Model("", "cube"), target = m_output.Path("out/cube");
  m_host.OnEvent = [&](const Event& event) {
    if (std::get_if<Progress>(&event) == nullptr) return;
    EXPECT_FALSE(std::filesystem::exists(target));
  };
  EXPECT_TRUE(Decompile({.Inputs = {model}, .OwnFolders = true}).Succeeded());
  EXPECT_THAT(m_output.Files(), ElementsAre("out/cube/cube.smd", "out/cube/ravelback.qc"));

  std::filesystem::remove_all(target);
  m_host.OnEvent = [&](const Event& event) {
    if (std::get_if<Progress>(&event) != nullptr) tests::WriteText(target, "a file");
  };
  const JobResult result = Decompile({.Inputs = {model}, .OwnFolders = true});
  ASSERT_NE(result.Items[0].First(Severity::Error), nullptr);
  EXPECT_EQ(result.Items[0].First(Severity::Error)->Kind, TroubleKind::Unwritable);
  EXPECT_THAT(result.Items[0].Files, IsEmpty());
  EXPECT_THAT(m_output.Files(), ElementsAre("out/cube"));
}

TEST_F(DecompileTreeTest, AStopLeavesNoTemporaryFileAndBeginsNoFurtherModel) {
  for (const char* name : {"a", "b"}) Model("", name);
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    if (std::holds_alternative<Progress>(event)) stop.request_stop();
  };
  const JobResult result = Decompile({.Inputs = {m_models.Path()}}, stop.get_token());
  EXPECT_EQ(result.Items[0].Judged, Verdict::Stopped);
  EXPECT_EQ(result.Items[1].Judged, Verdict::NotBegun);
  EXPECT_THAT(m_output.Files(), Each(Not(HasSubstr("tarnwick-"))));
  EXPECT_THAT(SummaryLine(result, "model"), testing::StartsWith("2 models in ")) << "no file was written";
  EXPECT_THAT(SummaryLine(result, "model"), EndsWith(", 0 failed, 1 stopped, 1 not begun"));
}

TEST_F(DecompileTreeTest, OneByOneTellsEachModelBeforeTheNext) {
  for (const char* name : {"a", "b", "c", "d"}) Model("", name);
  EXPECT_TRUE(Decompile({.Inputs = {m_models.Path()}, .Threads = 4, .OneByOne = true}).Succeeded());
  size_t atWork = 0;
  for (const Event& event : m_host.Events) {
    atWork += std::holds_alternative<ItemStarted>(event) ? 1u : 0u;
    EXPECT_LE(atWork, 1u);
    atWork -= std::holds_alternative<ItemFinished>(event) ? 1u : 0u;
  }
}

TEST(Summary, CountsFilesAndGroupsFailuresByWhatTheyShare) {
  const auto failed = [](std::string text, std::string alike) {
    ItemResult item{.Judged = Verdict::Failed};
    item.Troubles = {{.Level = Severity::Warning, .Text = "never mind"},
                     {.Text = std::move(text), .Alike = std::move(alike)},
                     {.Text = "a second error"}};
    return item;
  };
  ItemResult good{.Judged = Verdict::Succeeded};
  good.Files = {{"a", 1000}, {"b", 24}};
  JobResult result;
  result.Items = {failed("no a.vvd", "no vertex file"), good, failed("b.mdl is cut", ""),
                  failed("no c.vvd", "no vertex file")};
  result.Seconds = 1.25;
  EXPECT_EQ(SummaryLine(result, "model"), "4 models, 2 files, 1.00 KB in 1.25 s, 3 with warnings, 3 failed");
  EXPECT_THAT(GroupFailures(result), ElementsAre(FailureGroup{"b.mdl is cut", 1}, FailureGroup{"no vertex file", 2}));
  result.Items = {good};
  EXPECT_EQ(SummaryLine(result, "texture"), "1 texture, 2 files, 1.00 KB in 1.25 s, 0 failed");
  EXPECT_THAT(GroupFailures(result), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::jobs
