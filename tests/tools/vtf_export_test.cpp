#include "tools/vtf_export.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "tools/probe_run.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {
namespace {

TEST(VtfExport, SuggestsATgaFileBesideTheInput) {
  EXPECT_EQ(SuggestOutputName(R"(C:\art\wall.vtf)"), R"(C:\art\wall.tga)");
  EXPECT_EQ(SuggestOutputName("/v1.5/wall"), "/v1.5/wall.tga");
}

TEST(VtfExport, RunsTheToolOnTheStemAndConvertsWhatItMade) {
  const tests::ScratchFolder folder;
  std::filesystem::copy_file(CONSOLE_PROBE, folder.Path("vtf2tga.exe"));
  const struct {
    const char *Output, *Tga, *Image;
  } cases[] = {{"out.png", "out.tga", "out.png"},
               {"out.tga", "out.tga", "out.tga"},
               {"out", "out.tga", "out.tga"},
               {"", "in.tga", "in.tga"}};
  for (const auto& c : cases) {
    tests::RecordingReport report;
    std::string converted;
    const auto convert = [&](const std::string& tga, const std::string& image, std::string& log) {
      converted = tga + " " + image;
      log += "done";
      return true;
    };
    const auto result = ExtractVtf({folder.Path(), "in.vtf", c.Output}, convert, QuietOptions(), report);
    EXPECT_EQ(result.Run.CommandLine,
              SdkToolPath(folder.Path(), Vtf2tga) + " -nopause -i \"in.vtf\" -o \"" + std::string(c.Tga) + "\"");
    EXPECT_EQ(converted, std::string(c.Tga) + " " + c.Image);
    EXPECT_THAT(result.Log, ::testing::StartsWith(result.Run.CommandLine + "\r\n"));
    EXPECT_THAT(result.Log, ::testing::EndsWith("\r\nWarning: the VTF file in.vtf does not exist\r\ndone"));
  }
}

TEST(VtfExport, DoesNothingWithoutTheTool) {
  tests::RecordingReport report;
  const auto convert = [](const std::string&, const std::string&, std::string&) {
    ADD_FAILURE() << "nothing to convert";
    return false;
  };
  EXPECT_FALSE(ExtractVtf({"", "in.vtf", "out.png"}, convert, QuietOptions(), report).ToolFound);
  ASSERT_EQ(report.Boxes.size(), 1u);
  EXPECT_THAT(report.Boxes[0].Text, ::testing::StartsWith("Command /vtf2tga.exe not found.\r\n"));
}

}  // namespace
}  // namespace tarnwick::tools
