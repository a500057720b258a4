#include "sdk/vtf2tga_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "sdk/tool_console.h"
#include "sdk/vtf_builder.h"
#include "support/scratch_folder.h"

namespace tarnwick::sdk {
namespace {

using ::testing::HasSubstr;
using tests::ReadText;
using tests::ScratchFolder;
using tests::VtfBuilder;
using tests::WriteText;

struct ToolRun {
  int Code;
  std::string Out;
  std::string Err;
};

ToolRun Call(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int code = Vtf2Tga(arguments, out, err);
  return {code, out.str(), err.str()};
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
