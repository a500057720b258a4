#include "archives/extraction.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "archive_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "support/told_texts.h"

namespace tarnwick::archives {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using tests::GmaBuilder;
using tests::PackedFile;
using tests::ReadText;
using tests::ScratchFolder;
using tests::WriteText;

/// Taking files out of an addon that the test makes, into the folder "out".
class ExtractionTest : public testing::Test {
 protected:
  std::shared_ptr<const Archive> Open(const std::vector<PackedFile>& files, bool packed = false) {
    const std::string bytes = GmaBuilder{.Files = files}.Build();
    WriteText(m_folder.Path("a.gma"), packed ? tests::PackedInLzma(bytes) : bytes);
    std::string reason;
    auto archive = Archive::Open(m_folder.Path("a.gma"), reason);
    EXPECT_TRUE(archive) << reason;
    return archive;
  }

  Extraction Extract(const std::vector<PackedFile>& files, const std::vector<std::string>& patterns = {},
                     bool packed = false) {
    const auto archive = Open(files, packed);
    return ExtractFiles(*archive, ChooseFiles(*archive, patterns), m_folder.Path("out"), m_report, {}, {});
  }

  ScratchFolder m_folder;
  tests::RecordingReport m_report;
};

TEST_F(ExtractionTest, KeepsFoldersAndChoosesByPattern) {
  const std::vector<PackedFile> files = {{.Name = "models/props/crate.mdl", .Bytes = "mdl"},
                                         {.Name = "models/props/crate.vvd", .Bytes = std::string(600'000, 'v')},
                                         {.Name = "materials/crate.vmt", .Bytes = ""}};
  for (const bool packed : {false, true}) {
    Extraction done = Extract(files, {"*.mdl", "materials"}, packed);
    EXPECT_EQ(done.Failed, 0u);
    EXPECT_EQ(done.Files.size(), 2u);
    EXPECT_THAT(m_folder.Files(), ElementsAre("a.gma", "out/materials/crate.vmt", "out/models/props/crate.mdl"));
    done = Extract(files, {}, packed);
    EXPECT_EQ(done.Files.size(), 3u);
    EXPECT_EQ(ReadText(m_folder.Path("out/models/props/crate.vvd")), files[1].Bytes);
    EXPECT_EQ(ReadText(m_folder.Path("out/materials/crate.vmt")), "");
    std::filesystem::remove_all(m_folder.Path("out"));
  }
  EXPECT_THAT(m_report.Troubles, IsEmpty());
}

TEST_F(ExtractionTest, WritesNothingOutside) {
  const Extraction done = Extract({{.Name = "../above.txt", .Bytes = "x"},
                                   {.Name = "a/../../above.txt", .Bytes = "x"},
                                   {.Name = "..\\above.txt", .Bytes = "x"},
                                   {.Name = m_folder.Path("absolute.txt"), .Bytes = "x"},
                                   {.Name = "C:\\drive.txt", .Bytes = "x"},
                                   {.Name = "bell\x07.txt", .Bytes = "x"},
                                   {.Name = "good.txt", .Bytes = "good"}});
  EXPECT_EQ(done.Failed, 6u);
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.gma", "out/good.txt"));
  ASSERT_EQ(m_report.Troubles.size(), 6u);
  for (const core::Trouble& trouble : m_report.Troubles) EXPECT_EQ(trouble.Kind, core::TroubleKind::Refused);
  EXPECT_THAT(m_report.Troubles[5].Text, HasSubstr("bell\\x07.txt: its name has a control byte"));
}

#ifndef _WIN32
TEST_F(ExtractionTest, FollowsNoLinkOutOfTheFolder) {
  std::filesystem::create_directories(m_folder.Path("out"));
  std::filesystem::create_directories(m_folder.Path("elsewhere"));
  WriteText(m_folder.Path("elsewhere/kept.txt"), "kept");
  std::filesystem::create_directory_symlink(m_folder.Path("elsewhere"), m_folder.Path("out/link"));
  std::filesystem::create_directory_symlink(m_folder.Path("nowhere"), m_folder.Path("out/dangling"));
  std::filesystem::create_symlink(m_folder.Path("elsewhere/kept.txt"), m_folder.Path("out/file.txt"));
  const Extraction done = Extract({{.Name = "link/new.txt", .Bytes = "x"},
                                   {.Name = "link/deep/new.txt", .Bytes = "x"},
                                   {.Name = "dangling/new.txt", .Bytes = "x"},
                                   {.Name = "file.txt", .Bytes = "x"},
                                   {.Name = "good.txt", .Bytes = "good"}});
  EXPECT_EQ(done.Failed, 4u);
  EXPECT_EQ(done.Files.size(), 1u);
  EXPECT_EQ(ReadText(m_folder.Path("elsewhere/kept.txt")), "kept");
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("nowhere")));
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("elsewhere/new.txt")));
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("elsewhere/deep")));
}
#endif

TEST_F(ExtractionTest, LeavesAnOlderFileWhereTheNewOneIsDamaged) {
  WriteText(m_folder.Path("out/a.txt"), "older");
  const Extraction done = Extract(
      {{.Name = "a.txt", .Bytes = std::string(900'000, 'x'), .WrongCrc = true}, {.Name = "b.txt", .Bytes = "b"}});
  EXPECT_EQ(done.Failed, 1u);
  EXPECT_EQ(ReadText(m_folder.Path("out/a.txt")), "older");
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.gma", "out/a.txt", "out/b.txt"));
  EXPECT_THAT(tests::TextsOf(m_report, core::Severity::Error), ElementsAre(HasSubstr("its CRC-32 is")));
}

TEST_F(ExtractionTest, TakesTheFirstOfSeveralNamesThatDifferInCase) {
  const Extraction done = Extract({{.Name = "Models/A.txt", .Bytes = "first"},
                                   {.Name = "models/a.TXT", .Bytes = "second"},
                                   {.Name = "models\\a.txt", .Bytes = "third"}});
  EXPECT_EQ(done.Failed, 2u);
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.gma", "out/Models/A.txt"));
  EXPECT_EQ(ReadText(m_folder.Path("out/Models/A.txt")), "first");
  EXPECT_THAT(tests::TextsOf(m_report, core::Severity::Error),
              UnorderedElementsAre(HasSubstr("an earlier file"), HasSubstr("an earlier file")));
}

TEST_F(ExtractionTest, TellsWhatTheDiskRefuses) {
  WriteText(m_folder.Path("out/taken"), "a file");
  Extraction done =
      Extract({{.Name = "taken/a.txt", .Bytes = "x"}, {.Name = "b", .Bytes = "x"}, {.Name = "b/c.txt", .Bytes = "x"}});
  EXPECT_EQ(done.Files.size(), 1u);
  EXPECT_EQ(done.Failed, 2u);
  WriteText(m_folder.Path("file"), "");
  const auto archive = Open({{.Name = "a.txt", .Bytes = "x"}});
  done = ExtractFiles(*archive, {0}, m_folder.Path("file"), m_report, {}, {});
  EXPECT_EQ(done.Failed, 1u);
}

/// An archive in memory whose reading asks for a stop once it comes to a byte.
class StoppingSource : public tests::MemorySource {
 public:
  StoppingSource(const std::string& bytes, uint64_t last, std::stop_source& stop)
      : MemorySource(bytes), m_last(last), m_stop(stop) {}
  std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const override {
    if (offset + out.size() > m_last) m_stop.request_stop();
    return MemorySource::Read(offset, out, reason);
  }

 private:
  const uint64_t m_last;
  std::stop_source& m_stop;
};

TEST_F(ExtractionTest, AStopEndsItWithinAFileWhichIsNotWritten) {
  const std::string whole = GmaBuilder{
      .Files = {{.Name = "a.txt", .Bytes = "x"},
                {.Name = "b.txt", .Bytes = std::string(3'000'000, 'b')},
                {.Name = "c.txt",
                 .Bytes = "x"}}}.Build();
  std::stop_source stop;
  std::string reason;
  const auto archive = Archive::Open("a.gma", std::make_unique<StoppingSource>(whole, whole.size() / 2, stop), reason);
  ASSERT_TRUE(archive) << reason;
  std::vector<std::string> begun;
  const auto progress = [&](const std::string& name, size_t done) {
    EXPECT_EQ(done, begun.size());
    begun.push_back(name);
  };
  const Extraction done = ExtractFiles(*archive, {2, 1, 0}, m_folder.Path("out"), m_report, stop.get_token(), progress);
  EXPECT_TRUE(done.Stopped);
  EXPECT_EQ(done.Failed, 0u);
  EXPECT_THAT(m_report.Troubles, IsEmpty());
  EXPECT_THAT(begun, ElementsAre("a.txt", "b.txt"));
  EXPECT_THAT(m_folder.Files(), ElementsAre("out/a.txt"));
  EXPECT_FALSE(archive->CheckWhole(stop.get_token(), reason));
  EXPECT_THAT(reason, IsEmpty());
}

TEST_F(ExtractionTest, RefusesFilesThatShareTheSameBytes) {
  tests::VpkBuilder vpk;
  for (int i = 0; i < 3000; ++i) {
    vpk.Files.push_back({.Name = "f" + std::to_string(i) + ".txt", .Bytes = "", .Preload = 0, .Part = 1});
  }
  std::string directory = vpk.Build().Directory;
  for (size_t place = 0;
       (place = directory.find(std::string("\0\0\1\0\0\0\0\0\0\0\0\0\xFF\xFF", 14), place)) != std::string::npos;
       ++place) {
    directory.replace(place + 8, 4, std::string("\0\0\x10\0", 4));  // each the whole megabyte
  }
  WriteText(m_folder.Path("x_dir.vpk"), directory);
  WriteText(m_folder.Path("x_001.vpk"), std::string(size_t{1} << 20, '\0'));
  std::string reason;
  const auto archive = Archive::Open(m_folder.Path("x_dir.vpk"), reason);
  ASSERT_TRUE(archive) << reason;
  const Extraction done = ExtractFiles(*archive, ChooseFiles(*archive, {}), m_folder.Path("out"), m_report, {}, {});
  EXPECT_EQ(done.Failed, 3000u);
  EXPECT_THAT(tests::TextsOf(m_report, core::Severity::Error), ElementsAre(HasSubstr("they share the same bytes")));
}

}  // namespace
}  // namespace tarnwick::archives
