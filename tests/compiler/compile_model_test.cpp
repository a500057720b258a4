#include "compiler/compile_model.h"

#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>

#include "model/animation_records.h"
#include "model/studio_records.h"
#include "support/scratch_folder.h"
#include "workshop.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(CompileModel, TakesAScriptAsPeopleWriteThem) {
  Workshop shop;
  const auto files = shop.Compile(
      "// an arm\n$MODELNAME\tparts\\arm.mdl\r\n$CD parts\n$CDMaterials models/a models\\b\\ ; two\n"
      "$frobnicate 1 2 3\n$Body arm \"ARM\"\n$Sequence idle Swing fps 12 loop\n$surfaceprop metal");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  EXPECT_THAT(shop.Texts(), Contains(HasSubstr("$frobnicate")));
  EXPECT_EQ(shop.Report.Bones, 2);  // the one that nothing uses is dropped
  EXPECT_EQ(shop.Report.Triangles, 1);
  const model::StudioHeader header = HeaderOf(*files);
  EXPECT_STREQ(header.Name, "parts\\arm.mdl");
  EXPECT_EQ(header.MaterialDirectoryCount, 2);
  EXPECT_EQ(header.Length, static_cast<int32_t>(files->Mdl.size()));
  int32_t vvd = 0, vtx = 0;
  std::memcpy(&vvd, files->Vvd.data() + 8, sizeof vvd);
  std::memcpy(&vtx, files->Vtx.data() + 16, sizeof vtx);
  EXPECT_THAT((std::vector<int32_t>{vvd, vtx}), ElementsAre(header.Checksum, header.Checksum));
  const auto animation = RecordAt<model::StudioAnimDesc>(files->Mdl, header.AnimOffset);
  EXPECT_EQ(animation.FrameCount, 3);
  EXPECT_EQ(animation.Flags, model::AnimFlagLooping);
  EXPECT_EQ(animation.Fps, 12);
}

TEST(CompileModel, TellsEveryErrorWithItsPlaceAndWritesNothing) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/bad.smd"), "version 1\nnodes\n0 \"a\" -1\nend\nskeleton\ntime 0\n0 1 2\nend\n");
  WriteText(shop.Folder.Path("arm.qc"),
            "$modelname arm.mdl\n$cd parts\n$body a amr\n$body b bad\n$sequence idle swing\n");
  CompileOptions options;
  options.GameDirectory = shop.Folder.Path("game");
  EXPECT_FALSE(CompileModel(shop.Folder.Path("arm.qc"), options, shop.Report));
  EXPECT_THAT(shop.Texts(), Contains(HasSubstr("did you mean \"arm\"?")));
  EXPECT_FALSE(std::filesystem::exists(shop.Folder.Path("game")));
  WriteText(shop.Folder.Path("arm.qc"), "$modelname arm.mdl\n$cd parts\n$body b bad\n$sequence idle swing\n");
  shop.Report = {};
  EXPECT_FALSE(CompileModel(shop.Folder.Path("arm.qc"), options, shop.Report));
  EXPECT_THAT(shop.Texts(), Contains(HasSubstr("bad.smd:7: error: ")));
}

TEST(CompileModel, WritesBelowTheFolderOfModelsOnly) {
  const struct {
    const char* Name;
    bool Written;
  } cases[] = {{"a/b.mdl", true}, {"/c.mdl", true}, {"../d.mdl", false}, {"a/../../e.mdl", false}, {"c:/f.mdl", false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    Workshop shop;
    WriteText(shop.Folder.Path("arm.qc"),
              "$modelname \"" + std::string(c.Name) + "\"\n$body a parts/arm\n$sequence idle parts/swing\n");
    CompileOptions options;
    options.GameDirectory = shop.Folder.Path("game");
    EXPECT_EQ(CompileModel(shop.Folder.Path("arm.qc"), options, shop.Report), c.Written);
    size_t below = 0, all = 0;
    for (const std::string& file : shop.Folder.Files()) {
      all += file.ends_with(".mdl") || file.ends_with(".vvd") || file.ends_with(".vtx") ? 1U : 0U;
      below += file.starts_with("game/models/") ? 1U : 0U;
    }
    EXPECT_EQ(all, c.Written ? 3U : 0U);
    EXPECT_EQ(below, all);
  }
}

TEST(CompileModel, TurnsStaticModelsAndKeepsOneBone) {
  Workshop shop;
  const auto files = shop.Compile("$staticprop\n$modelname a.mdl\n$body a parts/arm\n$sequence idle parts/swing\n");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  const model::StudioHeader header = HeaderOf(*files);
  EXPECT_EQ(header.BoneCount, 1);
  EXPECT_EQ(RecordAt<model::StudioAnimDesc>(files->Mdl, header.AnimOffset).FrameCount, 1);
  // (8, 0, 0) and (0, 8, 4) stand at (0, 8, 0) and (-8, 0, 4).
  EXPECT_NEAR(header.HullMinimum.x, -8, 1e-5);
  EXPECT_NEAR(header.HullMaximum.y, 8, 1e-5);
  EXPECT_EQ(header.HullMaximum.z, 4);
}

TEST(CompileModel, IsTheSameOnAnyNumberOfThreads) {
  Workshop shop;
  std::string script = "$modelname a.mdl\n$cd parts\n$body b arm\n$sectionframes 1 2\n";
  for (int i = 0; i < 20; ++i)
    script += "$sequence s" + std::to_string(i) + " swing fps " + std::to_string(i + 1) + "\n";
  CompileOptions one, many;
  one.Threads = 1;
  many.Threads = 4;
  const auto first = shop.Compile(script, one), second = shop.Compile(script, many);
  ASSERT_TRUE(first && second);
  EXPECT_TRUE(first->Mdl == second->Mdl && first->Vvd == second->Vvd && first->Vtx == second->Vtx);
}

TEST(CompileModel, EndsWithoutFilesWhenItIsStopped) {
  Workshop shop;
  std::stop_source stop;
  stop.request_stop();
  CompileOptions options;
  options.Stop = stop.get_token();
  EXPECT_FALSE(shop.Compile("$modelname a.mdl\n$cd parts\n$body b arm\n$sequence idle swing\n", options));
  EXPECT_THAT(shop.Texts(), ElementsAre("the compile was stopped"));
}

TEST(CompileModel, RefusesMoreFramesThanACompileCanHold) {
  Workshop shop;
  EXPECT_FALSE(shop.Compile("$modelname a.mdl\n$body a parts/arm\n$sequence idle parts/swing numframes 2000000000\n"));
  EXPECT_THAT(shop.Texts(), Contains(HasSubstr("frames")));
}

}  // namespace
}  // namespace tarnwick::compiler
