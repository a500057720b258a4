#include "app/kilndesk_dlg.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <algorithm>
#include <cctype>
#include <functional>
#include <semaphore>

#include "app/document_view.h"
#include "app/help_window.h"
#include "controls/html_static.h"
#include "core/paths.h"
#include "platform/job_runner.h"
#include "platform/look.h"
#include "support/scratch_folder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::app {

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

class MainDialog : public testing::Test {
 protected:
  void Open(const std::vector<std::string>& files = {}) {
    m_dialog = std::make_unique<CKilndeskDlg>(m_settings, m_desktop);
    m_dialog->OpenAtStart(files);
    m_dialog->Create();
    m_dialog->show();
    if (!files.empty()) QCoreApplication::processEvents();
  }
  QTabWidget& Tabs() { return ControlOf<QTabWidget>(*m_dialog, "tabs"); }
  std::string GameDirectory() { return ControlOf<QLineEdit>(*m_dialog, "gameDirectoryLabel").text().toStdString(); }
  std::string Value(const std::string& key) {
    const auto found = m_settings.Values.find(key);
    return found == m_settings.Values.end() ? "(not there)" : found->second;
  }

  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  std::unique_ptr<CKilndeskDlg> m_dialog;
};

TEST_F(MainDialog, OpensOnTheFirstTabAndWritesNothingByStarting) {
  Open();
  EXPECT_EQ(m_dialog->windowTitle(), "Brackenhall's Tarnwick");
  QStringList tabs;
  for (int i = 0; i < Tabs().count(); ++i) tabs << Tabs().tabText(i);
  EXPECT_EQ(tabs, QStringList({"Model Compile", "Material Compile", "Model Decompile", "VTF Export"}));
  EXPECT_EQ(Tabs().currentIndex(), 0);
  EXPECT_EQ(GameDirectory(), "");
  m_dialog->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
  Tabs().setFocus();
  EXPECT_TRUE(ControlOf<QPushButton>(*m_dialog, "aboutButton").isDefault()) << "outside the pages";
  EXPECT_TRUE(m_settings.Values.empty());
}

TEST_F(MainDialog, GivesEveryIconButtonADrawingATooltipAndAName) {
  Open();
  int icons = 0;
  for (const QAbstractButton* button : m_dialog->findChildren<QAbstractButton*>()) {
    const std::string name = button->objectName().toStdString();
    EXPECT_FALSE(button->text().startsWith("IDB_")) << name;
    if (!button->property("stem").isValid()) continue;
    ++icons;
    EXPECT_FALSE(button->icon().isNull()) << name;
    EXPECT_FALSE(button->toolTip().isEmpty()) << name;
    EXPECT_FALSE(button->accessibleName().isEmpty()) << name;
  }
  EXPECT_GE(icons, 3);
}

/// The letters that Alt goes with among what is seen of `window`; one that stands twice stands in capitals.
std::string Mnemonics(QWidget& window) {
  std::string letters;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const char* property = control->inherits("QGroupBox") ? "title" : "text";
    const bool hasOne =
        control->inherits("QGroupBox") || control->inherits("QLabel") || control->inherits("QAbstractButton");
    const QKeySequence keys = QKeySequence::mnemonic(control->property(property).toString());
    if (!hasOne || keys.isEmpty() || !control->isVisible()) continue;
    const auto letter = static_cast<char>(keys[0].key());
    const bool isNew = letters.find(static_cast<char>(std::tolower(letter))) == std::string::npos;
    letters += isNew ? static_cast<char>(std::tolower(letter)) : letter;
  }
  return letters;
}

TEST_F(MainDialog, GivesNoLetterToTwoControlsOfAPage) {
  Open();
  auto& innerTabs = ControlOf<QTabWidget>(*m_dialog->findChild<pages::CMDLSelDialog*>(), "tabs");
  for (const auto& [tab, inner] : {std::pair(0, 0), {0, 1}, {1, 0}, {2, 0}, {3, 0}}) {
    Tabs().setCurrentIndex(tab);
    innerTabs.setCurrentIndex(inner);
    const std::string letters = Mnemonics(*m_dialog);
    EXPECT_GT(letters.size(), 7u);
    EXPECT_TRUE(std::none_of(letters.begin(), letters.end(), [](char c) { return c >= 'A' && c <= 'Z'; }))
        << letters << " on tab " << tab << ", " << inner;
  }
}

TEST_F(MainDialog, RemembersItsTabWhetherLeftByExitOrByTheCloseBox) {
  Open();
  Tabs().setCurrentIndex(3);
  Click(*m_dialog, "exitButton");
  EXPECT_FALSE(m_dialog->isVisible());
  const auto saved = m_settings.Values;
  EXPECT_EQ(Value("Tarnwick/TabSelect"), "3");
  EXPECT_EQ(Value("Tarnwick/Scale"), "(not there)");
  EXPECT_EQ(Value("Tarnwick/Mass"), "(not there)");
  m_settings.Values.clear();
  Open();
  Tabs().setCurrentIndex(3);
  m_dialog->close();
  EXPECT_EQ(m_settings.Values, saved);
  Open();
  EXPECT_EQ(Tabs().currentIndex(), 3);
  m_settings.Values["Tarnwick/TabSelect"] = "9";
  Open();
  EXPECT_EQ(Tabs().currentIndex(), 0);
}

TEST_F(MainDialog, HandsDropsToTheShowingPageOnlyAndPagesKeepTheirText) {
  Open();
  auto& modelBox = ControlOf<QLineEdit>(*m_dialog, "modelEdit");
  tests::Drop(*m_dialog, {"/m/a.mdl"});
  EXPECT_EQ(modelBox.text(), "") << "another tab is showing";
  Tabs().setCurrentIndex(2);
  tests::Drop(modelBox, {"/m/b.mdl"});
  EXPECT_EQ(modelBox.text(), QDir::toNativeSeparators("/m/b.mdl"));
  Tabs().setCurrentIndex(3);
  Tabs().setCurrentIndex(2);
  EXPECT_EQ(modelBox.text(), QDir::toNativeSeparators("/m/b.mdl"));
}

TEST_F(MainDialog, ShowsThePageOfTheFilesThatItWasStartedWith) {
  const struct {
    const char* File;
    int Tab;
    const char* Field;
  } cases[] = {{"/m/a.MDL", 2, "modelEdit"},
               {"/m/a.vtf", 3, "inputEdit"},
               {"/m/a.qc", 0, "qcFileEdit"},
               {"/m/a.smd", 0, "referenceEdit"}};
  for (const auto& each : cases) {
    Open({"/m/readme.txt", each.File});
    EXPECT_EQ(Tabs().currentIndex(), each.Tab) << each.File;
    auto& field = ControlOf<QLineEdit>(*m_dialog, each.Field);
    EXPECT_EQ(field.text(), each.File);
    EXPECT_TRUE(field.isVisible()) << each.Field;
  }
  EXPECT_TRUE(m_desktop.Boxes.empty());
  Open({"/m/readme.txt"});
  ASSERT_EQ(m_desktop.Boxes.size(), 1U);
  EXPECT_NE(m_desktop.Boxes.front().Text.find("/m/readme.txt"), std::string::npos);
}

TEST_F(MainDialog, ConfiguringOffersTheProgramsOwnTextureTools) {
  Open();
  tests::WhenModalOpens([this](QWidget& dialog) {
    Click(dialog, "ownToolsButton");
    EXPECT_THAT(ControlOf<QLineEdit>(dialog, "sdkEdit").text().toStdString(),
                EndsWith(std::string("bin") + core::PathSeparator + "sdk"));
    EXPECT_EQ(Value("Tarnwick/SDKDirectory"), "(not there)") << "stored on OK only";
    static_cast<QDialog&>(dialog).accept();
  });
  Click(*m_dialog, "configureButton");
  EXPECT_THAT(Value("Tarnwick/SDKDirectory"), EndsWith(std::string("bin") + core::PathSeparator + "sdk"));
}

TEST_F(MainDialog, ConfiguringNamesTheToolsInUseAndKeepsTheSdks) {
  Open();
  const tests::ScratchFolder sdk;
  tests::WriteText(sdk.Path("vtex.exe"), "");
  tests::WhenModalOpens([&](QWidget& dialog) {
    auto& directory = ControlOf<QLineEdit>(dialog, "sdkEdit");
    const auto shown = [&] { return ControlOf<QLabel>(dialog, "toolsLabel").text().toStdString(); };
    EXPECT_THAT(shown(), HasSubstr("vtex: our own"));
    directory.setText(QString::fromStdString(sdk.Path()));
    EXPECT_THAT(shown(), HasSubstr("vtex: the SDK's, vtf2tga: our own"));
    Click(dialog, "ownToolsButton");
    EXPECT_EQ(directory.text().toStdString(), sdk.Path()) << "our own tools hide none of the SDK's";
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Click(*m_dialog, "configureButton");
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes[0].Text, HasSubstr("which come first"));
}

TEST_F(MainDialog, ConfiguringStoresABrowsedDirectoryAtOnceAndTheRestOnOk) {
  Open();
  m_desktop.Choices = {"/games/hl2"};
  tests::WhenModalOpens([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Configure Game Directory");
    ControlOf<QLineEdit>(dialog, "sdkEdit").setText("/typed");
    ControlOf<QLineEdit>(dialog, "wineEdit").setText("/typed");
    Click(dialog, "browseGameButton");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Click(*m_dialog, "configureButton");
  EXPECT_EQ(Value("Tarnwick/GameDirectory"), "/games/hl2");
  EXPECT_EQ(Value("Tarnwick/SDKDirectory"), "(not there)");
  EXPECT_EQ(Value("Tarnwick/Wine Program"), "(not there)");
  EXPECT_EQ(GameDirectory(), "/games/hl2");

  m_desktop.Choices = {"/opt/wine/bin/wine"};
  tests::WhenModalOpens([](QWidget& dialog) {
    auto& uncommon = ControlOf<QAbstractButton>(dialog, "uncommonCheck");
    EXPECT_TRUE(uncommon.isChecked()) << "all formats are read unless a person wants less to trust";
    uncommon.click();
    ControlOf<QLineEdit>(dialog, "gameEdit").setText("/games/räv/");
    ControlOf<QLineEdit>(dialog, "sdkEdit").clear();
    Click(dialog, "browseWineButton");
    ControlOf<QLineEdit>(dialog, "sdkEdit").setFocus();
    QTest::keyClick(&ControlOf<QLineEdit>(dialog, "sdkEdit"), Qt::Key_Return);
  });
  Click(*m_dialog, "configureButton");
  EXPECT_EQ(m_settings.GetInt("Tarnwick", "Uncommon Image Formats", 1), 0);
  EXPECT_EQ(GameDirectory(), "/games/räv/");
  EXPECT_EQ(Value("Tarnwick/GameDirectory"), "/games/räv/");
  EXPECT_EQ(Value("Tarnwick/SDKDirectory"), "");
  EXPECT_EQ(Value("Tarnwick/Wine Program"), "/opt/wine/bin/wine");
}

/// Whether the decompile page's status window was opened, which a press of "Extract" does; closed again.
bool Extracted(QWidget& window) {
  auto* status = window.findChild<pages::CDecompilerStatus*>();
  const bool opened = tests::WaitUntil([&] { return status->isVisible(); });
  auto* page = window.findChild<pages::CDecompilerDialog*>();
  EXPECT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  status->hide();
  // The platform takes the focus from the program once its window is gone.
  EXPECT_TRUE(tests::WaitUntil([&] {
    window.activateWindow();
    QTest::qWait(20);
    return window.isActiveWindow() && QApplication::focusWidget() != nullptr;
  }));
  return opened;
}

TEST_F(MainDialog, EnterPressesExtractWhateverWasPressedBefore) {
  m_settings.Values["Tarnwick/TabSelect"] = "2";
  Open();
  m_dialog->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
  auto& model = ControlOf<QLineEdit>(*m_dialog, "modelEdit");
  auto& extract = ControlOf<QPushButton>(*m_dialog->findChild<pages::CDecompilerDialog*>(), "extractButton");
  for (int round = 0; round < 2; ++round) {
    QTest::mouseClick(&model, Qt::LeftButton);
    EXPECT_TRUE(extract.isDefault());
    EXPECT_FALSE(ControlOf<QPushButton>(*m_dialog, "aboutButton").isDefault()) << "one frame at a time";
    QTest::keyClick(&model, Qt::Key_Return);
    EXPECT_TRUE(Extracted(*m_dialog));
    QTest::mouseClick(&extract, Qt::LeftButton);
    EXPECT_TRUE(Extracted(*m_dialog));
    extract.setFocus();
    QTest::keyClick(&extract, Qt::Key_Tab);  // away from the button, as its default was lost
    Tabs().setCurrentIndex(3);
    Tabs().setCurrentIndex(2);
  }
  auto& output = ControlOf<QLineEdit>(*m_dialog->findChild<pages::CDecompilerDialog*>(), "outputEdit");
  output.setFocus();
  QTest::keyClick(&output, Qt::Key_Enter);
  EXPECT_TRUE(Extracted(*m_dialog));
}

TEST_F(MainDialog, KeysLeadFromTabToTabAndToTheFieldOfAGroup) {
  Open();
  m_dialog->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
  QTest::keyClick(m_dialog->focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
  QTest::keyClick(m_dialog->focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(Tabs().currentIndex(), 2);
  auto* page = m_dialog->findChild<pages::CDecompilerDialog*>();
  EXPECT_EQ(m_dialog->focusWidget()->objectName(), "modelEdit") << "the first field of the page";
  auto& browse = ControlOf<QPushButton>(*page, "browseModelButton");
  browse.setFocus();
  QTest::keyClick(&browse, Qt::Key_M, Qt::AltModifier);
  EXPECT_EQ(m_dialog->focusWidget(), &ControlOf<QLineEdit>(*page, "modelEdit")) << "not the button beside it";
  auto& model = ControlOf<QLineEdit>(*page, "modelEdit");
  model.setText("/a/crate.mdl");
  QTest::keyClick(&model, Qt::Key_M, Qt::AltModifier);
  EXPECT_EQ(model.selectedText(), model.text())
      << "also where the field has the focus: what is typed replaces its text";
  for (int i = 0; i < 3; ++i) QTest::keyClick(m_dialog->focusWidget(), Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(Tabs().currentIndex(), 3) << "round";
  // A click on a tab leads into its page from wherever the focus was.
  ControlOf<QPushButton>(*m_dialog, "exitButton").setFocus();
  QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, Qt::NoModifier, Tabs().tabBar()->tabRect(2).center());
  EXPECT_EQ(m_dialog->focusWidget(), &model);
  auto* area = m_dialog->findChild<QScrollArea*>();
  QTest::mouseClick(area->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
  EXPECT_EQ(m_dialog->focusWidget(), &model) << "a click beside the controls leaves the focus";
}

TEST_F(MainDialog, HelpShowsItsOwnDocumentAtThePartAboutTheTab) {
  Open();
  m_dialog->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
  Tabs().setCurrentIndex(3);
  QTest::keyClick(m_dialog->focusWidget(), Qt::Key_F1);
  auto* help = m_dialog->findChild<CHelpWindow*>();
  ASSERT_TRUE(help != nullptr && help->isVisible());
  auto& view = ControlOf<CDocumentView>(*help, "documentView");
  EXPECT_EQ(view.textCursor().block().text(), "Exporting textures");
  EXPECT_GT(view.verticalScrollBar()->value(), 0);
  EXPECT_FALSE(view.loadResource(QTextDocument::ImageResource, QUrl("pictures/main-model-compile-light.png")).isNull());
  EXPECT_TRUE(m_desktop.Opened.empty()) << "no browser is needed";
  auto& documents = ControlOf<QComboBox>(*help, "documentCombo");
  for (int i = 1; i < documents.count(); ++i) {
    emit documents.activated(i);
    EXPECT_GT(view.toPlainText().size(), 1000) << i;
    EXPECT_EQ(documents.currentIndex(), i);
  }
  Click(*help, "backButton");
  EXPECT_EQ(documents.currentIndex(), documents.count() - 2);
  Click(*help, "webButton");
  EXPECT_THAT(m_desktop.Opened, ElementsAre(EndsWith("/mossgate.php?program=Tarnwick_help")));
  m_desktop.OpenSucceeds = false;
  Click(*help, "webButton");
  EXPECT_THAT(m_desktop.Boxes, ElementsAre(ShownBox{BoxIcon::None, "Error starting Explorer", ""}));
  Click(*help, "closeButton");
  EXPECT_FALSE(help->isVisible());
  EXPECT_TRUE(m_dialog->isVisible());
}

TEST_F(MainDialog, EveryPartThatHelpOpensAtIsInTheDocument) {
  Open();
  for (int tab = 0; tab < Tabs().count(); ++tab) {
    Tabs().setCurrentIndex(tab);
    Click(*m_dialog, "helpButton");
    auto& view = ControlOf<CDocumentView>(*m_dialog->findChild<CHelpWindow*>(), "documentView");
    EXPECT_GT(view.textCursor().block().blockFormat().headingLevel(), 0) << Tabs().tabText(tab).toStdString();
    EXPECT_GT(view.textCursor().position(), 0);
  }
}

TEST_F(MainDialog, CheckingForUpdatesSaysWhatItCanBeforeItOpensAPage) {
  Open();
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Click(*m_dialog, "updatesButton");
  EXPECT_THAT(m_desktop.LastBox.Text,
              testing::AllOf(testing::StartsWith("This is Tarnwick "), testing::HasSubstr("by itself")));
  EXPECT_THAT(m_desktop.LastBox.Details, testing::HasSubstr("No maker's host was set"));
  EXPECT_TRUE(m_desktop.Opened.empty());
  Click(*m_dialog, "updatesButton");
  EXPECT_THAT(m_desktop.Opened,
              ElementsAre(EndsWith("/mossgate.php?program=checkversion&name=tarnwick&version=0.3.1a/")));
}

/// The area of each page, with each of the pages for models in turn.
void ForEachPageArea(QWidget& dialog, QTabWidget& tabs, const std::function<void(const QScrollArea& area)>& look) {
  auto& innerTabs = ControlOf<QTabWidget>(*dialog.findChild<pages::CMDLSelDialog*>(), "tabs");
  for (int tab = 0; tab < tabs.count(); ++tab) {
    tabs.setCurrentIndex(tab);
    for (int inner = 0; inner < innerTabs.count(); ++inner) {
      SCOPED_TRACE(std::to_string(tab) + ", " + std::to_string(inner));
      innerTabs.setCurrentIndex(inner);
      QApplication::processEvents();
      const auto* area = qobject_cast<QScrollArea*>(tabs.currentWidget());
      ASSERT_NE(area, nullptr);
      look(*area);
    }
  }
}

TEST_F(MainDialog, NoPageScrollsSidewaysOnAScreenOf768Lines) {
  m_settings.Values["Tarnwick/GameDirectory"] = "/home/ada/a game directory with a name that is longer than most/mod";
  m_settings.Values["Tarnwick/Reference"] = "/home/ada/a folder with a name that is longer than most of them/crate.smd";
  Open();
  m_dialog->resize(m_dialog->width(), 500);  // as low as a small screen has it, so that pages scroll down
  ForEachPageArea(*m_dialog, Tabs(),
                  [](const QScrollArea& area) { EXPECT_EQ(area.horizontalScrollBar()->maximum(), 0); });
}

TEST_F(MainDialog, AScreenOf768LinesHasEveryPageWhole) {
  platform::ApplyLook("Fusion");
  Open();
  m_dialog->resize(m_dialog->width(), 736);  // the frame takes the rest
  ForEachPageArea(*m_dialog, Tabs(),
                  [](const QScrollArea& area) { EXPECT_EQ(area.verticalScrollBar()->maximum(), 0); });
}

TEST_F(MainDialog, ShowsItsSmallDialogs) {
  Open();
  tests::WhenModalOpens([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "About Tarnwick");
    auto& link = ControlOf<controls::CXHTMLStatic>(dialog, "pageLink");
    QApplication::processEvents();
    ASSERT_FALSE(link.Layout().LinkRects.empty());
    const controls::Rect box = link.Layout().LinkRects.front();
    QTest::mouseClick(&link, Qt::LeftButton, {}, QPoint(box.Left + 3, (box.Top + box.Bottom) / 2));
    EXPECT_THAT(m_desktop.Opened, ElementsAre(EndsWith("/mossgate.htm")));
    EXPECT_TRUE(dialog.isVisible()) << "a link leaves the dialog open";
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Click(*m_dialog, "aboutButton");
  tests::WhenModalOpens([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Game Directory Help");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Click(*m_dialog, "gameDirectoryHelpButton");
  QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
  EXPECT_TRUE(m_dialog->isVisible()) << "Esc does not end the program";
}

TEST_F(MainDialog, AsksBeforeItClosesOnARunningJob) {
  Open();
  auto* page = m_dialog->findChild<pages::CDecompilerDialog*>();
  auto* jobs = page->findChild<platform::JobRunner*>();
  jobs->Start(
      [](core::Report&, const std::stop_token& stop) {
        while (!stop.stop_requested()) std::this_thread::yield();
      },
      {});
  Tabs().setCurrentIndex(2);
  tests::Drop(*m_dialog, {"/m/late.mdl"});
  EXPECT_EQ(ControlOf<QLineEdit>(*m_dialog, "modelEdit").text(), "") << "the page is busy";
  m_desktop.BoxAnswers = {BoxAnswer::No};
  m_dialog->close();
  EXPECT_TRUE(m_dialog->isVisible());
  EXPECT_TRUE(jobs->IsRunning());
  m_dialog->close();
  EXPECT_FALSE(m_dialog->isVisible());
  ASSERT_EQ(m_desktop.Boxes.size(), 2u);
  EXPECT_EQ(m_desktop.Boxes.front().Buttons, BoxButtons::YesNo);
  EXPECT_TRUE(m_desktop.LastBox.RefusalIsDefault) << "Enter pressed by habit stops no job";
  m_dialog.reset();  // ends, since the job is told to stop
}

}  // namespace

}  // namespace tarnwick::app
