#include "archives/content_index.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "archive_builder.h"
#include "archives/content_extraction.h"
#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::archives {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::GmaBuilder;
using tests::PackedFile;
using tests::ReadText;
using tests::VpkBuilder;
using tests::WriteText;

class ContentIndexTest : public testing::Test {
 protected:
  GamePlace Addon(const std::string& name, const std::vector<PackedFile>& files) {
    WriteText(m_folder.Path(name), GmaBuilder{.Files = files}.Build());
    std::string reason;
    GamePlace place{m_folder.Path(name), Archive::Open(m_folder.Path(name), reason)};
    EXPECT_TRUE(place.InArchive) << reason;
    return place;
  }
  GamePlace Loose(const std::string& name) { return {m_folder.Path(name), nullptr}; }

  std::vector<std::string> Names(const ContentIndex& index, const ContentQuery& query) {
    std::vector<std::string> names;
    const auto found = index.Search(query, {}).value();
    for (const uint32_t file : found) names.push_back(index.Name(file));
    return names;
  }
  Extraction Extract(const ContentIndex& index, const std::vector<uint32_t>& files, const std::stop_token& stop = {}) {
    return ExtractContent(index, files, m_folder.Path("out"), m_report, stop, {});
  }

  tests::ScratchFolder m_folder;
  tests::RecordingReport m_report;
};

/// A folder of the disk before an addon, as a game has them.
class TwoPlaces : public ContentIndexTest {
 protected:
  TwoPlaces() {
    WriteText(m_folder.Path("mod/models/Crate.mdl"), "the mod's");
    WriteText(m_folder.Path("mod/readme.txt"), "words");
#ifndef _WIN32  // which lets not everybody make links
    std::filesystem::create_directory_symlink(m_folder.Path("mod"), m_folder.Path("mod/models/again"));
#endif
    const GamePlace addon = Addon("a.gma", {{.Name = "models/crate.mdl", .Bytes = "the addon's"},
                                            {.Name = "models/crate.dx90.vtx", .Bytes = "v"},
                                            {.Name = "models/crate_lid.mdl", .Bytes = ""},
                                            {.Name = "models-old/crate.mdl", .Bytes = ""},
                                            {.Name = "models/props/big crate.mdl", .Bytes = ""},
                                            {.Name = "materials/crate/wood.vmt", .Bytes = "vmt"},
                                            {.Name = "materials/crate/wood.VTF", .Bytes = "some vtf"}});
    m_index = ContentIndex::Of({Loose("mod"), addon}, {});
  }

  std::shared_ptr<const ContentIndex> m_index;
};

TEST_F(TwoPlaces, ShowsEachNameOnceAndWhatHidesBehindItInItsPlace) {
  EXPECT_THAT(
      Names(*m_index, {.Kind = ContentKind::Model}),
      ElementsAre("models/Crate.mdl", "models/crate_lid.mdl", "models-old/crate.mdl", "models/props/big crate.mdl"));
  EXPECT_THAT(Names(*m_index, {.Place = 1, .Folder = "Models", .Below = false}),
              ElementsAre("models/crate.dx90.vtx", "models/crate.mdl", "models/crate_lid.mdl"));
  EXPECT_THAT(Names(*m_index, {.Below = false}), ElementsAre("readme.txt"));
  EXPECT_THAT(m_index->FoldersIn({}, "", {}), ElementsAre("materials", "models", "models-old"));
  EXPECT_THAT(m_index->FoldersIn({}, "", ContentKind::Texture), ElementsAre("materials"));
  EXPECT_THAT(m_index->FoldersIn({}, "models", {}), ElementsAre("models/props"));
  EXPECT_THAT(m_index->FoldersIn(0, "models", {}), IsEmpty()) << "a link that leads back is not followed";
  const uint32_t file = *m_index->Find("MODELS\\crate.mdl");
  EXPECT_EQ(m_index->FullName(file), m_folder.Path("mod") + core::PathSeparator + "models/Crate.mdl");
  std::string reason;
  EXPECT_EQ(m_index->Read(file, reason)->View().Size(), 9);
  const uint32_t hidden = *m_index->Find("models/crate.mdl", 1);
  EXPECT_TRUE(m_index->IsHidden(hidden));
  EXPECT_EQ(m_index->FullName(hidden), m_folder.Path("a.gma") + ":models/crate.mdl");
}

TEST_F(TwoPlaces, FindsByWordsAndPutsWhatFitsBestFirst) {
  EXPECT_THAT(Names(*m_index, {.Words = "CRATE"}),
              ElementsAre("models/crate.dx90.vtx", "models/Crate.mdl", "models-old/crate.mdl", "models/crate_lid.mdl",
                          "models/props/big crate.mdl", "materials/crate/wood.vmt", "materials/crate/wood.VTF"));
  struct Case {
    const char* Words;
    std::vector<std::string> Found;
  };
  for (const Case& each :
       {Case{"old crate", {"models-old/crate.mdl"}}, Case{"els\\crate_", {"models/crate_lid.mdl"}},
        Case{"crate/wood .vm", {"materials/crate/wood.vmt"}}, Case{"props/", {"models/props/big crate.mdl"}},
        Case{"*.vtf", {"materials/crate/wood.VTF"}}, Case{"models/**/*.mdl", {"models/props/big crate.mdl"}},
        Case{"crate barrel", {}}, Case{"/readme", {}}}) {
    EXPECT_EQ(Names(*m_index, {.Words = each.Words}), each.Found) << each.Words;
  }
  EXPECT_THAT(Names(*m_index, {.Folder = "models",
                               .Below = false,
                               .Words = "crate",
                               .Kind = ContentKind::Model,
                               .Order = ContentOrder::Name,
                               .Backwards = true}),
              ElementsAre("models/crate_lid.mdl", "models/Crate.mdl", "models/props/big crate.mdl"));
  EXPECT_THAT(Names(*m_index, {.Words = "wood", .Order = ContentOrder::Size}),
              ElementsAre("materials/crate/wood.vmt", "materials/crate/wood.VTF"));
}

TEST_F(TwoPlaces, BringsAModelsCompanionsFromItsPlaceOrFromWhereTheGameFindsThem) {
  const auto all = m_index->WithCompanions({*m_index->Find("models/crate.mdl")}, true);
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(m_index->Name(all[0]), "models/crate.dx90.vtx");
  EXPECT_EQ(m_index->WithCompanions({*m_index->Find("models/crate.mdl")}, false).size(), 1u);
}

TEST_F(TwoPlaces, TakesFilesOutOfArchivesAndFoldersAlike) {
  const auto files = *m_index->Search({.Words = "crate.mdl"}, {});
  EXPECT_EQ(CountExisting(*m_index, files, m_folder.Path("out")), 0u);
  EXPECT_EQ(Extract(*m_index, files).Files.size(), 3u);
  EXPECT_EQ(ReadText(m_folder.Path("out/models/Crate.mdl")), "the mod's");
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("out/models/props/big crate.mdl")));
  EXPECT_EQ(CountExisting(*m_index, files, m_folder.Path("out")), 3u);
  std::stop_source stop;
  stop.request_stop();
  EXPECT_TRUE(Extract(*m_index, files, stop.get_token()).Stopped);
  EXPECT_FALSE(m_index->Search({}, stop.get_token()));
  EXPECT_FALSE(ContentIndex::Of({Loose("mod")}, stop.get_token()));
  EXPECT_THAT(m_report.Troubles, IsEmpty());

  // A file taken out into its own place stays as it is.
  const uint32_t crate = *m_index->Find("models/crate.mdl");
  EXPECT_EQ(ExtractContent(*m_index, {crate}, m_folder.Path("mod"), m_report, {}, {}).Failed, 0u);
  EXPECT_EQ(ReadText(m_folder.Path("mod/models/Crate.mdl")), "the mod's");
#ifndef _WIN32
  // A link there leads nowhere.
  std::filesystem::create_directory_symlink(m_folder.Path(), m_folder.Path("trap"));
  std::filesystem::create_directory(m_folder.Path("cage"));
  std::filesystem::rename(m_folder.Path("trap"), m_folder.Path("cage/models"));
  EXPECT_EQ(ExtractContent(*m_index, {crate}, m_folder.Path("cage"), m_report, {}, {}).Failed, 1u);
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("Crate.mdl")));
  ASSERT_EQ(m_report.Troubles.size(), 1u);
  EXPECT_THAT(m_report.Troubles[0].Text, HasSubstr("leads outside"));
#endif
}

TEST_F(ContentIndexTest, StandsNamesThatNoFileSystemHas) {
  const auto index = ContentIndex::Of({Addon("a.gma", {{.Name = "../../up.mdl", .Bytes = "x"},
                                                       {.Name = "//a//b/c.mdl", .Bytes = "x"},
                                                       {.Name = "a/b/C.MDL", .Bytes = "x"},
                                                       {.Name = "/", .Bytes = "x"},
                                                       {.Name = "<b>&amp;\x01.mdl", .Bytes = "x"}})},
                                      {});
  ASSERT_EQ(index->Count(), 5u);
  EXPECT_EQ(index->Search({}, {})->size(), 4u) << "a/b/c.mdl is there twice";
  EXPECT_THAT(index->FoldersIn({}, "", {}), ElementsAre("..", "a"));
  EXPECT_THAT(index->FoldersIn({}, "a", {}), ElementsAre("a/b"));
  EXPECT_THAT(index->FoldersIn({}, "a/b", {}), IsEmpty());
  const Extraction done = Extract(*index, *index->Search({}, {}));
  EXPECT_EQ(done.Failed, 4u);
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path("../up.mdl")));
}

TEST_F(ContentIndexTest, SearchesManyFilesAsAPlainLookAtEachNameDoes) {
  VpkBuilder builder;
  for (int i = 0; i < 200'000; ++i) {
    const std::string folder = "materials/models/props_" + std::to_string(i / 3000) + "/set_" + std::to_string(i / 40);
    builder.Files.push_back(
        {.Name = folder + "/Object_" + std::to_string(i) + (i % 8 == 0 ? ".mdl" : ".vtf"), .Bytes = ""});
  }
  std::string reason;
  const auto archive =
      Archive::Open("big.vpk", std::make_unique<tests::MemorySource>(builder.Build().Directory), reason);
  ASSERT_TRUE(archive) << reason;
  const auto index = ContentIndex::Of({{"big.vpk", archive}}, {});
  ASSERT_EQ(index->Count(), 200'000u);
  for (const char* words : {"object_1999", "props_6/set_4", "s_6/", "99 set_1", "set_4999/obj", "*_77*.mdl"}) {
    size_t plain = 0;
    for (const tests::PackedFile& file : builder.Files) {
      const std::string name = FoldedText(file.Name);
      const std::string_view all(words);
      const size_t blank = all.find(' ');
      const auto has = [&](std::string_view word) {
        return word.find('*') != std::string_view::npos ? MatchesPattern(name, word)
                                                        : name.find(word) != std::string::npos;
      };
      if (has(all.substr(0, blank)) && (blank == std::string_view::npos || has(all.substr(blank + 1)))) ++plain;
    }
    EXPECT_GT(plain, 0u) << words;
    EXPECT_EQ(index->Search({.Words = words}, {})->size(), plain) << words;
  }
  EXPECT_EQ(index->LastPart(index->Search({.Words = "object_1000"}, {}).value().front()), "Object_1000.mdl");
}

}  // namespace
}  // namespace tarnwick::archives
