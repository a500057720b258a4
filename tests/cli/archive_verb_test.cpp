#include <gmock/gmock.h>

#include "archives/checksum.h"
#include "command_line.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using tests::ReadText;
using tests::WriteText;

template <typename T>
std::string Raw(T value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof(T));
}

/// An archive with a file in models/ and one in the root, whose CRC is wrong if `damaged`.
std::string Vpk(bool damaged = false) {
  const auto entry = [](const std::string& bytes, uint32_t change) {
    const uint32_t crc = archives::Crc32(std::as_bytes(std::span(bytes))) ^ change;
    return Raw(crc) + Raw(static_cast<uint16_t>(bytes.size())) + Raw(uint16_t{0x7FFF}) + Raw(uint64_t{0}) +
           Raw(uint16_t{0xFFFF}) + bytes;
  };
  const std::string nul(1, '\0');
  const std::string tree = "mdl" + nul + "models/props" + nul + "crate" + nul + entry("model", 0) + nul + nul + "txt" +
                           nul + " " + nul + "note" + nul + entry("a note", damaged ? 1 : 0) + nul + nul + nul;
  return Raw(uint32_t{0x55AA1234}) + Raw(uint32_t{1}) + Raw(static_cast<uint32_t>(tree.size())) + tree;
}

class ArchiveVerbTest : public tests::VerbTest {
 protected:
  ArchiveVerbTest() { WriteText(m_archive, Vpk()); }
  int Run(const std::vector<std::string>& arguments) { return RunVerb({"archive"}, arguments); }

  tests::ScratchFolder m_folder;
  const std::string m_archive = m_folder.Path("pak01_dir.vpk");
};

TEST_F(ArchiveVerbTest, ListsNamesSizesAndCrcs) {
  EXPECT_EQ(Run({"list", m_archive}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out,
              AllOf(HasSubstr("           6  "), HasSubstr("  note.txt\n"), HasSubstr("models/props/crate.mdl\n")));
  EXPECT_EQ(Run({"list", "--json", m_archive + ":models"}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out, AllOf(testing::StartsWith("{\"archive\":\"" + m_archive +
                                               "\",\"name\":\"models/props/crate.mdl\","
                                               "\"bytes\":5,\"crc32\":\""),
                           testing::Not(HasSubstr("note"))));
  EXPECT_EQ(Run({"list", m_archive, "--match", "*.vtf"}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("no file of the archive is meant"));
  // What somebody writes who knows other such programs; case and slash play no part.
  EXPECT_EQ(Run({"list", m_archive, "Models\\props"}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out, AllOf(HasSubstr("crate.mdl\n"), testing::Not(HasSubstr("note"))));
  EXPECT_EQ(Run({"list", m_archive, "*.mdl", "note.*"}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out, AllOf(HasSubstr("crate.mdl\n"), HasSubstr("note.txt\n")));
  EXPECT_EQ(Run({"list", m_archive, "none/*"}), ExitFailure);
  EXPECT_EQ(Run({"list", m_folder.Path("pak01_000.vpk")}), ExitSuccess) << "the directory of that part\n" << m_err;
  EXPECT_EQ(Run({"list", m_folder.Path("none.vpk"), m_archive}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("none.vpk: "));
  EXPECT_THAT(m_out, HasSubstr("note.txt"));
  EXPECT_EQ(Run({"list"}), ExitUsage);
}

TEST_F(ArchiveVerbTest, ExtractsWithFolders) {
  const std::string out = m_folder.Path("out");
  EXPECT_EQ(Run({"extract", m_archive, "-o", out}), ExitSuccess) << m_err;
  EXPECT_EQ(m_out, m_archive + ": 2 files, 11 bytes\n");
  EXPECT_EQ(ReadText(out + "/models/props/crate.mdl"), "model");
  EXPECT_EQ(ReadText(out + "/note.txt"), "a note");

  WriteText(m_folder.Path("other.vpk"), Vpk(true));
  const std::string two = m_folder.Path("two");
  EXPECT_EQ(Run({"extract", "--json", m_archive, m_folder.Path("other.vpk"), "-m", "*.txt", "-o", two}), ExitFailure);
  EXPECT_EQ(ReadText(two + "/pak01_dir/note.txt"), "a note");
  EXPECT_THAT(m_out, AllOf(HasSubstr("\"files\":1,\"bytes\":6,\"failed\":0"),
                           HasSubstr("\"files\":0,\"bytes\":0,\"failed\":1"), HasSubstr("its CRC-32 is")));
  EXPECT_THAT(m_err, HasSubstr("Error: " + m_folder.Path("other.vpk") + ":note.txt: it is damaged"));
  EXPECT_THAT(m_folder.Files(), testing::Not(testing::Contains(HasSubstr("other/"))));
}

TEST_F(ArchiveVerbTest, TellsFiguresAndChecks) {
  EXPECT_EQ(Run({"info", "--check", m_archive}), ExitSuccess) << m_err;
  EXPECT_THAT(m_out, AllOf(HasSubstr("VPK archive, version 1"), HasSubstr("Files:\t2\nBytes:\t11\n"),
                           HasSubstr("Every CRC is right")));
  WriteText(m_archive, Vpk(true));
  EXPECT_EQ(Run({"info", "--check", "--json", m_archive}), ExitFailure);
  EXPECT_THAT(m_out, AllOf(HasSubstr("\"kind\":\"vpk\",\"version\":1"), HasSubstr("\"damaged\":1")));
}

}  // namespace
}  // namespace tarnwick::cli
