#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include "pages/animation_dialog.h"
#include "pages/entry_dialogs.h"
#include "pages/help_dialogs.h"
#include "pages/studiomdl_options_dialog.h"
#include "tools/studiomdl_command.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {
namespace {

using platform::BoxIcon;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

/// Opens `dialog` without waiting for its end.
template <typename Dialog>
Dialog& Shown(Dialog& dialog) {
  dialog.Create();
  dialog.show();
  return dialog;
}

QString Text(QWidget& window, const char* name) {
  return ControlOf<QLineEdit>(window, name).text();
}

void Type(QWidget& window, const char* name, const char* text) {
  ControlOf<QLineEdit>(window, name).setText(text);
}

TEST(SequenceEditor, TakesItsFieldsWithOkAndStaysOpenWithoutANameOrAnSmd) {
  tests::ScriptedDesktop desktop;
  project::SequenceEntry entry;
  entry.activityStrength = 7;
  CAnimationDialog dialog(desktop, nullptr, entry);
  Shown(dialog);
  EXPECT_EQ(ControlOf<QLabel>(dialog, "hintLabel").text(),
            "The only three items required for each sequence are the name, SMD and FPS.\n Use the other options only "
            "if you know what you are doing. ");
  EXPECT_EQ(Text(dialog, "fpsEdit"), "30.000");
  EXPECT_EQ(Text(dialog, "strengthEdit"), "");
  dialog.accept();
  Type(dialog, "nameEdit", "walk");
  dialog.accept();
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_THAT(desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation, "All sequences must have a name", "Warning"},
                                         ShownBox{BoxIcon::Exclamation, "All sequences must have a SMD", "Warning"}));
  desktop.Choices = {"/m/walk.smd"};
  Click(dialog, "browseButton");
  ControlOf<QCheckBox>(dialog, "loopCheck").click();
  ControlOf<QComboBox>(dialog, "directionCombo").setCurrentIndex(1);
  Type(dialog, "amountEdit", "90");
  Type(dialog, "fpsEdit", "fast");
  Type(dialog, "strengthEdit", "3");
  dialog.accept();
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(entry.smdFile, "/m/walk.smd");
  EXPECT_EQ(entry.fps, 0.0);
  EXPECT_EQ(entry.activityStrength, 7) << "there is no activity";
  EXPECT_TRUE(entry.loop == 1 && entry.rotateDirection == 1 && entry.rotateAmount == 90.0);
}

/// Presses "Add" on a page of a list, and answers the editor with `text` in the field `name`.
void Add(QWidget& page, const char* name, const char* text) {
  tests::WhenModalOpens([=](QWidget& editor) {
    Type(editor, name, text);
    static_cast<QDialog&>(editor).accept();
  });
  Click(page, "addButton");
}

TEST(SequenceEditor, TakesTwentyCommandsAndTwentyEvents) {
  tests::ScriptedDesktop desktop;
  project::SequenceEntry entry;
  entry.name = "walk";
  entry.smdFile = "walk.smd";
  CAnimationDialog dialog(desktop, nullptr, entry);
  Shown(dialog);
  auto& tabs = ControlOf<QTabWidget>(dialog, "tabs");
  const std::pair<const char*, const char*> lists[] = {{"textEdit", "commands"}, {"nameEdit", "events"}};
  for (int tab = 0; tab < 2; ++tab) {
    tabs.setCurrentIndex(tab);
    QWidget& page = *tabs.currentWidget();
    for (int i = 0; i < 20; ++i) Add(page, lists[tab].first, "5004");
    EXPECT_TRUE(desktop.Boxes.empty());
    Click(page, "addButton");  // would wait for ever if an editor opened
    EXPECT_THAT(desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation,
                                                    std::string("A sequence can hold 20 ") + lists[tab].second +
                                                        ". Remove one before you add another",
                                                    "Warning"}));
    desktop.Boxes.clear();
    auto& list = ControlOf<QTreeWidget>(page, "list");
    list.clearSelection();
    list.topLevelItem(19)->setSelected(true);
    Click(page, "removeButton");
    Add(page, lists[tab].first, "last");
    EXPECT_EQ(list.topLevelItem(19)->text(0), "last");
  }
  EXPECT_TRUE(entry.Commands().empty()) << "a working copy";
  dialog.accept();
  ASSERT_EQ(entry.Commands().size(), 20u);
  ASSERT_EQ(entry.Events().size(), 20u);
  EXPECT_EQ(entry.Commands()[19], "last");
  EXPECT_EQ(entry.Events()[19].name, "last");
}

TEST(GibEditor, BrowsesForAModelOfTheGame) {
  tests::ScriptedDesktop desktop;
  CGibDialog dialog(desktop, nullptr, "/game");
  Shown(dialog);
  desktop.Choices = {"", "/game/models/props/gib.mdl", "", "/else/gib.mdl"};
  Click(dialog, "browseButton");
  EXPECT_THAT(desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation, "No MDL File Selected!", ""}));
  EXPECT_EQ(desktop.FileRequests.front().StartDirectory, "/game/models");
  Click(dialog, "browseButton");
  Click(dialog, "browseButton");  // cancelled: the model stays
  EXPECT_EQ(Text(dialog, "modelEdit"), "props/gib.mdl");
  Click(dialog, "browseButton");
  EXPECT_EQ(Text(dialog, "modelEdit"), "/else/gib.mdl");
  EXPECT_EQ(desktop.Boxes.size(), 1u);
  dialog.accept();
  EXPECT_EQ(dialog.Entry.model, "/else/gib.mdl");
}

TEST(LodEditor, TakesADropAndRefusesHalfAnEntry) {
  tests::ScriptedDesktop desktop;
  CLodDialog dialog(desktop, nullptr);
  Shown(dialog).accept();
  tests::Drop(ControlOf<QLineEdit>(dialog, "smdEdit"), {"/m/lod1.smd", "/m/lod2.smd"});
  dialog.accept();
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_THAT(desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Stop, "Must specify LOD file name", "Error"},
                                         ShownBox{BoxIcon::Stop, "Must specify LOD Distance", "Error"}));
  Type(dialog, "distanceEdit", "far");
  dialog.accept();
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.Entry.smdFile, tests::Dropped("/m/lod1.smd"));
  EXPECT_EQ(dialog.Entry.distance, "far");
}

TEST(StudiomdlOptionsDialog, CarriesEveryOptionBothWays) {
  tests::ScriptedDesktop desktop;
  constexpr int32_t Other = 0x4000'0000;
  for (const tools::StudiomdlOption& option : tools::StudiomdlOptions) {
    const QString caption = QString::fromUtf8(option.Caption.data(), static_cast<qsizetype>(option.Caption.size()));
    const auto bit = static_cast<int32_t>(option.Bit);
    int32_t bits = Other;
    for (const bool set : {true, false}) {
      CStudiomdlOptionsDialog dialog(desktop, nullptr, bits);
      Shown(dialog);
      for (QCheckBox* box : dialog.findChildren<QCheckBox*>()) {
        EXPECT_EQ(box->isChecked(), box->text() == caption && !set) << caption.toStdString();
        if (box->text() == caption) box->setChecked(set);
      }
      dialog.accept();
      EXPECT_EQ(bits, set ? Other | bit : Other) << caption.toStdString();
    }
  }
  int32_t bits = 0x0c0;
  CStudiomdlOptionsDialog dialog(desktop, nullptr, bits);
  QStringList disabled;
  for (QCheckBox* box : Shown(dialog).findChildren<QCheckBox*>()) {
    EXPECT_FALSE(box->toolTip().isEmpty());
    if (!box->isEnabled() && box->isChecked()) disabled << box->text();
    if (box->isEnabled()) box->click();
  }
  EXPECT_EQ(disabled, QStringList({"Reverse Normals", "Tag Normals"}));
  dialog.reject();
  EXPECT_EQ(bits, 0x0c0) << "left without OK";
}

template <typename Dialog>
void ExpectHelp(const char* caption, const char* beginning, const char* end) {
  tests::ScriptedDesktop desktop;
  Dialog dialog(desktop, nullptr);
  Shown(dialog);
  EXPECT_EQ(dialog.windowTitle(), caption);
  EXPECT_THAT(ControlOf<QLabel>(dialog, "textLabel").text().toStdString(),
              testing::AllOf(StartsWith(beginning), HasSubstr(end)));
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible()) << caption;
}

TEST(HelpDialogs, ShowTheirTextAndCloseWithEnter) {
  ExpectHelp<CMdlMatDialog>("Material Path Help", "This tells the model where to look for materials.",
                            "the fabulous checkerboard pattern instead");
  ExpectHelp<CSurfacePropHelpDialog>("Surface Prop Help", "Set this to the material type of the model\nStandard",
                                     "surfaceprops.txt");
  ExpectHelp<CPropPhysicsHelpDialog>("Prop_Physics types help", "The prop_physics type defines",
                                     "\"glass.medium\". etc.");
}

}  // namespace
}  // namespace tarnwick::pages
