#include "sdk/vtf2tga_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "sdk/tool_run.h"
#include "support/real_files.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"

namespace tarnwick::sdk {

using namespace textures;
namespace {

using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using tests::ReadText;
using tests::RealFilesFolder;
using tests::ScratchFolder;
using tests::ToolRun;
using tests::VtfBuilder;
using tests::WriteText;

ToolRun Call(const std::vector<std::string>& arguments) {
  return tests::CallTool(Vtf2Tga, arguments);
}

TEST(Vtf2Tga, PrintsTheFactsOfATextureInAStableForm) {
  ScratchFolder folder;
  VtfBuilder builder;
  builder.Version(4).Size(8, 4).Format(PixelFormat::Dxt5).Mips(4).Frames(2).LowImage('x');
  builder.Header().Flags = VtfEightBitAlpha | VtfClampS;
  builder.Header().Reflectivity[1] = 0.25f;
  WriteText(folder.Path("a b.vtf"), builder.Build());

  const ToolRun text = Call({"-nopause", "-info", "-i", folder.Path("a b.vtf")});
  EXPECT_EQ(text.Code, ToolSuccess) << text.Err;
  EXPECT_EQ(text.Out, "file: " + folder.Path("a b.vtf") +
                          "\nversion: 7.4\nwidth: 8\nheight: 4\ndepth: 1\nformat: DXT5\n"
                          "flags: 0x00002004 (clamp S, eight-bit alpha)\nframes: 2\nfirst frame: 0\nfaces: 1\n"
                          "mip levels: 4\nreflectivity: 0 0.25 0\nbump scale: 1\nlow resolution image: DXT1 8 x 8\n");

  const ToolRun json = Call({"-json", folder.Path("a b.vtf")});
  EXPECT_EQ(json.Code, ToolSuccess) << json.Err;
  EXPECT_THAT(json.Out, HasSubstr("\"format\": \"DXT5\",\n  \"flags\": 8196,"));
}

TEST(Vtf2Tga, WritesTheLargestImageWithAlphaWhereTheFormatHoldsIt) {
  ScratchFolder folder;
  // Level 1 is one pixel of 2 bytes; level 0 follows.
  const std::string levels = std::string("..") + "a1b2" + "c3d4";
  WriteText(folder.Path("ia.vtf"), VtfBuilder().Size(2, 2).Mips(2).Format(PixelFormat::Ia88).Pixels(levels).Build());
  WriteText(folder.Path("bgr.vtf"), VtfBuilder().Size(2, 1).Format(PixelFormat::Bgr888).Pixels("bgrBGR").Build());

  EXPECT_EQ(Call({"-nopause", "-i", folder.Path("ia.vtf"), "-o", folder.Path("out x.tga")}).Code, ToolSuccess);
  EXPECT_EQ(ReadText(folder.Path("out x.tga")),
            std::string("\0\0\2\0\0\0\0\0\0\0\0\0\2\0\2\0\x20\x08", 18) + "ccc3ddd4aaa1bbb2");
  EXPECT_EQ(Call({folder.Path("bgr.vtf")}).Code, ToolSuccess);
  EXPECT_EQ(ReadText(folder.Path("bgr.tga")), std::string("\0\0\2\0\0\0\0\0\0\0\0\0\2\0\1\0\x18\0", 18) + "bgrBGR");
  EXPECT_EQ(Call({folder.Path("ia.vtf"), "-mip", "1"}).Code, ToolSuccess);
  EXPECT_EQ(ReadText(folder.Path("ia.tga")).substr(18), "....");
  EXPECT_EQ(Call({folder.Path("ia.vtf"), "-mip", "2"}).Code, ToolFailure);
}

TEST(Vtf2Tga, NumbersFurtherFramesFacesAndSlices) {
  ScratchFolder folder;
  WriteText(folder.Path("water.vtf"), VtfBuilder().Size(1, 1).Frames(3).Pixels("abc").Build());
  WriteText(folder.Path("sky.v1.vtf"), VtfBuilder().Size(1, 1).EnvironmentMap(0xFFFF).Frames(2).Build());
  WriteText(folder.Path("fog.vtf"), VtfBuilder().Size(1, 1, 2).Build());

  const ToolRun run = Call({"-nopause", "-i", folder.Path("water.vtf"), "-o", folder.Path("water.tga")});
  EXPECT_THAT(run.Out, HasSubstr("water002.tga: 1 x 1, 24 bits, from I8\n"));
  EXPECT_EQ(ReadText(folder.Path("water.tga")).back(), 'a');
  EXPECT_EQ(ReadText(folder.Path("water002.tga")).back(), 'c');
  EXPECT_EQ(Call({folder.Path("sky.v1.vtf")}).Code, ToolSuccess);
  EXPECT_EQ(Call({folder.Path("fog.vtf")}).Code, ToolSuccess);
  EXPECT_THAT(folder.Files(), IsSupersetOf({"water001.tga", "sky.v1.tga", "sky.v1_face5.tga", "sky.v1001_face5.tga",
                                            "fog_slice1.tga"}));
  EXPECT_EQ(folder.Files().size(), 3u + 3 + 12 + 2);
}

TEST(Vtf2Tga, LeavesWhatIsThereWhenItCannotWrite) {
  ScratchFolder folder;
  WriteText(folder.Path("one.vtf"), VtfBuilder().Build());
  const std::string before = ReadText(folder.Path("one.vtf"));

  const ToolRun ontoItself = Call({"-i", folder.Path("one.vtf"), "-o", folder.Path("one.vtf")});
  EXPECT_EQ(ontoItself.Code, ToolFailure);
  EXPECT_EQ(ReadText(folder.Path("one.vtf")), before);
  const ToolRun noFolder = Call({"-i", folder.Path("one.vtf"), "-o", folder.Path("missing/one.tga")});
  EXPECT_EQ(noFolder.Code, ToolFailure);
  EXPECT_EQ(noFolder.Err, "Error: " + folder.Path("missing/one.tga") + ": No such file or directory\n");
  EXPECT_EQ(folder.Files(), std::vector<std::string>{"one.vtf"});
}

TEST(Vtf2Tga, ExportsEveryRealTexture) {
  const std::string textures = RealFilesFolder() + "/textures";
  if (!std::filesystem::is_directory(textures)) GTEST_SKIP() << "there are no real textures beside the checkout";
  ScratchFolder folder;
  size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(textures)) {
    if (entry.path().extension() != ".vtf") continue;
    const ToolRun run = Call({"-nopause", "-i", entry.path().string(), "-o", folder.Path("texture.tga")});
    EXPECT_EQ(run.Code, ToolSuccess) << run.Err;
    ++count;
  }
  EXPECT_GT(count, 0u);
}

TEST(Vtf2Tga, TellsWrongUsageFromFailedWork) {
  ScratchFolder folder;
  WriteText(folder.Path("text.vtf"), std::string(100, 'x'));

  const ToolRun damaged = Call({"-nopause", "-i", folder.Path("text.vtf"), "-o", folder.Path("text.tga")});
  EXPECT_EQ(damaged.Code, ToolFailure);
  EXPECT_EQ(damaged.Err,
            "Error: " + folder.Path("text.vtf") + ": the file is no texture: it does not start with VTF\n");
  EXPECT_EQ(Call({"-nopause", "-i", folder.Path("missing.vtf")}).Code, ToolFailure);
  EXPECT_EQ(folder.Files(), std::vector<std::string>{"text.vtf"});

  EXPECT_EQ(Call({"-nopause"}).Code, ToolWrongUsage);
  EXPECT_EQ(Call({"-nopause", "-i", ""}).Code, ToolWrongUsage);
  EXPECT_EQ(Call({"-i", "a.vtf", "-o"}).Code, ToolWrongUsage);
  EXPECT_EQ(Call({"-nopuase", "a.vtf"}).Code, ToolWrongUsage);
  EXPECT_EQ(Call({"a.vtf", "b.vtf"}).Code, ToolWrongUsage);
  EXPECT_EQ(Call({"-help"}).Code, ToolSuccess);
}

}  // namespace
}  // namespace tarnwick::sdk
