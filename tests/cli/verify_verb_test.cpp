#include <gmock/gmock.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "model/studio_records.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using namespace tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

/// A sound model in a folder, the same below it with a value in its header that no source can say, and one that is
/// none.
class VerifyVerb : public VerbTest {
 protected:
  VerifyVerb() {
    const std::string sample = TARNWICK_SAMPLES "/walker";
    for (const char* ending : {".mdl", ".vvd", ".dx90.vtx", ".phy"}) {
      for (const char* name : {"walker", "below/odd"}) {
        std::filesystem::create_directories(m_folder.Path("below"));
        std::filesystem::copy_file(sample + ending, m_folder.Path(std::string(name) + ending));
      }
    }
    std::fstream odd(Odd, std::ios::in | std::ios::out | std::ios::binary);
    odd.seekp(offsetof(model::StudioHeader, AllowedRootLods));
    odd.put(64);
    EXPECT_TRUE(odd.flush());
    WriteText(Broken, "IDST");
  }

  int Run(const std::vector<std::string>& arguments) { return RunVerb({"verify"}, arguments); }

  ScratchFolder m_folder;
  const std::string Sound = m_folder.Path("walker.mdl");
  const std::string Odd = m_folder.Path("below/odd.mdl");
  const std::string Broken = m_folder.Path("broken.mdl");
};

TEST_F(VerifyVerb, TellsEachModelAndFailsIfOneDiffers) {
  EXPECT_EQ(Run({Sound}), ExitSuccess);
  EXPECT_EQ(m_out, Sound + ": same\n");
  EXPECT_THAT(m_err, StartsWith("1 model in "));

  EXPECT_EQ(Run({Odd}), ExitFailure);
  EXPECT_EQ(m_out, Odd + ": differs: header: allowed root levels differs: 64 and 0\n");

  EXPECT_EQ(Run({"-j", "1", m_folder.Path()}), ExitFailure);
  EXPECT_THAT(WithSlashes(m_out), AllOf(HasSubstr(Sound + ": same\n"), HasSubstr(Broken + ": failed: decompiling: ")));
  EXPECT_THAT(m_out, testing::Not(HasSubstr("odd.mdl"))) << "a folder below is taken with -r only";
  EXPECT_THAT(m_err, StartsWith("2 models in "));
}

TEST_F(VerifyVerb, IsQuietAboutWhatWentWellOnly) {
  EXPECT_EQ(Run({"-q", Sound}), ExitSuccess);
  EXPECT_EQ(m_out + m_err, "");
  EXPECT_EQ(Run({"--quiet", "-r", m_folder.Path()}), ExitFailure);
  EXPECT_THAT(WithSlashes(m_out), AllOf(HasSubstr(Odd + ": differs"), HasSubstr(Broken + ": failed")));
  EXPECT_THAT(m_out, testing::Not(HasSubstr(": same")));
  EXPECT_EQ(m_err, "");
}

TEST_F(VerifyVerb, GivesEveryDifferenceAsJson) {
  EXPECT_EQ(Run({"--json", "-r", "-j", "1", m_folder.Path()}), ExitFailure);
  std::vector<nlohmann::json> models;
  std::istringstream lines(m_out);
  for (std::string line; std::getline(lines, line);) models.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(models.size(), 3u);
  for (const nlohmann::json& one : models) {
    EXPECT_GT(one["seconds"], 0);
    EXPECT_EQ(one["kept"], "");
    EXPECT_EQ(one["sources"], nlohmann::json::array());
    const std::string model = WithSlashes(one["model"]);
    if (model == Odd) {
      EXPECT_EQ(one["outcome"], "differs");
      EXPECT_EQ(one["differences"].dump(),
                R"([{"count":1,"derived":"","first":"64","largest":0.0,"rounding":false,"second":"0",)"
                R"("table":"header","what":"allowed root levels","where":""}])");
    } else {
      EXPECT_EQ(one["outcome"], model == Sound ? "same" : "failed");
      EXPECT_EQ(one["differences"].size(), 0u);
      EXPECT_EQ(one["errors"].size(), model == Sound ? 0u : 1u);
    }
  }
}

TEST_F(VerifyVerb, KeepsWhatItMadeAndTellsDetailsWhereThatIsWanted) {
  EXPECT_EQ(Run({Odd}), ExitFailure);
  EXPECT_THAT(m_err, testing::Not(HasSubstr("allowed root levels differs")));
  EXPECT_EQ(Run({"--details", "--keep", m_folder.Path("kept"), Odd}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("allowed root levels differs"));
  EXPECT_THAT(m_folder.Files(),
              testing::IsSupersetOf({"kept/odd/sources/ravelback.qc", "kept/odd/again/ravelback.qc"}));
}

TEST_F(VerifyVerb, RefusesAWrongCommandLine) {
  for (const std::vector<std::string>& wrong : {std::vector<std::string>{}, {"-j", "0", Sound}, {"--speed", Sound}}) {
    EXPECT_EQ(Run(wrong), ExitUsage) << testing::PrintToString(wrong);
  }
}

}  // namespace
}  // namespace tarnwick::cli
