#include "tools/material_compile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "tools/probe_run.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A compile whose tool is the probe and whose conversions only write down what they are asked for.
class MaterialCompileTest : public ::testing::Test {
 protected:
  void InstallTool() { std::filesystem::copy_file(CONSOLE_PROBE, m_folder.Path("vtex.exe")); }

  MaterialResult Run(const MaterialCompile& job, size_t index = 0, const std::stop_token& stop = {}) {
    MaterialCompileCalls calls{m_report};
    calls.Run = QuietOptions();
    calls.Run.Stop = stop;
    calls.ConvertToTga = [this](const std::string& source, const std::optional<std::string>& alpha,
                                const std::string& directory, std::string& log) {
      m_conversions.push_back(source + (alpha ? " + " + *alpha : "") + " > " + directory);
      log += (alpha ? "merged " : "converted ") + source + "\r\n";
      return source == "bad.png" ? std::string() : directory + "/" + source + ".tga";
    };
    calls.OnWarning = [this](const std::string& warning) {
      m_warnings.push_back(warning);
      return std::string();
    };
    calls.OnToolStart = [this](const std::string& line) { m_started = line; };
    return RunVtex(job, index, m_folder.Path(), "G:", calls);
  }

  tests::ScratchFolder m_folder;
  tests::RecordingReport m_report;
  std::vector<std::string> m_conversions;
  std::vector<std::string> m_warnings;
  std::string m_started;  // the tool's command line
};

MaterialCompile Job() {
  MaterialCompile job;
  job.Images = {"a.png", "bad.png"};
  job.Directory = "props";
  return job;
}

TEST_F(MaterialCompileTest, ConvertsAnImageAndRunsTheToolOnIt) {
  InstallTool();
  const MaterialResult result = Run(Job());
  const std::string destination = "G:\\materialsrc\\models\\props";
  EXPECT_THAT(m_conversions, ElementsAre("a.png > " + destination));
  const std::string line = SdkToolPath(m_folder.Path(), Vtex) +
                           " -nopause -shader VertexLitGeneric -vmtparam $model 1 \"" + destination + "/a.png.tga\"";
  EXPECT_EQ(m_started, line);
  EXPECT_THAT(result.Log, ::testing::StartsWith("converted a.png\r\n" + line + "\r\n"));
  EXPECT_THAT(m_warnings, ElementsAre(::testing::HasSubstr(destination + "/a.png.tga"), ::testing::HasSubstr("G:")))
      << "what the checks before the run found";
  EXPECT_THAT(m_report.Boxes, IsEmpty());
}

TEST_F(MaterialCompileTest, StartsNoToolOnAnImageThatCouldNotBeConverted) {
  InstallTool();
  const MaterialResult result = Run(Job(), 1);
  EXPECT_EQ(m_started, "");
  EXPECT_EQ(result.Log, "converted bad.png\r\n");
}

TEST_F(MaterialCompileTest, PutsEachMapWhereItsCheckBoxesSay) {
  const struct {
    void (*Choose)(MaterialCompile& job);
    std::vector<std::string> Conversions;
  } cases[] = {
      {[](MaterialCompile& job) { job.HasNormalMap = job.HasGlowMap = false; }, {"s", "a"}},
      {[](MaterialCompile&) {}, {"n", "g", "s", "a + g"}},
      {[](MaterialCompile& job) { job.UseSelfIllumTexture = true; }, {"n", "g", "s", "a"}},
      {[](MaterialCompile& job) { job.MaskInNormalAlpha = true; }, {"n + s", "g", "a + g"}},
      {[](MaterialCompile& job) { job.MaskInIllumAlpha = job.UseSelfIllumTexture = true; }, {"n", "g + s", "s", "a"}},
      {[](MaterialCompile& job) { job.MaskInBaseAlpha = true; }, {"n", "g", "s", "a + g"}},
      {[](MaterialCompile& job) { job.MaskInBaseAlpha = job.UseSelfIllumTexture = true; }, {"n", "g", "s", "a + s"}},
  };
  for (const auto& c : cases) {
    MaterialCompile job;
    job.Images = {"a"};
    job.ModelPath = false;
    job.NormalMap = "n";
    job.GlowMap = "g";
    job.SpecularMap = "s";
    job.HasNormalMap = job.HasGlowMap = true;
    c.Choose(job);
    std::vector<std::string> expected;
    for (const auto& conversion : c.Conversions) expected.push_back(conversion + " > G:\\materialsrc\\");
    m_conversions.clear();
    Run(job);
    EXPECT_EQ(m_conversions, expected);
  }
}

TEST_F(MaterialCompileTest, TellsOfAMissingToolBehindTheConversions) {
  const MaterialResult result = Run(Job());
  EXPECT_EQ(m_conversions.size(), 1u);
  ASSERT_EQ(m_report.Boxes.size(), 1u);
  EXPECT_EQ(m_report.Boxes[0].Caption, "VTEX ERROR");
  EXPECT_FALSE(result.ToolFound);
}

TEST_F(MaterialCompileTest, StartsNoToolAfterAStop) {
  InstallTool();
  std::stop_source stop;
  stop.request_stop();
  Run(Job(), 0, stop.get_token());
  EXPECT_EQ(m_started, "");
}

}  // namespace
}  // namespace tarnwick::tools
