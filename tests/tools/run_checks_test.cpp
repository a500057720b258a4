#include "tools/run_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace tarnwick::tools {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tests::ScratchFolder;
using tests::WriteText;

TEST(RunChecks, SaysWhatIsMissingAndNothingWhenAllIsThere) {
  const ScratchFolder folder;
  const std::string qc = folder.Path("box.qc");
  EXPECT_THAT(CheckStudiomdlRun("", qc),
              ElementsAre("the QC file " + qc + " does not exist", "no game directory is set"));
  WriteText(qc, "$modelname \"props/new/box.mdl\"\n");
  EXPECT_THAT(CheckStudiomdlRun(folder.Path("game"), qc), ElementsAre(HasSubstr("game does not exist")));
  fs::create_directories(folder.Path("game"));
  EXPECT_THAT(CheckStudiomdlRun(folder.Path("game"), qc), ElementsAre(HasSubstr("no gameinfo.txt")));
  WriteText(folder.Path("game/GameInfo.txt"), "");
  EXPECT_THAT(CheckStudiomdlRun(folder.Path("game"), qc), IsEmpty());
  WriteText(folder.Path("game/models/props"), "a file where a folder should be");
  EXPECT_THAT(CheckStudiomdlRun(folder.Path("game"), qc), ElementsAre(HasSubstr("cannot write to")));
}

TEST(RunChecks, LooksAtTheImagesAndPlacesOfTheTextureTools) {
  const ScratchFolder folder;
  WriteText(folder.Path("gameinfo.txt"), "");
  WriteText(folder.Path("a.tga"), "");
  ConvertedMaps maps{folder.Path("a.tga"), "", "", ""};
  EXPECT_THAT(CheckVtexRun(folder.Path(), R"(\materialsrc\models\props)", maps), IsEmpty());
  WriteText(folder.Path("materials/models"), "a file where a folder should be");
  maps.Normal = folder.Path("n.tga");
  EXPECT_THAT(CheckVtexRun(folder.Path(), R"(\materialsrc\models\props)", maps),
              ElementsAre(HasSubstr("n.tga does not exist"), HasSubstr("/materials/models/props (")));
  EXPECT_THAT(CheckVtf2tgaRun(folder.Path("a.tga"), folder.Path("out/b.tga")),
              ElementsAre(HasSubstr("out/ does not exist")));
  EXPECT_THAT(CheckVtf2tgaRun(folder.Path("a.tga"), folder.Path("b.tga")), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::tools
