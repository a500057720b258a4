#include "core/memory_store.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "support/scratch_folder.h"
#include "support/stored_file.h"

namespace tarnwick::core {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tests::ScratchFolder;
using tests::StoredBytes;
using tests::StoreFile;

constexpr int64_t Plenty = 1 << 20;

/// A store with a folder of its own: the disk, or memory of so many bytes.
class StoreFixture {
 public:
  explicit StoreFixture(int64_t bytes) : Budget(bytes), m_isDisk(bytes < 0) {}

  FileStore& Store() { return m_isDisk ? DiskStore() : m_memory; }
  std::string Path(const std::string& name) const { return m_isDisk ? m_folder.Path(name) : "top/" + name; }

  MemoryBudget Budget;
  ScratchFolder Overflow;

 private:
  const bool m_isDisk;
  ScratchFolder m_folder;
  MemoryStore m_memory{Budget, [this](std::string&) { return Overflow.Path(); }};
};

class EveryStore : public testing::TestWithParam<int64_t> {
 protected:
  EveryStore() { EXPECT_EQ(m_store.MakeFolder(Path("")), ""); }
  std::string Path(const std::string& name) const { return m_fixture.Path(name); }
  std::string ReasonAgainst(const std::string& name) {
    std::string reason;
    EXPECT_FALSE(m_store.Create(Path(name), &reason)) << name;
    return reason;
  }

  StoreFixture m_fixture{GetParam()};
  FileStore& m_store = m_fixture.Store();
};

TEST_P(EveryStore, HasAFileWhenItIsWholeAndNotBefore) {
  const std::string large(100'000, 'x');
  {
    auto file = m_store.Create(Path("a"));
    ASSERT_TRUE(file && file->Write("one ") && file->Write(large) && file->Write(" end"));
    EXPECT_FALSE(m_store.Holds(Path("a")));
    EXPECT_TRUE(file->Commit());
    EXPECT_EQ(file->Size(), large.size() + 8);
    EXPECT_FALSE(file->Write("more") || file->Commit());
  }
  EXPECT_EQ(StoredBytes(m_store, Path("a")), "one " + large + " end");
  {
    auto file = m_store.Create(Path("a"));
    ASSERT_TRUE(file && file->Write("half"));
  }
  EXPECT_EQ(StoredBytes(m_store, Path("a")).size(), large.size() + 8);
  const auto before = m_store.Read(Path("a"));
  StoreFile(m_store, Path("a"), "new");
  EXPECT_EQ(StoredBytes(m_store, Path("a")), "new");
  EXPECT_EQ(before->Bytes().size(), large.size() + 8) << "an image stays as it was read";
  StoreFile(m_store, Path("empty"), "");
  EXPECT_EQ(m_store.Read(Path("empty"))->Bytes().size(), 0u);
  EXPECT_EQ(m_store.Read(Path("empty"))->Path(), Path("empty"));
}

TEST_P(EveryStore, FindsFilesAndFoldersByEveryPathThatMeansThem) {
  StoreFile(m_store, Path("in/deep/er/One.smd"), "12345678");
  StoreFile(m_store, Path("in/b"), "");
  StoreFile(m_store, Path("ink"), "");
  for (const char* name : {"in/deep/er/One.smd", "in//deep/./er/One.smd", "in/deep/../deep/er/One.smd"}) {
    EXPECT_TRUE(m_store.Holds(Path(name))) << name;
  }
  EXPECT_TRUE(m_store.Holds(m_fixture.Path("in") + PathSeparator + "b"));
  EXPECT_FALSE(m_store.Holds(Path("in")) || m_store.Holds(Path("in/none")));
  for (const char* name : {"in", "in/", "in/deep/er/.", "in/deep/..", ""}) {
    EXPECT_TRUE(m_store.HoldsFolder(Path(name))) << name;
  }
  EXPECT_FALSE(m_store.HoldsFolder(Path("i")) || m_store.HoldsFolder(Path("in/b")));
  EXPECT_THAT(m_store.NamesIn(Path("in"), 10), ElementsAre("b", "deep"));
  EXPECT_EQ(m_store.NamesIn(Path("in"), 1).size(), 1u);
  EXPECT_THAT(m_store.NamesIn(Path("none"), 10), IsEmpty());
  EXPECT_THAT(m_store.FilesBelow(Path("in")), ElementsAre("b", "deep/er/One.smd"));
  EXPECT_THAT(m_store.FilesBelow(Path("none")), IsEmpty());
  EXPECT_TRUE(m_store.LiesIn(Path("in/new/a"), Path("in/")));
  EXPECT_FALSE(m_store.LiesIn(Path("ink"), Path("in")) || m_store.LiesIn(Path("in/../b"), Path("in")));

  char start[8] = {};
  EXPECT_TRUE(m_store.ReadStart(Path("in/deep/er/One.smd"), std::as_writable_bytes(std::span(start))));
  EXPECT_EQ(std::string_view(start, 8), "12345678");
  char more[9] = {};
  EXPECT_FALSE(m_store.ReadStart(Path("in/deep/er/One.smd"), std::as_writable_bytes(std::span(more))));
  EXPECT_FALSE(m_store.ReadStart(Path("in"), std::as_writable_bytes(std::span(start))));

  EXPECT_EQ(m_store.Remove(Path("in/b")), "");
  EXPECT_FALSE(m_store.Holds(Path("in/b")) || m_store.Read(Path("in/b")));
}

TEST_P(EveryStore, FindsAFileWhoseNameIsWrittenInOtherLetters) {
#ifdef _WIN32
  if (GetParam() < 0) GTEST_SKIP() << "there the disk itself opens a file by any spelling";
#endif
  StoreFile(m_store, Path("in/One.smd"), "");
  EXPECT_FALSE(m_store.Holds(Path("in/one.smd")));
  EXPECT_EQ(m_store.FindBeside(Path("in/one.SMD")), Path("in/One.smd"));
  StoreFile(m_store, Path("in/ONE.smd"), "");
  EXPECT_FALSE(m_store.FindBeside(Path("in/one.SMD"))) << "it may be either";
  EXPECT_EQ(m_store.FindBeside(Path("in/One.smd")), Path("in/One.smd"));
  StoreFile(m_store, Path("models/shared/moves.mdl"), "");
  EXPECT_EQ(m_store.FindGameFile(Path("models/a.mdl"), "models/shared/Moves.mdl"), Path("models/shared/moves.mdl"));
}

TEST_P(EveryStore, RefusesWhatNoFileCanBeAndTellsWhy) {
  StoreFile(m_store, Path("in/b"), "");
  std::string reason;
  EXPECT_FALSE(m_store.Read(Path("in"), &reason));
  EXPECT_EQ(reason, "it is a folder");
  EXPECT_EQ(ReasonAgainst("in"), "a folder of that name exists");
  EXPECT_EQ(ReasonAgainst("in/"), "the file has no name");
#ifndef _WIN32  // the words are the system's
  EXPECT_FALSE(m_store.Read(Path("none"), &reason));
  EXPECT_EQ(reason, "No such file or directory");
  EXPECT_THAT(ReasonAgainst("none/a"), testing::HasSubstr("No such file or directory"));
  EXPECT_EQ(ReasonAgainst(std::string(256, 'a')), "File name too long");
  EXPECT_EQ(m_store.MakeFolder(Path("in/b/c")), "Not a directory");
  EXPECT_EQ(m_store.MakeFolder(Path(std::string(256, 'a'))), "File name too long");
#endif
}

INSTANTIATE_TEST_SUITE_P(Disk, EveryStore, testing::Values(-1));
INSTANTIATE_TEST_SUITE_P(Memory, EveryStore, testing::Values(Plenty));
INSTANTIATE_TEST_SUITE_P(FullMemory, EveryStore, testing::Values(0, 3, 1000));

TEST(MemoryStore, GivesBackWhatItTookAndLetsImagesLiveOn) {
  StoreFixture outer(Plenty);
  std::optional<FileImage> image;
  {
    MemoryStore store(outer.Budget, [](std::string&) { return std::string(); });
    StoreFile(store, "kept/a", std::string(5000, 'a'));
    StoreFile(store, "kept/a", std::string(3000, 'b'));
    EXPECT_EQ(outer.Budget.Left(), Plenty - 3000) << "the older file is gone";
    auto file = store.Create("kept/c");
    EXPECT_TRUE(file && file->Write("never finished"));
    image = store.Read("kept/a");
  }
  EXPECT_EQ(outer.Budget.Left(), Plenty - 3000);
  EXPECT_EQ(static_cast<char>(image->Bytes()[2999]), 'b');
  image.reset();
  EXPECT_EQ(outer.Budget.Left(), Plenty);
}

TEST(MemoryStore, PutsOnTheDiskWhatTheBudgetHasNoRoomForAndTellsWhereItCannot) {
  StoreFixture small(1000);
  StoreFile(small.Store(), "in/first", std::string(900, 'a'));
  EXPECT_THAT(small.Overflow.Files(), IsEmpty());
  auto file = small.Store().Create("in/second");
  ASSERT_TRUE(file && file->Write(std::string(50, 'b')) && file->Write(std::string(500, 'c')));
  EXPECT_EQ(small.Budget.Left(), 100) << "what went to the disk takes no memory";
  ASSERT_TRUE(file->Commit());
  EXPECT_EQ(StoredBytes(small.Store(), "in/second"), std::string(50, 'b') + std::string(500, 'c'));
  EXPECT_EQ(small.Overflow.Files().size(), 1u);

  MemoryStore none(small.Budget, [](std::string& reason) {
    reason = "no place";
    return std::string();
  });
  EXPECT_EQ(none.MakeFolder("in"), "");
  auto refused = none.Create("in/a");
  ASSERT_TRUE(refused);
  EXPECT_TRUE(refused->Write("fits"));
  EXPECT_FALSE(refused->Write(std::string(500, 'd')) || refused->Commit());
  EXPECT_EQ(refused->Error(), "no place");
  EXPECT_FALSE(none.Holds("in/a"));
}

TEST(MemoryStore, TakesFilesFromSeveralThreads) {
  StoreFixture fixture(20'000);
  EXPECT_EQ(fixture.Store().MakeFolder("in"), "");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 50; ++i) {
        const std::string name = "in/" + std::to_string(t) + "_" + std::to_string(i);
        auto file = fixture.Store().Create(name);
        EXPECT_TRUE(file && file->Write(std::string(100, 'a')) && file->Write(name) && file->Commit());
        EXPECT_EQ(StoredBytes(fixture.Store(), name), std::string(100, 'a') + name);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(fixture.Store().FilesBelow("in").size(), 200u);
  EXPECT_THAT(fixture.Overflow.Files(), testing::Not(IsEmpty()));
}

}  // namespace
}  // namespace tarnwick::core
