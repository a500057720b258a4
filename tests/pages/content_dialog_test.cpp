#include "pages/content_dialog.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "pages/content_list.h"
#include "pages/content_tree.h"
#include "platform/dropped_files.h"
#include "support/archive_builder.h"
#include "support/drawing.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

using archives::ContentKind;
using platform::BoxAnswer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using tests::Click;
using tests::ControlOf;
using tests::PackedFile;
using tests::WaitUntil;
using tests::WriteText;

/// The window over a game that the test writes.
class ContentWindow : public testing::Test {
 protected:
  ContentWindow() {
    WriteText(m_folder.Path("game/mod/gameinfo.txt"),
              "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. game mod/extra.vpk } } }");
    WriteText(m_folder.Path("game/mod/models/loose.mdl"), "loose");
    WriteVpk("game/mod/pak01_dir.vpk", {{.Name = "models/props/crate.mdl", .Bytes = "crate"},
                                        {.Name = "models/props/crate.vvd", .Bytes = "vertices"},
                                        {.Name = "models/props/barrel.mdl", .Bytes = "barrel"},
                                        {.Name = "materials/wall.vtf", .Bytes = Texture()},
                                        {.Name = "materials/wall.vmt", .Bytes = "material"}});
  }
  ~ContentWindow() override { m_window.reset(); }

  static std::string Texture() { return tests::VtfBuilder().Build(); }
  void WriteVpk(const std::string& path, const std::vector<PackedFile>& files) {
    WriteText(m_folder.Path(path), tests::VpkBuilder{.Files = files}.Build().Directory);
  }
  void Make() {
    m_window =
        std::make_unique<CContentDialog>(ContentContext{m_settings, m_desktop, [this] { ++m_configured; },
                                                        [this](const std::vector<std::string>& names) {
                                                          m_opened.clear();
                                                          for (const std::string& name : names)
                                                            m_opened.push_back(tests::WithSlashes(name));
                                                          return names.front().ends_with(".txt") ? 0 : names.size();
                                                        }},
                                         nullptr);
  }
  /// Opens the window on the game and waits for the files.
  void Open(std::optional<ContentKind> kind = {}) {
    m_settings.Values["Tarnwick/GameDirectory"] = m_folder.Path("game/mod");
    Make();
    m_window->BrowseGame(kind);
    ASSERT_TRUE(WaitUntil([this] { return !Listed().empty(); }));
  }
  void OpenArchives(const std::vector<std::string>& paths) {
    Make();
    m_window->BrowseArchives(paths);
  }

  CContentList& List() { return ControlOf<CContentList>(*m_window, "list"); }
  CContentTree& Tree() { return ControlOf<CContentTree>(*m_window, "tree"); }
  QLineEdit& SearchBox() { return ControlOf<QLineEdit>(*m_window, "searchEdit"); }
  std::string Message() {
    const auto& label = ControlOf<QLabel>(*m_window, "messageLabel");
    return label.isVisible() ? label.text().toStdString() : "";
  }
  std::string Status() { return ControlOf<QLabel>(*m_window, "statusLabel").text().toStdString(); }
  std::vector<std::string> Listed() {
    std::vector<std::string> names;
    for (int row = 0; row < std::min(List().model()->rowCount(), 1000); ++row) {
      names.push_back(List().model()->index(row, 0).data().toString().toStdString());
    }
    return names;
  }
  bool WaitForList(const std::vector<std::string>& names) {
    return WaitUntil([&] { return Listed() == names; });
  }
  void Select(int row) {
    List().selectionModel()->select(List().model()->index(row, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  QPixmap PictureOf(int row) {
    const QVariant icon = List().model()->data(List().model()->index(row, 0), Qt::DecorationRole);
    return icon.typeId() == QMetaType::QPixmap ? icon.value<QPixmap>() : QPixmap();
  }
  bool HasPicture(int row) { return !PictureOf(row).isNull(); }
  bool WaitForJob() {
    return WaitUntil([this] { return !ControlOf<QPushButton>(*m_window, "stopButton").isVisible(); });
  }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  int m_configured = 0;
  std::vector<std::string> m_opened;
  std::unique_ptr<CContentDialog> m_window;
};

TEST_F(ContentWindow, FindsAModelByTheKeyboardAloneAndOpensItAsTheGameFindsIt) {
  Open(ContentKind::Model);
  EXPECT_THAT(Listed(), ElementsAre("loose.mdl", "barrel.mdl", "crate.mdl"));
  QTest::keyClicks(&SearchBox(), "props cr");
  ASSERT_TRUE(WaitForList({"crate.mdl"}));
  QTest::keyClick(&SearchBox(), Qt::Key_Return);
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_THAT(m_opened, ElementsAre("game:models/props/crate.mdl"));
  QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
  QTest::keyClick(&SearchBox(), Qt::Key_Escape);
  EXPECT_EQ(SearchBox().text(), "");
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 3; }));

  // In one place what lies there is meant.
  Tree().setCurrentItem(Tree().topLevelItem(1));
  ASSERT_TRUE(WaitForList({"barrel.mdl", "crate.mdl"}));
  List().selectAll();
  Click(*m_window, "openButton");
  EXPECT_THAT(m_opened, ElementsAre(m_folder.Path("game/mod/pak01_dir.vpk") + ":models/props/barrel.mdl",
                                    m_folder.Path("game/mod/pak01_dir.vpk") + ":models/props/crate.mdl"));

  WriteText(m_folder.Path("game/mod/models/new.mdl"), "new");
  QTest::keyClick(m_window.get(), Qt::Key_F5);
  EXPECT_TRUE(WaitForList({"barrel.mdl", "crate.mdl"})) << "the place stays chosen";
  Tree().setCurrentItem(Tree().topLevelItem(0));
  EXPECT_TRUE(WaitForList({"loose.mdl", "new.mdl", "barrel.mdl", "crate.mdl"}));
}

TEST_F(ContentWindow, WalksTheFoldersOfAKind) {
  Open(ContentKind::Texture);
  EXPECT_THAT(Listed(), ElementsAre("wall.vtf"));
  EXPECT_EQ(Tree().topLevelItem(0)->childCount(), 1);
  ControlOf<QComboBox>(*m_window, "kindCombo").setCurrentIndex(0);
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 8; })) << testing::PrintToString(Listed());
  EXPECT_EQ(Tree().topLevelItem(0)->childCount(), 2);
  Tree().setCurrentItem(Tree().topLevelItem(0)->child(1));
  ASSERT_TRUE(WaitForList({"loose.mdl", "barrel.mdl", "crate.mdl", "crate.vvd"}));
  Click(*m_window, "belowCheck");
  ASSERT_TRUE(WaitForList({"loose.mdl"}));
  EXPECT_EQ(Status(), "1 file");
}

TEST_F(ContentWindow, MakesThePicturesOfWhatIsSeenAlone) {
  std::vector<PackedFile> files;
  for (int i = 100; i < 300; ++i)
    files.push_back({.Name = "materials/" + std::to_string(i) + ".vtf", .Bytes = Texture()});
  WriteVpk("many.vpk", files);
  OpenArchives({m_folder.Path("many.vpk")});
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 200; }));
  EXPECT_TRUE(WaitUntil([this] { return HasPicture(0); }));
  EXPECT_FALSE(HasPicture(199));
  List().scrollToBottom();
  EXPECT_TRUE(WaitUntil([this] { return HasPicture(199); }));
  EXPECT_FALSE(HasPicture(100));
  EXPECT_TRUE(HasPicture(0)) << "it is kept";
}

TEST_F(ContentWindow, MakesThePicturesOfMaterialsAndModels) {
  std::vector<PackedFile> files;
  const std::string samples = TARNWICK_SAMPLES;
  for (const std::string ending : {".mdl", ".vvd", ".dx90.vtx"}) {
    files.push_back({.Name = "models/walker" + ending, .Bytes = tests::BytesOf(samples + "/walker" + ending)});
  }
  const std::string folder = "materials/models/walker/";
  for (const std::string name : {"walker_cloth.vmt", "walker_cloth.vtf", "walker_skin.vmt", "walker_skin.vtf"}) {
    files.push_back({.Name = folder + name, .Bytes = tests::BytesOf(samples + '/' + folder + name)});
  }
  files.push_back({.Name = folder + "patch.vmt",
                   .Bytes = "patch { include materials/models/walker/walker_skin.vmt replace { $alpha 1 } }"});
  files.push_back({.Name = folder + "none.vmt", .Bytes = "VertexLitGeneric { $basetexture nowhere }"});
  WriteVpk("walker.vpk", files);
  OpenArchives({m_folder.Path("walker.vpk")});
  m_window->resize(1000, 1200);
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 9; }));
  EXPECT_THAT(Listed(), ElementsAre("none.vmt", "patch.vmt", "walker_cloth.vmt", "walker_cloth.vtf", "walker_skin.vmt",
                                    "walker_skin.vtf", "walker.dx90.vtx", "walker.mdl", "walker.vvd"));
  for (const int row : {1, 2, 3, 4, 5}) EXPECT_TRUE(WaitUntil([&] { return HasPicture(row); })) << row;
  const auto centre = [&](int row) {
    const QImage image = PictureOf(row).toImage();
    return image.pixelColor(image.rect().center()).rgb();
  };
  EXPECT_EQ(centre(2), centre(3));
  EXPECT_EQ(centre(4), centre(5));
  EXPECT_EQ(centre(1), centre(5)) << "by way of the material that it patches";
  EXPECT_FALSE(HasPicture(0)) << "its texture is nowhere";
  if (const std::string reason = tests::WhyNotDrawn(); !reason.empty()) GTEST_SKIP() << reason;
  ASSERT_TRUE(WaitUntil([&] { return HasPicture(7); }));
  const QImage model = PictureOf(7).toImage();
  EXPECT_EQ(model.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(model.pixelColor(model.rect().center()).alpha(), 255);
}

TEST_F(ContentWindow, ExtractsWhatIsSelectedWithWhatBelongsToAModel) {
  Open(ContentKind::Model);
  const std::string out = m_folder.Path("out");
  Select(2);
  m_desktop.Choices = {out};
  Click(*m_window, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_EQ(tests::ReadText(out + "/models/props/crate.vvd"), "vertices");
  EXPECT_FALSE(std::filesystem::exists(out + "/models/props/barrel.mdl"));
  EXPECT_THAT(Status(), HasSubstr("2 files (13 bytes) extracted to " + out));
  Click(*m_window, "folderButton");
  EXPECT_THAT(m_desktop.Opened, ElementsAre(out));
  EXPECT_THAT(m_desktop.Boxes, IsEmpty());

  // All that are listed; what is there already is asked about.
  WriteText(out + "/models/props/crate.mdl", "mine");
  List().clearSelection();
  for (const BoxAnswer answer : {BoxAnswer::Cancel, BoxAnswer::Ok}) {
    m_desktop.Choices = {out};
    m_desktop.BoxAnswers = {answer};
    Click(*m_window, "extractButton");
    ASSERT_TRUE(WaitForJob());
    EXPECT_EQ(tests::ReadText(out + "/models/props/crate.mdl"), answer == BoxAnswer::Ok ? "crate" : "mine");
  }
  EXPECT_THAT(m_desktop.LastBox.Text, HasSubstr("2 files are there already"));
  EXPECT_TRUE(std::filesystem::exists(out + "/models/loose.mdl"));
}

TEST_F(ContentWindow, DragsFilesThatStayForAWhile) {
  std::string reason;
  const auto index =
      archives::ContentIndex::Of({{"p", archives::Archive::Open(m_folder.Path("game/mod/pak01_dir.vpk"), reason)}}, {});
  const std::vector<uint32_t> crate = {*index->Find("models/props/crate.mdl")};
  std::string first;
  {
    ContentDrags drags;
    const auto paths = drags.Write(*index, crate, {}, reason);
    ASSERT_THAT(paths, SizeIs(1));
    first = paths[0];
    EXPECT_EQ(tests::ReadText(first), "crate");
    const auto dragged = DragData({"game:models/props/crate.mdl"}, paths);
    EXPECT_EQ(dragged->urls().front().toLocalFile().toStdString(), tests::WithSlashes(first));
    EXPECT_THAT(platform::FilesOf(*dragged).Paths, ElementsAre("game:models/props/crate.mdl"))
        << "a field of the program takes the name";
    const auto second = drags.Write(*index, crate, {}, reason);
    EXPECT_TRUE(std::filesystem::exists(first)) << "another program may still read it";
    for (int i = 0; i < 8; ++i) drags.Write(*index, crate, {}, reason);
    EXPECT_FALSE(std::filesystem::exists(first));
    first = second[0];
  }
  EXPECT_FALSE(std::filesystem::exists(first));
}

TEST_F(ContentWindow, ReadsArchivesAnewThatChangeOnTheDisk) {
  WriteVpk("one.vpk", {{.Name = "models/a.mdl", .Bytes = "a"}});
  OpenArchives({m_folder.Path("one.vpk")});
  ASSERT_TRUE(WaitForList({"a.mdl"}));
  QTest::keyClicks(&SearchBox(), "mdl");
  WriteVpk("one.vpk", {{.Name = "models/a.mdl", .Bytes = "a"}, {.Name = "models/b.mdl", .Bytes = "b"}});
  EXPECT_TRUE(WaitForList({"a.mdl", "b.mdl"}));
  EXPECT_EQ(SearchBox().text(), "mdl");
#ifndef _WIN32  // there its name may stay until the last who has it open is done
  std::filesystem::remove(m_folder.Path("one.vpk"));
  EXPECT_TRUE(WaitUntil([this] { return Message().find("one.vpk") != std::string::npos; })) << Message();
#endif
  WriteVpk("one.vpk", {{.Name = "models/back.mdl", .Bytes = "b"}});
  EXPECT_TRUE(WaitForList({"back.mdl"}));
}

TEST_F(ContentWindow, ShowsHostileNamesAsTextAndWritesNothingOutside) {
  const std::string bold = "<b>bold<\x01img src=x>&lt;.mdl";
  WriteText(m_folder.Path("evil.gma"),
            tests::GmaBuilder{.Files = {{.Name = "models/" + bold, .Bytes = "x"},
                                        {.Name = "../../../up.mdl", .Bytes = "x"},
                                        {.Name = "models/wrong.mdl", .Bytes = "x", .WrongCrc = true}}}
                .Build());
  OpenArchives({m_folder.Path("evil.gma")});
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 3; }));
  EXPECT_THAT(Listed(), ElementsAre("up.mdl", "<b>bold<\\x01img src=x>&lt;.mdl", "wrong.mdl"));
  const QString tip = List().model()->index(1, 0).data(Qt::ToolTipRole).toString();
  EXPECT_FALSE(tip.contains("<b>") || tip.contains("<img"));
  m_desktop.Choices = {m_folder.Path("in/here")};
  Click(*m_window, "extractButton");
  ASSERT_TRUE(WaitForJob());
  ASSERT_THAT(m_desktop.Boxes, SizeIs(1));
  EXPECT_EQ(m_desktop.LastBox.Text, "3 files could not be extracted.");
  EXPECT_THAT(m_desktop.LastBox.Details, testing::AllOf(HasSubstr(".."), HasSubstr("wrong.mdl")));
  for (const std::string& file : m_folder.Files()) EXPECT_THAT(file, testing::Not(HasSubstr("up.mdl")));
}

TEST_F(ContentWindow, SaysInWordsWhyThereIsNothing) {
  Make();
  m_window->BrowseGame({});
  EXPECT_THAT(Message(), HasSubstr("No game directory is set."));
  Click(*m_window, "configureButton");
  EXPECT_EQ(m_configured, 1);

  m_settings.Values["Tarnwick/GameDirectory"] = m_folder.Path("game");
  Click(*m_window, "refreshButton");
  EXPECT_TRUE(WaitUntil([this] { return Message().find("gameinfo.txt") != std::string::npos; })) << Message();
  EXPECT_TRUE(ControlOf<QPushButton>(*m_window, "configureButton").isVisible());

  WriteText(m_folder.Path("broken.vpk"), std::string("\x34\x12\xAA\x55\1\0\0\0\xFF\xFF", 10));
  tests::Drop(*m_window, {m_folder.Path("broken.vpk")});
  EXPECT_TRUE(WaitUntil([this] { return Message().find("broken.vpk: ") != std::string::npos; })) << Message();
  EXPECT_FALSE(ControlOf<QPushButton>(*m_window, "configureButton").isVisible());

  // In a game a damaged archive leaves the rest in sight.
  WriteText(m_folder.Path("game/mod/extra.vpk"), "no archive");
  m_settings.Values["Tarnwick/GameDirectory"] = m_folder.Path("game/mod");
  Click(*m_window, "gameButton");
  ASSERT_TRUE(WaitUntil([this] { return !Listed().empty(); }));
  EXPECT_THAT(ControlOf<QLabel>(*m_window, "noticeLabel").text().toStdString(), HasSubstr("extra.vpk: "));
  SearchBox().setText("nothing like it");
  EXPECT_TRUE(WaitUntil([this] { return Message().find("No files") == 0; })) << Message();
}

TEST_F(ContentWindow, OpensAnArchiveThatLiesInAFolderAndRemembersItsPlace) {
  Open();
  SearchBox().setText("pak01");
  ASSERT_TRUE(WaitForList({"pak01_dir.vpk"}));
  Select(0);
  m_window->resize(m_window->width(), 500);
  Click(*m_window, "openButton");
  ASSERT_TRUE(WaitUntil([this] { return Listed().size() == 5; }));
  EXPECT_THAT(m_opened, IsEmpty());
  m_window->close();
  Make();
  m_window->BrowseGame({});
  EXPECT_EQ(m_window->height(), 500);
}

TEST_F(ContentWindow, SearchesManyFilesWithoutMakingRowsOfThem) {
  std::vector<PackedFile> files;
  for (int i = 0; i < 200'000; ++i) {
    files.push_back(
        {.Name = "materials/set_" + std::to_string(i / 50) + "/part_" + std::to_string(i) + ".vtf", .Bytes = {}});
  }
  WriteVpk("big.vpk", files);
  OpenArchives({m_folder.Path("big.vpk")});
  ASSERT_TRUE(WaitUntil([this] { return List().model()->rowCount() == 200'000; }));
  EXPECT_EQ(Status(), "200,000 files");
  // Each letter is a search; the last one counts.
  QTest::keyClicks(&SearchBox(), "part_19999");
  ASSERT_TRUE(WaitUntil([this] { return List().model()->rowCount() == 11; })) << List().model()->rowCount();
  EXPECT_EQ(Listed().front(), "part_19999.vtf");
}

}  // namespace

}  // namespace tarnwick::pages
