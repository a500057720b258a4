// What becomes of the files of a compiled model.

#include "compiler/files/model_files.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "compiler/files/commit_together.h"
#include "support/scratch_folder.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using testing::HasSubstr;

TEST(ModelFiles, RemovesWhatTheModelHasNoMore) {
  ScratchFolder folder;
  CompileReport report;
  CompiledFiles files;
  files.Mdl = "mdl";
  files.Phy = "phy";
  ASSERT_TRUE(WriteModelFiles(files, "a.mdl", folder.Path("game"), core::DiskStore(), report));
  files.Phy.clear();
  EXPECT_TRUE(report.Troubles.empty());
  ASSERT_TRUE(WriteModelFiles(files, "a.mdl", folder.Path("game"), core::DiskStore(), report));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("game/models/a.phy")));
  ASSERT_EQ(report.Troubles.size(), 1U);
  EXPECT_THAT(report.Troubles[0].Text, HasSubstr("a.phy of the model before is removed"));
}

TEST(ModelFiles, GetTheirNamesTogetherOrNotAtAll) {
  ScratchFolder folder;
  WriteText(folder.Path("old"), "before");
  std::vector<core::OutputFile> files;
  for (const char* name : {"new", "old", "taken", "never"}) {
    auto file = core::OutputFile::Create(folder.Path(name));
    ASSERT_TRUE(file && file->Write("after"));
    files.push_back(std::move(*file));
  }
  std::filesystem::create_directory(folder.Path("taken"));
  WriteText(folder.Path("taken/in the way"), "");
  std::string path, reason;
  EXPECT_FALSE(CommitTogether(files, path, reason));
  EXPECT_EQ(path, folder.Path("taken"));
  EXPECT_FALSE(reason.empty());
  files.clear();
  EXPECT_THAT(folder.Files(), testing::UnorderedElementsAre("old", "taken/in the way"));
  EXPECT_EQ(ReadText(folder.Path("old")), "before");
}

}  // namespace
}  // namespace tarnwick::compiler
