#include "sdk/vtex_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "core/file_image.h"
#include "sdk/tool_run.h"
#include "sdk/vtf2tga_program.h"
#include "support/pixel_reference.h"
#include "support/scratch_folder.h"
#include "support/tga_builder.h"
#include "textures/tga_reader.h"
#include "textures/vtf_file.h"

namespace tarnwick::sdk {

using namespace textures;
namespace {

using tests::ReferencePixel;

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using tests::CallTool;
using tests::PictureOf;
using tests::ReadText;
using tests::ScratchFolder;
using tests::TgaOf;
using tests::ToolRun;
using tests::WriteText;

/// A smooth picture, as textures are, with or without alpha.
Picture Smooth(int width, int height, bool alpha) {
  return PictureOf(width, height, [&](int x, int y) {
    const auto wave = [](double at) { return static_cast<uint8_t>(127.5 + 100 * std::sin(at)); };
    return Bgra{wave(x / 25.0), wave(y / 30.0), wave((x + y) / 40.0), alpha ? wave(x / 20.0) : uint8_t{255}};
  });
}

/// Root of the mean square of the differences of all channels.
double Distance(const Picture& a, const Picture& b) {
  EXPECT_EQ(a.Pixels.size(), b.Pixels.size());
  double sum = 0;
  for (size_t i = 0; i < a.Pixels.size(); ++i) {
    const auto square = [](int x, int y) { return static_cast<double>((x - y) * (x - y)); };
    const Bgra& p = a.Pixels[i];
    const Bgra& q = b.Pixels[i];
    sum += square(p.B, q.B) + square(p.G, q.G) + square(p.R, q.R) + square(p.A, q.A);
  }
  return std::sqrt(sum / static_cast<double>(4 * a.Pixels.size()));
}

/// A game directory in which the tool is run.
class VtexTest : public ::testing::Test {
 protected:
  std::string Source(const std::string& name) { return m_folder.Path("game/materialsrc/" + name); }
  std::string Made(const std::string& name) { return m_folder.Path("game/materials/" + name); }

  /// Writes the TGA and its option file, runs the tool on it and opens the texture.
  VtfInfo Make(const Picture& picture, const std::string& options = {}) {
    WriteText(Source("t.tga"), TgaOf(picture));
    WriteText(Source("t.txt"), options);
    const ToolRun run = CallTool(Vtex, {"-nopause", Source("t.tga")});
    EXPECT_EQ(run.Code, ToolSuccess);
    EXPECT_EQ(run.Err, "");
    return Open("t.vtf");
  }

  VtfInfo Open(const std::string& name) {
    std::string reason;
    m_image = core::FileImage::Read(Made(name), &reason);
    if (m_image) m_file = VtfFile::Open(m_image->View(), reason);
    EXPECT_TRUE(m_image && m_file) << reason;
    return m_file->Info();
  }

  Picture Decode(const VtfImagePlace& place) {
    const VtfInfo& info = m_file->Info();
    const StoredImage image{info.Format, MipSize(info.Width, place.Mip), MipSize(info.Height, place.Mip),
                            m_file->Image(place)};
    return PictureOf(image.Width, image.Height, [&](int x, int y) { return ReferencePixel(image, x, y); });
  }

  ScratchFolder m_folder;
  std::optional<core::FileImage> m_image;
  std::optional<VtfFile> m_file;
};

TEST_F(VtexTest, ChoosesFormatAndFlagsByContentAndOptions) {
  struct Case {
    bool Alpha;
    const char* Options;
    PixelFormat Format;
    uint32_t Flags;
    double Error;  // that the format may add
  };
  const Case cases[] = {
      {false, "", PixelFormat::Dxt1, 0, 4},
      {true, "", PixelFormat::Dxt5, VtfEightBitAlpha, 4},
      {false, "nocompress", PixelFormat::Bgr888, 0, 0},
      {true, "nocompress", PixelFormat::Bgra8888, VtfEightBitAlpha, 0},
      {false, "normal 1", PixelFormat::Bgr888, VtfNormalMap, 0},
      {true, "normal\ndxt5", PixelFormat::Dxt5, VtfNormalMap | VtfEightBitAlpha, 4},
      {true, "clamps\nclampt\nnolod\ntrilinear\nanisotropic\npointsample", PixelFormat::Dxt5,
       VtfClampS | VtfClampT | VtfNoLod | VtfTrilinear | VtfAnisotropic | VtfPointSample | VtfEightBitAlpha, 4},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(std::string(each.Options) + (each.Alpha ? " with alpha" : ""));
    const Picture picture = Smooth(64, 32, each.Alpha);
    const VtfInfo info = Make(picture, each.Options);
    EXPECT_EQ(info.Format, each.Format);
    EXPECT_EQ(info.Flags, each.Flags);
    EXPECT_EQ(info.MinorVersion, 2);
    EXPECT_EQ(info.MipLevels, 7);
    EXPECT_EQ(info.LowWidth, 16);
    EXPECT_EQ(info.LowHeight, 8);
    EXPECT_LE(Distance(Decode({.Mip = 0}), picture), each.Error);

    // And back again through the other tool.
    const ToolRun back = CallTool(Vtf2Tga, {"-i", Made("t.vtf"), "-o", m_folder.Path("back.tga")});
    EXPECT_EQ(back.Code, ToolSuccess) << back.Err;
    std::string reason;
    const auto tga = ReadTga(core::FileImage::Read(m_folder.Path("back.tga"))->View(), reason);
    ASSERT_TRUE(tga) << reason;
    EXPECT_LE(Distance(*tga, picture), each.Error);
  }
}

TEST_F(VtexTest, WritesEveryLevelOfThePicture) {
  const Picture picture = Smooth(32, 32, true);
  const auto chain = MipChain(picture, PictureKind::Colour);
  Make(picture, "nocompress");
  for (int level = 0; level < 6; ++level) {
    EXPECT_EQ(Distance(Decode({.Mip = level}), chain[static_cast<size_t>(level)]), 0) << level;
  }
  const VtfInfo single = Make(picture, "nocompress\nnomip");
  EXPECT_EQ(single.MipLevels, 1);
  EXPECT_EQ(single.Flags, VtfNoMips | VtfEightBitAlpha);
  EXPECT_EQ(single.LowWidth, 16);
  EXPECT_EQ(Distance(Decode({}), picture), 0);

  const VtfInfo reduced = Make(picture, "nocompress\nreducex 4\nreducey 2\nstripalphachannel\ninvertgreen");
  EXPECT_EQ(reduced.Width, 8);
  EXPECT_EQ(reduced.Height, 16);
  EXPECT_EQ(reduced.Format, PixelFormat::Bgr888);
  EXPECT_NEAR(Decode({.Mip = 4}).Pixels[0].G, 255 - chain[5].Pixels[0].G, 3);
}

TEST_F(VtexTest, KeepsHolesInDxt1WithOneBitAlpha) {
  const Picture holes = PictureOf(8, 8, [](int x, int y) {
    return (x + y) % 2 == 0 ? Bgra{200, 100, 50, 255} : Bgra{200, 100, 50, 0};
  });
  const VtfInfo info = Make(holes, "onebitalpha");
  EXPECT_EQ(info.Format, PixelFormat::Dxt1OneBitAlpha);
  EXPECT_EQ(info.Flags, VtfOneBitAlpha);
  EXPECT_EQ(Decode({}).Pixels[0].A, 255);
  EXPECT_EQ(Decode({}).Pixels[1].A, 0);
}

TEST_F(VtexTest, WritesTheMaterialBesideTheTextureAndNoneForItsMaps) {
  const std::string tga = TgaOf(Smooth(8, 8, false));
  for (const char* name : {"brick", "brick_n", "brick_glow", "other"}) {
    WriteText(Source(std::string("models/props/") + name + ".tga"), tga);
  }
  const ToolRun run = CallTool(Vtex, {"-nopause",
                                      "-shader",
                                      "VertexLitGeneric",
                                      "-vmtparam",
                                      "$bumpmap",
                                      "models\\props/brick_n",
                                      "-vmtparam",
                                      "$model",
                                      "1",
                                      "-vmtparam",
                                      "$envmaptint",
                                      ".5",
                                      ".5",
                                      ".5",
                                      "-vmtparam",
                                      "$selfillumtexture",
                                      "models/props/brick_glow",
                                      Source("models/props/brick.tga"),
                                      Source("models/props/brick_n.tga"),
                                      Source("models/props/brick_glow.tga"),
                                      Source("models/props/other")});
  EXPECT_EQ(run.Code, ToolSuccess) << run.Err;
  EXPECT_THAT(run.Out, HasSubstr("brick_n.vtf: 8 x 8, BGR888, mip levels 4, "));
  EXPECT_EQ(ReadText(Made("models/props/brick.vmt")),
            "\"VertexLitGeneric\"\n{\n\t\"$basetexture\" \"models/props/brick\"\n"
            "\t\"$bumpmap\" \"models\\props/brick_n\"\n\t\"$model\" \"1\"\n\t\"$envmaptint\" \"[.5 .5 .5]\"\n"
            "\t\"$selfillumtexture\" \"models/props/brick_glow\"\n}\n");
  EXPECT_THAT(ReadText(Made("models/props/other.vmt")), HasSubstr("\"$basetexture\" \"models/props/other\""));
  EXPECT_FALSE(std::filesystem::exists(Made("models/props/brick_n.vmt")));
  EXPECT_FALSE(std::filesystem::exists(Made("models/props/brick_glow.vmt")));
  EXPECT_EQ(Open("models/props/brick_n.vtf").Flags, VtfNormalMap);
  EXPECT_EQ(Open("models/props/brick_glow.vtf").Flags, 0u);
}

TEST_F(VtexTest, PacksFramesThatTheExportNumbered) {
  for (const int frame : {0, 1, 2}) {
    const Picture picture = PictureOf(2, 2, [&](int, int) { return Bgra{static_cast<uint8_t>(frame), 0, 0, 255}; });
    WriteText(Source(frame == 0 ? "water.tga" : "water00" + std::to_string(frame) + ".tga"), TgaOf(picture));
  }
  WriteText(Source("water.txt"), "nocompress\nstartframe 0\nendframe 2\n");
  const ToolRun run = CallTool(Vtex, {Source("water.txt")});
  EXPECT_EQ(run.Code, ToolSuccess) << run.Err;
  EXPECT_EQ(Open("water.vtf").Frames, 3);
  EXPECT_EQ(Decode({.Mip = 0, .Frame = 2}).Pixels[3].B, 2);

  WriteText(Source("water002.tga"), TgaOf(Smooth(4, 4, false)));
  EXPECT_THAT(CallTool(Vtex, {Source("water.txt")}).Err, HasSubstr("water002.tga: the frame is not as large"));
  std::filesystem::remove(Source("water002.tga"));
  EXPECT_THAT(CallTool(Vtex, {Source("water.txt")}).Err, HasSubstr("water002.tga: No such file or directory"));
  EXPECT_EQ(Open("water.vtf").Frames, 3);  // the good one of before is still there
}

TEST_F(VtexTest, GoesOnWithTheOtherInputsWhenOneFails) {
  WriteText(Source("odd.tga"), TgaOf(Smooth(12, 8, false)));
  WriteText(Source("damaged.tga"), "x");
  WriteText(Source("good.tga"), TgaOf(Smooth(8, 8, false)));
  WriteText(Source("good.txt"), "nocompres\n");
  WriteText(m_folder.Path("outside.tga"), TgaOf(Smooth(8, 8, false)));
#ifdef _WIN32  // which opens it under any case, and keeps that for what is written
  const char* const good = "good.tga";
#else
  const char* const good = "GOOD.TGA";
#endif
  const ToolRun run = CallTool(Vtex, {Source("odd.tga"), Source("damaged.tga"), Source("missing.tga"),
                                      m_folder.Path("outside.tga"), Source(good)});
  EXPECT_EQ(run.Code, ToolFailure);
  for (const char* error : {"odd.tga: width and height must be powers of two, and the image is 12 x 8",
                            "damaged.tga: the file is too short for a TGA image", "missing.tga: No such file",
                            "outside.tga: no folder of its path is named \"materialsrc\"",
                            "good.txt: line 1: unknown option \"nocompres\""}) {
    EXPECT_THAT(run.Err, HasSubstr(error));
  }
  EXPECT_THAT(m_folder.Files(), IsSupersetOf({"game/materials/good.vtf"}));
  EXPECT_EQ(m_folder.Files().size(), 6u);

  const ToolRun elsewhere =
      CallTool(Vtex, {"-quiet", "-fast", "-outdir", m_folder.Path("out/deep"), m_folder.Path("outside.tga")});
  EXPECT_EQ(elsewhere.Code, ToolSuccess) << elsewhere.Err;
  EXPECT_THAT(elsewhere.Out, IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("out/deep/outside.vtf")));
  EXPECT_EQ(CallTool(Vtex, {"-nopause"}).Code, ToolWrongUsage);
}

}  // namespace
}  // namespace tarnwick::sdk
