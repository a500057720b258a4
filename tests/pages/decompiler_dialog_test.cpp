#include "pages/decompiler_dialog.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QTreeWidget>
#include <filesystem>

#include "pages/sources_view.h"
#include "project/model_options.h"
#include "settings/documents_folder.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"
#include "view/widget/model_view.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using tests::Click;
using tests::ControlOf;
using tests::Dropped;
using tests::ShownBox;

/// The page in a window of its own that takes drops, as in the main dialog.
class DecompilePage : public testing::Test {
 protected:
  void Open() {
    m_page = std::make_unique<CDecompilerDialog>(PageContext{m_settings, m_desktop, m_options}, nullptr);
    m_page->Create();
    m_page->AcceptFiles();
    m_page->show();
  }

  std::string Model() { return ControlOf<QLineEdit>(*m_page, "modelEdit").text().toStdString(); }
  std::string Output() { return ControlOf<QLineEdit>(*m_page, "outputEdit").text().toStdString(); }
  QCheckBox& Box(const char* name) { return ControlOf<QCheckBox>(*m_page, name); }
  CDecompilerStatus& Status() { return *m_page->findChild<CDecompilerStatus*>(); }
  std::string Log() { return ControlOf<QPlainTextEdit>(Status(), "logEdit").toPlainText().toStdString(); }
  bool WaitForJob() {
    return tests::WaitUntil([this] { return m_page->isEnabled(); });
  }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
  std::unique_ptr<CDecompilerDialog> m_page;
};

TEST_F(DecompilePage, StartsEmptyWithTheDocumentsFolderAndWritesNothing) {
  Open();
  EXPECT_EQ(Model(), "");
  EXPECT_EQ(Output(), settings::DocumentsFolder());
  EXPECT_FALSE(Box("unweightedCheck").isChecked());
  EXPECT_FALSE(Box("rotationsCheck").isChecked());
  EXPECT_TRUE(Box("readyCheck").isChecked());
  EXPECT_FALSE(Status().isVisible());
  EXPECT_TRUE(m_settings.Values.empty());
}

TEST_F(DecompilePage, StartsWithWhatIsKept) {
  m_settings.Values = {{"Ravelback/LastMDLFile", "/m/a.mdl"},
                       {"Ravelback/OutputDirectory", "/out"},
                       {"Ravelback/CheckBoxSettings", "4"},
                       {"Ravelback/ReadyToCompile", "0"}};
  Open();
  EXPECT_EQ(Model(), "/m/a.mdl");
  EXPECT_EQ(Output(), "/out");
  EXPECT_FALSE(Box("unweightedCheck").isChecked());
  EXPECT_TRUE(Box("rotationsCheck").isChecked());
  EXPECT_FALSE(Box("readyCheck").isChecked());
}

TEST_F(DecompilePage, BrowsingStoresAChoiceAndComplainsOnlyOfEmptyBoxes) {
  Open();
  m_desktop.Choices = {"/m/walker.mdl", "/out"};
  Click(*m_page, "browseModelButton");
  Click(*m_page, "browseOutputButton");
  EXPECT_EQ(m_desktop.FileRequests.front().Title, "Name of MDL File");
  EXPECT_EQ(m_desktop.FileRequests.front().Filter, "MDL Files (*.mdl)|*.mdl|");
  EXPECT_THAT(m_desktop.FolderRequests, ElementsAre(std::pair<std::string, std::string>("Name of Output Directory",
                                                                                        settings::DocumentsFolder())));
  EXPECT_EQ(m_settings.Values["Ravelback/LastMDLFile"], "/m/walker.mdl");
  EXPECT_EQ(m_settings.Values["Ravelback/OutputDirectory"], "/out");

  ControlOf<QLineEdit>(*m_page, "modelEdit").setText("typed");
  Click(*m_page, "browseModelButton");  // cancelled; the box shows the last chosen file again
  Click(*m_page, "browseOutputButton");
  EXPECT_EQ(Model(), "/m/walker.mdl");
  EXPECT_EQ(Output(), "/out");
  EXPECT_TRUE(m_desktop.Boxes.empty());

  m_settings.Values.clear();
  ControlOf<QLineEdit>(*m_page, "outputEdit").clear();
  Click(*m_page, "browseModelButton");
  Click(*m_page, "browseOutputButton");
  EXPECT_THAT(m_desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation, "No MDL File Selected!", ""},
                                           ShownBox{BoxIcon::Exclamation, "No Output Folder Selected!", ""}));
}

TEST_F(DecompilePage, TakesDropsByTheirPoint) {
  Open();
  auto& modelBox = ControlOf<QLineEdit>(*m_page, "modelEdit");
  tests::Drop(modelBox, {"/m/first.txt", "/m/second.mdl"});
  EXPECT_EQ(Model(), Dropped("/m/first.txt")) << "on the box the first file counts, whatever it is";
  EXPECT_EQ(m_settings.Values["Ravelback/LastMDLFile"], Dropped("/m/first.txt"));
  tests::Drop(ControlOf<QLabel>(*m_page, "resultLabel"), {"/m/third.txt", "/m/fourth.MDL"});
  EXPECT_EQ(Model(), Dropped("/m/fourth.MDL")) << "elsewhere a model is looked for";
  auto& outputBox = ControlOf<QLineEdit>(*m_page, "outputEdit");
  tests::Drop(outputBox, {"/m/fifth.mdl"});
  EXPECT_EQ(Model(), Dropped("/m/fourth.MDL"));
  EXPECT_EQ(Output(), settings::DocumentsFolder());
  tests::Drop(outputBox, {m_folder.Path()});
  EXPECT_EQ(Output(), Dropped(m_folder.Path()));
}

TEST_F(DecompilePage, RunsAWholeJobFromClickToFinishedLog) {
  Open();
  const std::string model = tests::ModelBuilder{}.Write(m_folder.Path());
  const std::string output = m_folder.Path("out");
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(model));
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(output));
  Box("unweightedCheck").setChecked(true);
  Box("rotationsCheck").setChecked(true);
  for (int run = 0; run < 2; ++run) {  // the second replaces the first one's log in the same window
    Click(*m_page, "extractButton");
    EXPECT_FALSE(m_page->isEnabled());
    EXPECT_TRUE(Status().isVisible() && Status().isEnabled());
    ASSERT_TRUE(WaitForJob());
    EXPECT_THAT(Log(), testing::StartsWith("Loaded model " + model + "\n"));
    EXPECT_EQ(Log().find("Loaded model", 1), std::string::npos);
    EXPECT_THAT(Log(), EndsWith("\nCompleted Dumping Model!\n"));
    EXPECT_EQ(ControlOf<QProgressBar>(Status(), "progressBar").value(), 100);
    QTest::keyClick(&ControlOf<QPlainTextEdit>(Status(), "logEdit"), Qt::Key_Escape);
    EXPECT_FALSE(Status().isVisible()) << "Esc closes a log";
  }
  EXPECT_EQ(ControlOf<QLabel>(Status(), "fileLabel").text(), "2 files written") << "the script counts too";
  EXPECT_THAT(m_folder.Files(), IsSupersetOf({"out/cube/ravelback.qc", "out/cube/cube.smd"}));
  EXPECT_TRUE(m_desktop.Boxes.empty());
  EXPECT_EQ(m_settings.Values["Ravelback/CheckBoxSettings"], "6");
  EXPECT_EQ(m_settings.Values["Ravelback/ReadyToCompile"], "1");
  EXPECT_NE(ControlOf<QLineEdit>(*m_page, "modelEdit").completer()->model()->rowCount(), 0);
  EXPECT_EQ(m_settings.Values.count("Ravelback/OutputDirectory"), 0u) << "only a picked directory is kept";
  Click(Status(), "openFolderButton");
  EXPECT_THAT(m_desktop.Opened, ElementsAre(output + "/cube"));
}

TEST_F(DecompilePage, EnterExtractsWhatIsTypedAlsoWhileRecentPathsAreOffered) {
  m_settings.Values["Ravelback/Recent Models"] =
      "/home/ada/models/a folder of a name that is long/crate.mdl\n/home/ada/models/barrel.mdl\n";
  Open();
  m_page->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_page.get()));
  auto& model = ControlOf<QLineEdit>(*m_page, "modelEdit");
  model.setFocus();
  QAbstractItemView* const offers = model.completer()->popup();
  // One that is chosen from the list is taken first, and not yet extracted.
  QTest::keyClicks(&model, "barrel");
  ASSERT_TRUE(offers->isVisible());
  QTest::keyClick(offers, Qt::Key_Down);
  QTest::keyClick(offers, Qt::Key_Return);
  EXPECT_EQ(Model(), "/home/ada/models/barrel.mdl");
  QTest::qWait(20);
  EXPECT_FALSE(Status().isVisible());
  model.clear();
  QTest::keyClicks(&model, "/home/ada/models");
  ASSERT_TRUE(offers->isVisible());
  EXPECT_GT(offers->width(), offers->sizeHintForColumn(0)) << "paths can be told apart";
  QTest::keyClick(offers, Qt::Key_Return);
  EXPECT_TRUE(tests::WaitUntil([this] { return Status().isVisible(); }));
  EXPECT_FALSE(offers->isVisible());
  ASSERT_TRUE(WaitForJob());
}

TEST_F(DecompilePage, ShowsWhyAJobFailed) {
  Open();
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path()));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_EQ(m_desktop.Boxes.front().Icon, BoxIcon::Stop);
  EXPECT_EQ(m_desktop.Boxes.front().Caption, "Error");
  EXPECT_THAT(m_desktop.Boxes.front().Text, testing::StartsWith("Unable to load model"));
  EXPECT_TRUE(m_folder.Files().empty());
}

TEST_F(DecompilePage, ShowsOneBoxForADamagedModelAndTheRestInItsLog) {
  Open();
  const std::string model = tests::ModelBuilder{}.Write(m_folder.Path());
  std::filesystem::resize_file(model, 420);  // the tables behind the header are gone
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(model));
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_EQ(m_desktop.Boxes.front().Caption, "Damaged File");
  EXPECT_GT(QString::fromStdString(Log()).count("Damaged File: "), 1);
  EXPECT_THAT(ControlOf<QLabel>(Status(), "fileLabel").text().toStdString(), EndsWith(" errors"));
}

TEST_F(DecompilePage, OpensTheFolderAboveWhereAModelHasWrittenNothing) {
  Open();
  const std::string model = tests::ModelBuilder{}.Write(m_folder.Path());
  std::filesystem::remove(m_folder.Path("cube.dx90.vtx"));
  std::filesystem::create_directory(m_folder.Path("out"));
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(model));
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  Click(Status(), "openFolderButton");
  EXPECT_THAT(m_desktop.Opened, ElementsAre(m_folder.Path("out")));
}

/// The rows of the list of models, their columns parted by a bar.
std::vector<std::string> Rows(QWidget& status) {
  std::vector<std::string> rows;
  const auto& list = ControlOf<QTreeWidget>(status, "resultList");
  for (int i = 0; i < list.topLevelItemCount(); ++i) {
    const QString row = list.topLevelItem(i)->text(0) + "|" + list.topLevelItem(i)->text(1);
    rows.push_back(tests::WithSlashes(row.toStdString()));
  }
  return rows;
}

TEST_F(DecompilePage, DecompilesAllThatIsDroppedAndTellsWhatBecameOfEach) {
  Open();
  for (const char* name : {"a", "b", "c"}) tests::ModelBuilder{}.Write(m_folder.Path(), name);
  tests::ModelBuilder{}.Write(m_folder.Path("deep/below"), "d");
  std::filesystem::remove(m_folder.Path("b.dx90.vtx"));
  Box("ownFoldersCheck").setChecked(false);  // several models get folders all the same
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("new/out")));
  tests::Drop(ControlOf<QLabel>(*m_page, "resultLabel"),
              {m_folder.Path("a.mdl"), m_folder.Path("a.vvd"), m_folder.Path("b.mdl"), m_folder.Path("deep")});
  EXPECT_EQ(Model(), Dropped(m_folder.Path("a.mdl") + "; " + m_folder.Path("b.mdl") + "; " + m_folder.Path("deep")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(Rows(Status()), ElementsAre("a.mdl|2 files written", HasSubstr("b.mdl|failed: Unable to load vertices"),
                                          "below/d.mdl|2 files written"));
  EXPECT_THAT(Log(), HasSubstr("\nb.mdl: failed: Unable to load vertices")) << "the log names the model";
  EXPECT_TRUE(ControlOf<QTreeWidget>(Status(), "resultList").isVisible());
  EXPECT_THAT(ControlOf<QLabel>(Status(), "fileLabel").text().toStdString(),
              testing::AllOf(HasSubstr("3 models, 4 files"), EndsWith("1 failed")));
  EXPECT_TRUE(m_desktop.Boxes.empty()) << "the list tells";
  EXPECT_THAT(m_folder.Files(), IsSupersetOf({"new/out/a/cube.smd", "new/out/below/d/cube.smd"}));
  emit ControlOf<QTreeWidget>(Status(), "resultList")
      .itemActivated(ControlOf<QTreeWidget>(Status(), "resultList").topLevelItem(2), 0);
  EXPECT_THAT(m_desktop.Opened, ElementsAre(m_folder.Path("new/out/below/d")));

  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(m_folder.Path("c.mdl")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_FALSE(ControlOf<QTreeWidget>(Status(), "resultList").isVisible()) << "what was typed counts alone";
  EXPECT_THAT(m_folder.Files(), Contains("new/out/cube.smd"));
}

TEST_F(DecompilePage, ListsWhatTheSourcesDoNotSay) {
  Open();
  const std::string odd = tests::ModelBuilder{.Flags = 0x60000}.Write(m_folder.Path(), "odd");
  const std::string plain = tests::ModelBuilder{}.Write(m_folder.Path(), "plain");
  auto& list = ControlOf<QTreeWidget>(Status(), "resultList");
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(odd));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_EQ(ControlOf<QLabel>(Status(), "fileLabel").text(), "2 files written, 2 things lost");
  ASSERT_TRUE(list.isVisible()) << "also for a single model";
  ASSERT_EQ(list.topLevelItem(0)->childCount(), 1);
  EXPECT_TRUE(list.topLevelItem(0)->isExpanded());
  EXPECT_EQ(list.topLevelItem(0)->child(0)->text(1), "header flags without a statement: 2");
  EXPECT_THAT(Log(), HasSubstr("Lost: header flags without a statement: 2\n"));
  emit list.itemActivated(list.topLevelItem(0)->child(0), 0);
  EXPECT_THAT(m_desktop.Opened, ElementsAre(m_folder.Path("out/odd"))) << "what was lost leads to the sources";

  tests::Drop(ControlOf<QLabel>(*m_page, "resultLabel"), {odd, plain});
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(ControlOf<QLabel>(Status(), "fileLabel").text().toStdString(), EndsWith(", 2 things lost"));
  EXPECT_THAT(Rows(Status()), ElementsAre("odd.mdl|2 files written, 2 things lost", "plain.mdl|2 files written"));
  EXPECT_EQ(list.topLevelItem(1)->childCount(), 0);
}

TEST_F(DecompilePage, VerifiesTheModelsOfTheLastJobBesideTheWindow) {
  Open();
  auto& verify = ControlOf<QPushButton>(Status(), "verifyButton");
  EXPECT_FALSE(verify.isEnabled()) << "no job has been";
  for (const char* name : {"a", "b"}) tests::ModelBuilder{}.Write(m_folder.Path(), name);
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(m_folder.Path()));
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  const auto files = m_folder.Files();
  EXPECT_TRUE(verify.isEnabled());
  EXPECT_EQ(verify.text(), "&Verify") << "the keyboard reaches it";
  Click(Status(), "verifyButton");
  EXPECT_FALSE(m_page->isEnabled());
  EXPECT_FALSE(verify.isEnabled());
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(Rows(Status()), testing::SizeIs(2));
  EXPECT_THAT(tests::WithSlashes(Log()),
              testing::AllOf(HasSubstr(m_folder.Path("a.mdl: ")), HasSubstr(m_folder.Path("b.mdl: "))));
  EXPECT_THAT(ControlOf<QLabel>(Status(), "fileLabel").text().toStdString(), HasSubstr("of 2 models"));
  EXPECT_TRUE(verify.isEnabled()) << "it may be asked again";
  EXPECT_EQ(m_folder.Files(), files) << "nothing is left";
  auto& list = ControlOf<QTreeWidget>(Status(), "resultList");
  emit list.itemActivated(list.topLevelItem(1), 0);
  EXPECT_THAT(m_desktop.Opened, ElementsAre(m_folder.Path("out/b")));

  std::filesystem::remove(m_folder.Path("b.dx90.vtx"));
  const auto lines = [this] { return QString::fromStdString(Log()).count("b.mdl: "); };
  const auto before = lines();
  Click(Status(), "verifyButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_EQ(lines(), before + 1) << "a failure is told once";
}

TEST_F(DecompilePage, SaysThatAFolderHoldsNoModel) {
  Open();
  std::filesystem::create_directory(m_folder.Path("empty"));
  tests::Drop(ControlOf<QLineEdit>(*m_page, "modelEdit"), {m_folder.Path("empty")});
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(ControlOf<QLabel>(Status(), "fileLabel").text().toStdString(), HasSubstr("holds no .mdl file"));
}

TEST_F(DecompilePage, LeavesPhysicsOutOnWishInTheReadyForm) {
  Open();
  EXPECT_TRUE(Box("physicsCheck").isChecked());
  Box("readyCheck").click();
  EXPECT_FALSE(Box("physicsCheck").isEnabled());
  Box("readyCheck").click();
  tests::ModelBuilder model;
  model.Physics = tests::PhyBuilder{};
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(model.Write(m_folder.Path())));
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  for (const bool wanted : {true, false}) {
    std::filesystem::remove_all(m_folder.Path("out"));
    Box("physicsCheck").setChecked(wanted);
    Click(*m_page, "extractButton");
    ASSERT_TRUE(WaitForJob());
    EXPECT_EQ(std::filesystem::exists(m_folder.Path("out/cube/phys.smd")), wanted);
    ASSERT_TRUE(tests::WaitUntil([&] { return !m_page->findChild<SourcesView*>()->IsBusy(); })) << "it reads them";
  }
  Open();
  EXPECT_FALSE(Box("physicsCheck").isChecked());
}

TEST_F(DecompilePage, KeepsModelsApartInTheReadyFormUnlessToldNotTo) {
  Open();
  EXPECT_TRUE(Box("ownFoldersCheck").isChecked());
  Box("readyCheck").click();
  EXPECT_FALSE(Box("ownFoldersCheck").isChecked());
  Box("readyCheck").click();
  EXPECT_TRUE(Box("ownFoldersCheck").isChecked());
  Box("ownFoldersCheck").setChecked(false);
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_EQ(m_settings.Values["Ravelback/Own Model Folders"], "0");
  Open();
  EXPECT_FALSE(Box("ownFoldersCheck").isChecked());
}

TEST_F(DecompilePage, ListsTheSourcesThatItWroteAndShowsTheChosenOne) {
  Open();
  Box("sideCheck").click();
  ASSERT_TRUE(Box("sideCheck").isChecked()) << "hidden at first on a small screen";
  EXPECT_EQ(m_settings.Values["Ravelback/Model Pane"], "1");
  auto& tabs = ControlOf<QTabWidget>(*m_page, "sideTabs");
  EXPECT_TRUE(tabs.isVisible());
  const std::string model = tests::ModelBuilder{}.Write(m_folder.Path());
  ControlOf<QLineEdit>(*m_page, "modelEdit").setText(QString::fromStdString(model));
  auto& view = ControlOf<view::ModelView>(*m_page, "modelView");
  EXPECT_TRUE(tests::WaitUntil([&] { return view.HasModel(); })) << "the model is shown as soon as it is named";
  ControlOf<QLineEdit>(*m_page, "outputEdit").setText(QString::fromStdString(m_folder.Path("out")));
  Click(*m_page, "extractButton");
  ASSERT_TRUE(WaitForJob());
  auto& sources = *m_page->findChild<SourcesView*>();
  EXPECT_EQ(tabs.currentWidget(), &sources);
  auto& list = ControlOf<QTreeWidget>(sources, "sourceList");
  ASSERT_EQ(list.topLevelItemCount(), 1);
  const QTreeWidgetItem& written = *list.topLevelItem(0);
  ASSERT_GE(written.childCount(), 2);
  auto& text = ControlOf<QPlainTextEdit>(sources, "sourceText");
  auto& mesh = ControlOf<view::ModelView>(sources, "sourceMesh");
  int scripts = 0;
  int meshes = 0;
  for (int i = 0; i < written.childCount(); ++i) {
    const QString name = written.child(i)->text(0);
    list.setCurrentItem(written.child(i));
    ASSERT_TRUE(tests::WaitUntil([&] { return !sources.IsBusy(); }));
    if (name.endsWith(".qc")) {
      ++scripts;
      EXPECT_TRUE(text.isVisible());
      EXPECT_THAT(text.toPlainText().toStdString(), HasSubstr("$modelname"));
      const QTextBlock line = text.document()->find("$modelname").block();
      ASSERT_FALSE(line.layout()->formats().isEmpty()) << "coloured";
      EXPECT_EQ(line.layout()->formats().front().length, 10);
    } else if (name.endsWith(".smd")) {
      ++meshes;
      EXPECT_TRUE(mesh.isVisible());
      EXPECT_TRUE(mesh.HasModel());
      ControlOf<QCheckBox>(sources, "asTextCheck").setChecked(true);
      ASSERT_TRUE(tests::WaitUntil([&] { return !sources.IsBusy(); }));
      EXPECT_THAT(text.toPlainText().toStdString(), testing::StartsWith("version 1"));
      ControlOf<QCheckBox>(sources, "asTextCheck").setChecked(false);
    }
  }
  EXPECT_EQ(scripts, 1);
  EXPECT_GE(meshes, 1);
  Click(sources, "sourceFolderButton");
  Click(sources, "sourceEditButton");
  ASSERT_EQ(m_desktop.Opened.size(), 2u);
  EXPECT_THAT(tests::WithSlashes(m_desktop.Opened[1]),
              testing::StartsWith(tests::WithSlashes(m_desktop.Opened[0]) + "/"));
}

}  // namespace

}  // namespace tarnwick::pages
