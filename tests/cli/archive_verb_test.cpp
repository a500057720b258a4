#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "archives/checksum.h"
#include "command_line.h"
#include "support/archive_builder.h"
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
  EXPECT_EQ(Run({"info", "--check", m_archive}), ExitFailure);
  EXPECT_THAT(m_out, testing::Not(HasSubstr("Every CRC is right")));
  EXPECT_THAT(m_err, testing::StartsWith("Error: " + m_archive + ":note.txt: it is damaged: its CRC-32 is "));
}

TEST_F(ArchiveVerbTest, TellsOfAnAddonItsNamesAndWhatNobodyCanTakeOut) {
  const std::string addon = m_folder.Path("addon.gma");
  WriteText(addon, tests::GmaBuilder{.Files = {{.Name = "models/a.mdl", .Bytes = "12345"},
                                               {.Name = "Models/A.mdl", .Bytes = "1234567"},
                                               {.Name = "../out", .Bytes = "1"}}}
                       .Build());
  EXPECT_EQ(Run({"info", addon, m_archive}), ExitSuccess) << m_err;
  EXPECT_EQ(m_out, addon + ": GMA addon, version 3\nName:\tAn addon\nAuthor:\tSomebody\nFiles:\t3\nBytes:\t13\n" +
                       "Folders:\t2\nOf the same name:\t1\nOf unsafe names:\t1\n.mdl\t2 files, 12 bytes\n"
                       "no extension\t1 files, 1 bytes\n" +
                       m_archive +
                       ": VPK archive, version 1\nFiles:\t2\nBytes:\t11\nFolders:\t2\n"
                       ".txt\t1 files, 6 bytes\n.mdl\t1 files, 5 bytes\n");
  EXPECT_EQ(Run({"info", "--json", addon}), ExitSuccess);
  const auto json = nlohmann::json::parse(m_out);
  EXPECT_EQ(json["name"], "An addon");
  EXPECT_EQ(json["author"], "Somebody");
  EXPECT_EQ(json["description"], "{\"type\":\"model\"}");
  EXPECT_EQ(json["sameNames"], 1);
  EXPECT_EQ(json["unsafeNames"], 1);
  EXPECT_EQ(json["extensions"][0], nlohmann::json::parse(R"({"extension": ".mdl", "files": 2, "bytes": 12})"));
  EXPECT_FALSE(json.contains("damaged")) << "nothing was checked";
  EXPECT_EQ(Run({"info", "--check", addon}), ExitSuccess) << m_err;
  std::string bytes = ReadText(addon);
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  WriteText(addon, bytes);
  EXPECT_EQ(Run({"info", "--check", addon}), ExitFailure) << "the CRC of the whole is wrong";
  EXPECT_THAT(m_err, testing::StartsWith("Error: " + addon + ": "));
}

TEST_F(ArchiveVerbTest, TellsWhichPartsAreThere) {
  tests::VpkBuilder vpk{
      .Files = {{.Name = "a.txt", .Bytes = "12345", .Part = 0}, {.Name = "b.txt", .Bytes = "1", .Part = 2}}};
  WriteText(m_archive, vpk.Build().Directory);
  WriteText(m_folder.Path("pak01_000.vpk"), vpk.Parts[0]);
  EXPECT_EQ(Run({"info", m_archive}), ExitSuccess);
  EXPECT_THAT(m_out, HasSubstr("pak01_000.vpk\t1 files\n"));
  EXPECT_THAT(m_out, HasSubstr("pak01_002.vpk\t1 files, missing\n"));
  EXPECT_EQ(Run({"info", "--json", m_archive}), ExitSuccess);
  const auto json = nlohmann::json::parse(m_out);
  EXPECT_FALSE(json.contains("name")) << "only addons have one";
  const auto& last = json["parts"].back();
  EXPECT_THAT(last["file"].get<std::string>(), testing::EndsWith("pak01_002.vpk"));
  EXPECT_EQ(last["exists"], false);
  EXPECT_EQ(last["files"], 1);
}

TEST_F(ArchiveVerbTest, NamesEachArchiveOfSeveralAndRefusesWhatIsNone) {
  WriteText(m_folder.Path("other.vpk"), Vpk());
  EXPECT_EQ(Run({"list", m_archive, m_folder.Path("other.vpk"), "note.txt"}), ExitSuccess);
  const std::string line = m_out.substr(m_out.find('\n') + 1, m_out.find("note.txt\n") + 8 - m_out.find('\n'));
  EXPECT_EQ(m_out, m_archive + ":\n" + line + m_folder.Path("other.vpk") + ":\n" + line);
  EXPECT_EQ(Run({"list", m_archive, "note.txt"}), ExitSuccess);
  EXPECT_EQ(m_out, line) << "a single one is not named";
  EXPECT_EQ(Run({"list", m_archive, "x.*", "y"}), ExitFailure);
  EXPECT_EQ(m_err, "Error: " + m_archive + ": no file of the archive is meant by x.*, y\n");
  EXPECT_EQ(Run({"list", "game:models"}), ExitFailure);
  EXPECT_EQ(m_err, "Error: game:models: name one archive; those of the game lie in its folders as .vpk files\n");

  EXPECT_EQ(Run({"extract", "-q", m_folder.Path("none.gma"), m_archive, "-o", m_folder.Path("out")}), ExitFailure);
  EXPECT_EQ(m_out, "");
  EXPECT_THAT(m_err, testing::StartsWith("Error: " + m_folder.Path("none.gma") + ": "));
  EXPECT_EQ(ReadText(m_folder.Path("out/pak01_dir/note.txt")), "a note");
  EXPECT_EQ(Run({"extract", m_archive, "note.txt", "-o", m_folder.Path("one")}), ExitSuccess);
  EXPECT_EQ(m_out, m_archive + ": 1 file, 6 bytes\n");
  WriteText(m_archive, Vpk(true));
  EXPECT_EQ(Run({"extract", m_archive, "-o", m_folder.Path("some")}), ExitFailure);
  EXPECT_EQ(m_out, m_archive + ": 1 file, 5 bytes, 1 failed\n");
}

}  // namespace
}  // namespace tarnwick::cli
