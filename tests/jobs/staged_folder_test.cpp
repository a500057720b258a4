#include "jobs/staged_folder.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace tarnwick::jobs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using tests::ReadText;
using tests::WriteText;

class StagedFolderTest : public testing::Test {
 protected:
  /// Writes a whole file into the folder that is made at `m_path`.
  void Write(const std::string& name, const std::string& text) {
    std::string reason;
    auto file = m_folder->Create(m_path + core::PathSeparator + name, &reason);
    ASSERT_TRUE(file) << reason;
    EXPECT_EQ(file->Path(), m_path + core::PathSeparator + name);
    file->Write(text);
    ASSERT_TRUE(file->Commit()) << file->Error();
  }

  tests::ScratchFolder m_out;
  std::string m_path = m_out.Path("a/b");
  std::optional<StagedFolder> m_folder{std::in_place};
};

TEST_F(StagedFolderTest, ANewFolderAppearsWithAllItsFiles) {
  ASSERT_EQ(m_folder->Make(m_path), "");
  Write("one.smd", "1");
  Write("two.smd", "2");
  Write("one.smd", "one");  // as a plain form with two files of one name has it
  {
    auto unfinished = m_folder->Create(m_path + core::PathSeparator + "gone.smd");
    ASSERT_TRUE(unfinished);
    unfinished->Write("half");
  }
  EXPECT_FALSE(std::filesystem::exists(m_path));
  EXPECT_EQ(m_folder->Commit(), "");
  m_folder.reset();
  EXPECT_THAT(m_out.Files(), ElementsAre("a/b/one.smd", "a/b/two.smd"));
  EXPECT_EQ(ReadText(m_path + "/one.smd"), "one");
}

TEST_F(StagedFolderTest, LeavesNothingWhereNothingWasWritten) {
  ASSERT_EQ(m_folder->Make(m_path), "");
  m_folder.reset();
  EXPECT_FALSE(std::filesystem::exists(m_out.Path("a")));
}

TEST_F(StagedFolderTest, KeepsWhatWasFinishedWhenItGoesAwayEarly) {
  ASSERT_EQ(m_folder->Make(m_path), "");
  Write("one.smd", "1");
  m_folder.reset();
  EXPECT_THAT(m_out.Files(), ElementsAre("a/b/one.smd"));
}

TEST_F(StagedFolderTest, AFolderThatWasThereIsFilledFileByFile) {
  std::filesystem::create_directories(m_path);
  WriteText(m_path + "/old.smd", "old");
  WriteText(m_path + "/one.smd", "old");
  ASSERT_EQ(m_folder->Make(m_path), "");
  Write("one.smd", "new");
  EXPECT_EQ(ReadText(m_path + "/one.smd"), "new") << "at once";
  EXPECT_EQ(m_folder->Commit(), "");
  EXPECT_THAT(m_out.Files(), ElementsAre("a/b/old.smd", "a/b/one.smd"));
}

TEST_F(StagedFolderTest, FilesMoveIntoAFolderThatCameMeanwhile) {
  ASSERT_EQ(m_folder->Make(m_path), "");
  Write("one.smd", "1");
  Write("two.smd", "2");
  std::filesystem::create_directories(m_path + "/c");
  WriteText(m_path + "/c/three.smd", "3");
  WriteText(m_path + "/two.smd", "other");
  EXPECT_EQ(m_folder->Commit(), "");
  m_folder.reset();
  EXPECT_THAT(m_out.Files(), ElementsAre("a/b/c/three.smd", "a/b/one.smd", "a/b/two.smd"));
  EXPECT_EQ(ReadText(m_path + "/two.smd"), "2");
}

TEST_F(StagedFolderTest, SaysWhatStandsInItsPlace) {
  ASSERT_EQ(m_folder->Make(m_path), "");
  Write("one.smd", "1");
  WriteText(m_path, "a file");
  EXPECT_THAT(m_folder->Commit(), Not(IsEmpty()));
  m_folder.reset();
  EXPECT_THAT(m_out.Files(), ElementsAre("a/b"));
  EXPECT_EQ(ReadText(m_path), "a file");
}

TEST_F(StagedFolderTest, TakesPathsAsPeopleTypeThem) {
  for (const std::string typed : {"x/", "x/.", "y/../y", "z//w"}) {
    StagedFolder folder;
    ASSERT_EQ(folder.Make(m_out.Path(typed)), "") << typed;
    auto file = folder.Create(m_out.Path(typed) + core::PathSeparator + "f.smd");
    ASSERT_TRUE(file) << typed;
    ASSERT_TRUE(file->Commit());
    EXPECT_EQ(folder.Commit(), "");
    EXPECT_TRUE(std::filesystem::exists(m_out.Path(typed + "/f.smd"))) << typed;
  }
}

}  // namespace
}  // namespace tarnwick::jobs
