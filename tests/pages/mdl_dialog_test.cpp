#include "pages/mdl_dialog.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>

#include "model_page.h"
#include "pages/mdl_sel_dialog.h"
#include "pages/qc_compile_dialog.h"
#include "pages/ref_smd_info.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
using testing::StartsWith;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

const ShownBox NothingSelected{BoxIcon::Exclamation, "No items were selected!", "Warning"};

TEST_F(ModelPages, FollowTheSequenceRule) {
  const auto page = Open<CMDLDialog>();
  auto& type = ControlOf<QComboBox>(*page, "modelTypeCombo");
  auto& check = ControlOf<QCheckBox>(*page, "referenceSequenceCheck");
  auto& list = ControlOf<QTreeWidget>(*page, "list");
  EXPECT_TRUE(check.isChecked() && !check.isEnabled() && !list.isEnabled());
  type.setCurrentIndex(project::PropPhysics);
  emit type.activated(project::PropPhysics);
  EXPECT_TRUE(check.isChecked() && check.isEnabled() && !list.isEnabled());
  check.click();
  EXPECT_TRUE(list.isEnabled() && ControlOf<QPushButton>(*page, "addButton").isEnabled());
}

TEST_F(ModelPages, TakeDropsAndKeepRowsOfOneNameApart) {
  m_settings.Values["Tarnwick/Prop Type"] = "2";
  const auto page = Open<CMDLDialog>();
  tests::Drop(ControlOf<QLineEdit>(*page, "referenceEdit"), {"/m/a.smd", "/m/b.smd"});
  EXPECT_EQ(page->Project().referenceSmd, tests::Dropped("/m/a.smd"));
  auto& list = ControlOf<QTreeWidget>(*page, "list");
  tests::Drop(list, {"/m/walk.smd"});  // the editor opens once the drop is over
  NameSequence("walk");
  ASSERT_TRUE(tests::WaitUntil([&] { return list.topLevelItemCount() == 1; }));
  EXPECT_EQ(list.topLevelItem(0)->text(1).toStdString(), tests::Dropped("/m/walk.smd"));
  NameSequence("walk");
  Click(*page, "addButton");
  tests::WhenModalOpens([](QWidget& dialog) { static_cast<QDialog&>(dialog).reject(); });
  Click(*page, "addButton");
  ASSERT_EQ(page->Project().Sequences.Count(), 2);
  list.clearSelection();
  Click(*page, "removeButton");
  Click(*page, "editButton");
  EXPECT_THAT(m_desktop.Boxes, testing::ElementsAre(NothingSelected, NothingSelected));
  list.topLevelItem(1)->setSelected(true);
  NameSequence("run");
  Click(*page, "editButton");
  EXPECT_EQ(list.topLevelItem(0)->text(0), "walk");
  EXPECT_EQ(list.topLevelItem(1)->text(0), "run");
  list.clearSelection();
  list.topLevelItem(0)->setSelected(true);
  Click(*page, "removeButton");
  ASSERT_EQ(page->Project().Sequences.Count(), 1);
  EXPECT_EQ(page->Project().Sequences.At(0).name, "run");
}

TEST_F(ModelPages, SaveAndLoadAProject) {
  const auto page = Open<CMDLDialog>();
  ControlOf<QLineEdit>(*page, "modelFileEdit").setText("props/crate.mdl");
  ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
  EXPECT_FALSE(ControlOf<QLineEdit>(*page, "collisionEdit").isEnabled());
  m_desktop.Choices = {m_folder.Path("crate.sc"), m_folder.Path("crate.sc")};
  Click(*page, "saveButton");
  ControlOf<QLineEdit>(*page, "modelFileEdit").clear();
  ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
  m_desktop.BoxAnswers = {platform::BoxAnswer::Cancel, platform::BoxAnswer::Ok};
  m_desktop.Choices.push_back(m_folder.Path("crate.sc"));
  Click(*page, "loadButton");
  EXPECT_EQ(page->Project().modelFile, "") << "the work stays";
  Click(*page, "loadButton");
  EXPECT_EQ(page->Project().modelFile, "props/crate.mdl");
  EXPECT_TRUE(page->Project().useReferenceAsCollision);
  EXPECT_FALSE(ControlOf<QLineEdit>(*page, "collisionEdit").isEnabled());
  const ShownBox question{BoxIcon::Question,
                          "The project has changes that are in no file. Load the other one all the same?",
                          "Name of Config File", platform::BoxButtons::OkCancel};
  EXPECT_THAT(m_desktop.Boxes, testing::ElementsAre(question, question));
  m_desktop.Choices = {m_folder.Path("crate.sc")};
  Click(*page, "loadButton");
  EXPECT_EQ(m_desktop.Boxes.size(), 2u) << "nothing was changed meanwhile";
}

TEST_F(ModelPages, KeepAModelTypeThatNothingKnows) {
  tests::WriteText(m_folder.Path("odd.sc"),
                   "\"Model Compiler/Model File\" \"a.mdl\"\n\"Model Compiler/Model Options/Prop Type\" \"7\"\n");
  const auto page = Open<CMDLDialog>();
  m_desktop.Choices = {m_folder.Path("odd.sc"), m_folder.Path("again.sc")};
  Click(*page, "loadButton");
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes[0].Text, testing::HasSubstr("Model Options/Prop Type is one of prop_static (0)"));
  Click(*page, "saveButton");
  EXPECT_THAT(tests::ReadText(m_folder.Path("again.sc")), testing::HasSubstr("Prop Type\" \"7\""));
}

TEST_F(ModelPages, BrowseForFiles) {
  const auto page = OpenCrate();
  m_desktop.Choices = {"/m/new.smd"};
  Click(*page, "browseReferenceButton");
  EXPECT_EQ(page->Project().referenceSmd, "/m/new.smd");
  Click(*page, "browseCollisionButton");
  ASSERT_EQ(m_desktop.FileRequests.size(), 1u) << "the reference SMD is the collision model";
  ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
  Click(*page, "browseCollisionButton");
  EXPECT_EQ(m_desktop.FileRequests[0].StartName, m_folder.Path("crate.smd"));
  EXPECT_EQ(m_desktop.FileRequests[1].Title, "Name of Collision SMD or QC File");
  EXPECT_EQ(page->Project().collisionFile, "") << "cancelled";

  const auto script = Open<CQCCompileDialog>();
  m_desktop.Choices = {"/m/new.qc"};
  Click(*script, "browseButton");
  Click(*script, "editButton");
  EXPECT_THAT(m_desktop.Opened, testing::ElementsAre("/m/new.qc"));
  m_desktop.EditEndsAs = platform::EditStart::NoFile;
  Click(*script, "editButton");
  EXPECT_EQ(m_desktop.Boxes.back().Text, "There is no file /m/new.qc");
  m_desktop.EditEndsAs = platform::EditStart::NoEditor;
  Click(*script, "editButton");
  EXPECT_THAT(m_desktop.Boxes.back().Text, StartsWith("No editor Association for the file type. \r\n"));
}

TEST_F(ModelPages, OpenTheirDialogs) {
  const auto selector = Open<CMDLSelDialog>();
  const std::pair<const char*, const char*> dialogs[] = {{"optionsButton", "Model Options"},
                                                         {"inspectButton", "Reference SMD Info"},
                                                         {"collisionHelpButton", "Collision Model Help"},
                                                         {"materialHelpButton", "Material Path Help"}};
  auto& form = *selector->findChild<CMDLDialog*>();
  ControlOf<QLineEdit>(form, "referenceEdit").setText("/no/such.smd");
  for (const auto& [button, title] : dialogs) {
    tests::WhenModalOpens([expected = title](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), expected);
      const auto* info = qobject_cast<CRefSMDInfo*>(&dialog);
      EXPECT_TRUE(info == nullptr || info->InfoText() == "Unable to open /no/such.smd\r\n");
      static_cast<QDialog&>(dialog).reject();
    });
    Click(form, button);
  }
  tests::WhenModalOpens([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "StudioMdl Options");
    dialog.findChild<QCheckBox*>()->click();
    static_cast<QDialog&>(dialog).accept();
  });
  m_options.studioMdlOptions = 0;
  selector->findChild<QPushButton*>("optionsButton", Qt::FindDirectChildrenOnly)->click();
  EXPECT_EQ(m_options.studioMdlOptions, 1);
}

TEST_F(ModelPages, RememberTheInnerTabAndTheScript) {
  auto page = Open<CMDLSelDialog>();
  ControlOf<QTabWidget>(*page, "tabs").setCurrentIndex(1);
  tests::Drop(ControlOf<QLineEdit>(*page, "qcFileEdit"), {"/m/a.qc"});
  tests::Drop(ControlOf<QLineEdit>(*page, "referenceEdit"), {"/m/a.smd"});
  page->SaveSettings();
  page = Open<CMDLSelDialog>();
  EXPECT_EQ(ControlOf<QTabWidget>(*page, "tabs").currentIndex(), 1);
  EXPECT_EQ(ControlOf<QLineEdit>(*page, "qcFileEdit").text().toStdString(), tests::Dropped("/m/a.qc"));
  EXPECT_EQ(ControlOf<QLineEdit>(*page, "referenceEdit").text(), "") << "that page was not showing";
}

}  // namespace

}  // namespace tarnwick::pages
