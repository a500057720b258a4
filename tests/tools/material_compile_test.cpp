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
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A compile whose tool is the probe and whose conversions only write down what they are asked for.
class MaterialCompileTest : public ::testing::Test {
 protected:
  void InstallTool() { std::filesystem::copy_file(CONSOLE_PROBE, m_folder.Path("vtex.exe")); }

  MaterialCompileCalls Calls() {
    m_log.SetTarget(&m_pageLog);
    MaterialCompileCalls calls{m_report, m_log, [this] { return m_folder.Path(); }, [] { return "G:"; }, {}, {}, {}, {},
                               {},       {}};
    calls.Run = QuietOptions();
    calls.ConvertToTga = [this](const std::string& source, const std::optional<std::string>& alpha,
                                const std::string& directory, std::string& log) {
      m_conversions.push_back(source + (alpha ? " + " + *alpha : "") + " > " + directory);
      log += (alpha ? "merged " : "converted ") + source + "\r\n";
      return source == "bad.png" ? std::string() : directory + "/" + source + ".tga";
    };
    return calls;
  }

  tests::ScratchFolder m_folder;
  tests::RecordingReport m_report;
  PageLog m_log;
  std::string m_pageLog;
  std::vector<std::string> m_conversions;
};

MaterialCompile Job() {
  MaterialCompile job;
  job.Images = {"a.png", "bad.png"};
  job.Directory = "props";
  return job;
}

TEST_F(MaterialCompileTest, ConvertsAndRunsOneImageAfterTheOther) {
  InstallTool();
  const auto results = CompileMaterials(Job(), Calls());
  const std::string destination = "G:\\materialsrc\\models\\props";
  EXPECT_THAT(m_conversions, ElementsAre("a.png > " + destination, "bad.png > " + destination));
  EXPECT_EQ(m_pageLog,
            "Material Output Dir: props\r\nRunning VTEX on a.png\r\nVTEX COMPLETED !\r\nRunning VTEX on "
            "bad.png\r\nVTEX COMPLETED !\r\n\r\n");
  ASSERT_EQ(results.size(), 2u);
  const std::string line = SdkToolPath(m_folder.Path(), Vtex) +
                           " -nopause -shader VertexLitGeneric -vmtparam $model 1 \"" + destination + "/a.png.tga\"";
  EXPECT_THAT(results[0].Log, ::testing::StartsWith("converted a.png\r\n" + line + "\r\n"));
  // A conversion that failed is told by the conversion; the tool gets what there is.
  EXPECT_THAT(results[1].Run.CommandLine, ::testing::EndsWith(" \"\""));
  EXPECT_THAT(m_report.Boxes, IsEmpty());
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
    CompileMaterials(job, Calls());
    EXPECT_EQ(m_conversions, expected);
  }
}

TEST_F(MaterialCompileTest, AMissingToolIsToldForEachImageAfterItsConversion) {
  const auto results = CompileMaterials(Job(), Calls());
  EXPECT_EQ(m_conversions.size(), 2u);
  ASSERT_EQ(m_report.Boxes.size(), 2u);
  EXPECT_EQ(m_report.Boxes[1].Caption, "VTEX ERROR");
  EXPECT_THAT(m_pageLog, HasSubstr("bad.png\r\nVTEX COMPLETED !\r\n"));
  EXPECT_FALSE(results[0].ToolFound);
}

TEST_F(MaterialCompileTest, AsksBeforeItCompilesIntoNoDirectory) {
  InstallTool();
  MaterialCompile job = Job();
  job.Directory.clear();
  MaterialCompileCalls calls = Calls();
  std::string asked;
  calls.Confirm = [&](const std::string& text, const std::string& caption) {
    asked = caption + ": " + text;
    return false;
  };
  EXPECT_THAT(CompileMaterials(job, calls), IsEmpty());
  EXPECT_EQ(asked,
            "Warning: No material output directory specified.\r\nDo you want materials in materials/models dir ?");
  EXPECT_EQ(m_pageLog, "");
  calls.Confirm = [](const std::string&, const std::string&) { return true; };
  EXPECT_EQ(CompileMaterials(job, calls).size(), 2u);
  EXPECT_EQ(m_conversions[0], "a.png > G:\\materialsrc\\models\\");
}

TEST_F(MaterialCompileTest, AStopEndsTheWholeCompile) {
  InstallTool();
  std::atomic<bool> stop = false;
  MaterialCompileCalls calls = Calls();
  calls.Run.Stop = &stop;
  calls.OnToolStart = [&](const std::string&) { stop = true; };
  const auto results = CompileMaterials(Job(), calls);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(m_conversions.size(), 1u);
}

}  // namespace
}  // namespace tarnwick::tools
