#include <gmock/gmock.h>

#include "both_hosts.h"
#include "jobs/compile_images.h"
#include "jobs/export_textures.h"
#include "support/tga_builder.h"
#include "support/vtf_builder.h"

namespace tarnwick {
namespace {

std::string ImageFile() {
  return tests::TgaOf(tests::PictureOf(8, 4, [](int x, int y) {
    return textures::Bgra{static_cast<uint8_t>(20 * x), static_cast<uint8_t>(y), 200, 255};
  }));
}

const jobs::JobResult& ResultOf(const tests::DoorRun& run) {
  return std::get<jobs::Finished>(run.Events.back()).Result;
}

TEST(TextureDoors, CompileTheSameImagesToTheSameFiles) {
  tests::ScratchFolder folder;
  for (const char* name : {"a.tga", "cut.tga", "normal.tga"}) tests::WriteText(folder.Path(name), ImageFile());
  tests::WriteText(folder.Path("cut.tga"), ImageFile().substr(0, 60));
  tests::WriteText(folder.Path("none.tga"), "no image");
  jobs::CompileImages job{.GameDirectory = folder.Path("game"), .UseDamaged = true};
  job.Form.Images = {folder.Path("a.tga"), folder.Path("cut.tga"), folder.Path("none.tga")};
  job.Form.Directory = "props";
  job.Form.HasNormalMap = true;
  job.Form.NormalMap = folder.Path("normal.tga");
  std::filesystem::create_directory(folder.Path("game"));
  const tests::DoorRun console = tests::RunInConsole(job, folder.Path("game"));
  std::filesystem::create_directory(folder.Path("game"));
  const tests::DoorRun window = tests::RunInWindow(job, folder.Path("game"));
  EXPECT_EQ(console.Events, window.Events);
  EXPECT_EQ(console.Questions, window.Questions);
  EXPECT_EQ(console.Files, window.Files);
  EXPECT_EQ(ResultOf(console).Count(jobs::Verdict::Succeeded), 2u);
  EXPECT_EQ(ResultOf(console).Count(jobs::Verdict::Failed), 1u);
  EXPECT_EQ(console.Files.count("materials/models/props/a.vmt"), 1u);
}

TEST(TextureDoors, ExportTheSameTexturesToTheSameImages) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("in/water.vtf"), tests::VtfBuilder().Frames(3).Build());
  tests::WriteText(folder.Path("in/bad.vtf"), "VTF and nothing");
  for (const bool keepTga : {false, true}) {
    SCOPED_TRACE(keepTga);
    const jobs::ExportTextures job{
        .Inputs = {folder.Path("in")}, .Output = folder.Path("out"), .Format = "png", .KeepTga = keepTga};
    const tests::DoorRun console = tests::RunInConsole(job, folder.Path("out"));
    const tests::DoorRun window = tests::RunInWindow(job, folder.Path("out"));
    EXPECT_EQ(console.Files, window.Files);
    EXPECT_EQ(console.Files.size(), keepTga ? 6u : 3u) << "an image of each frame, and its TGA file if it is kept";
    if (keepTga) {
      EXPECT_EQ(console.Events, window.Events);  // else the lines name a folder that is called otherwise each time
    }
    EXPECT_EQ(ResultOf(console).Count(jobs::Verdict::Succeeded), 1u);
    EXPECT_EQ(ResultOf(window).Count(jobs::Verdict::Failed), 1u);
  }
}

}  // namespace
}  // namespace tarnwick
