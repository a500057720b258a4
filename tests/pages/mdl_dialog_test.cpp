#include "pages/mdl_dialog.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <algorithm>
#include <filesystem>

#include "pages/mdl_sel_dialog.h"
#include "pages/qc_compile_dialog.h"
#include "pages/ref_smd_info.h"
#include "pages/tool_output.h"
#include "support/scratch_folder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

const ShownBox NothingSelected{BoxIcon::Exclamation, "No items were selected!", "Warning"};

/// A page in a window of its own, and a folder with a stand-in for studiomdl.
class ModelPages : public testing::Test {
 protected:
  template <typename Page>
  std::unique_ptr<Page> Open() {
    auto page = std::make_unique<Page>(PageContext{m_settings, m_desktop, m_options}, nullptr);
    page->Create();
    page->AcceptFiles();
    page->show();
    return page;
  }

  /// Makes a tool of the SDK a shell script.
  void Tool(const char* name, const std::string& script) {
    const std::string path = m_folder.Path(name);
    tests::WriteText(path, "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path();
    m_settings.Values["Tarnwick/GameDirectory"] = "/no/game";
  }

  /// A form that is filled in as far as a compile needs it.
  std::unique_ptr<CMDLDialog> OpenCrate() {
    auto page = Open<CMDLDialog>();
    ControlOf<QLineEdit>(*page, "modelFileEdit").setText("props/crate.mdl");
    ControlOf<QLineEdit>(*page, "referenceEdit").setText(QString::fromStdString(m_folder.Path("crate.smd")));
    ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
    page->SetMaterialDirectory("props");
    return page;
  }

  /// Answers the sequence editor with a name and OK.
  static void NameSequence(const char* name) {
    tests::WhenModalOpens([name](QWidget& dialog) {
      ControlOf<QLineEdit>(dialog, "nameEdit").setText(name);
      if (ControlOf<QLineEdit>(dialog, "smdEdit").text().isEmpty()) {
        ControlOf<QLineEdit>(dialog, "smdEdit").setText("a.smd");
      }
      static_cast<QDialog&>(dialog).accept();
    });
  }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
};

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
  EXPECT_EQ(page->Project().referenceSmd, "/m/a.smd");
  auto& list = ControlOf<QTreeWidget>(*page, "list");
  tests::Drop(list, {"/m/walk.smd"});  // the editor opens once the drop is over
  NameSequence("walk");
  ASSERT_TRUE(tests::WaitUntil([&] { return list.topLevelItemCount() == 1; }));
  EXPECT_EQ(list.topLevelItem(0)->text(1), "/m/walk.smd");
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
  Click(*page, "loadButton");
  EXPECT_EQ(page->Project().modelFile, "props/crate.mdl");
  EXPECT_TRUE(page->Project().useReferenceAsCollision);
  EXPECT_FALSE(ControlOf<QLineEdit>(*page, "collisionEdit").isEnabled());
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(ModelPages, CompileTwiceAndStop) {
  Tool("studiomdl.exe", "echo compiled\nif [ -e \"$0.slow\" ]; then sleep 30; fi\n");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  const std::string command =
      m_folder.Path() + "/studiomdl.exe -game \"/no/game\" \"" + m_folder.Path("crate.qc") + "\"";
  for (int run = 0; run < 2; ++run) {
    Click(*page, "compileButton");
    EXPECT_TRUE(status.isVisible() && !page->isEnabled());
    ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
    EXPECT_THAT(status.Text(), StartsWith(command + "\r\ncompiled\n"));
    EXPECT_THAT(status.Text(), HasSubstr("\r\nWarning: ")) << "there is no such game directory";
  }
  tests::WriteText(m_folder.Path("studiomdl.exe.slow"), "");
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return status.Text().find("compiled") != std::string::npos; }))
      << "the text comes while the tool runs";
  EXPECT_FALSE(page->isEnabled());
  Click(status, "okButton");
  EXPECT_FALSE(status.isVisible());
  Click(*page, "compileButton");  // it is disabled, but somebody wants something of the page
  EXPECT_TRUE(status.isVisible());
  Click(status, "stopButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  EXPECT_THAT(status.Text(), HasSubstr("[Stopped."));

  m_settings.Values["Tarnwick/SDKDirectory"] = "/no/sdk";
  const std::string before = status.Text();
  Click(*page, "compileButton");
  EXPECT_EQ(m_desktop.Boxes.back().Caption, "STUDIOMDL ERROR");
  EXPECT_EQ(status.Text(), before) << "no run began";
  status.reject();
  EXPECT_FALSE(status.isVisible());
}

TEST_F(ModelPages, ShowARunInColoursCopyItsCommandAndKeepItWhole) {
  Tool("studiomdl.exe",
       "echo 'WARNING: thin'\necho 'ERROR: gone'\necho 'Working on \"error.smd\"'\nyes 0123456789 | head -n 7000\n");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  EXPECT_FALSE(ControlOf<QPushButton>(status, "wholeLogButton").isEnabled());
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  auto& output = ControlOf<CToolOutput>(status, "outputEdit");
  const QColor error = tests::ColorOfLine(output, "ERROR: gone");
  const QColor warning = tests::ColorOfLine(output, "WARNING: thin");
  EXPECT_TRUE(error.isValid() && warning.isValid() && error != warning);
  EXPECT_FALSE(tests::ColorOfLine(output, "Working on").isValid());
  EXPECT_FALSE(tests::ColorOfLine(output, "/").isValid()) << "the command line";
  Click(status, "copyCommandButton");
  const std::string command = QGuiApplication::clipboard()->text().toStdString();
  EXPECT_EQ(command, m_folder.Path() + "/studiomdl.exe -game \"/no/game\" \"" + m_folder.Path("crate.qc") + "\"");

  EXPECT_LT(status.Text().size(), 70'000u) << "77,000 bytes were printed";
  m_desktop.Choices = {m_folder.Path("log.txt"), m_folder.Path("no such folder/log.txt")};
  tests::WhenModalOpens([&](QWidget& dialog) {
    const std::string shown = ControlOf<CToolOutput>(dialog, "outputEdit").toPlainText().toStdString();
    EXPECT_THAT(shown, StartsWith(command + "\nWARNING: thin\n"));
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '0'), 7000 + std::count(command.begin(), command.end(), '0'));
    Click(dialog, "saveButton");
    EXPECT_TRUE(m_desktop.Boxes.empty());
    Click(dialog, "saveButton");
    Click(dialog, "okButton");
  });
  Click(status, "wholeLogButton");
  EXPECT_THAT(tests::ReadText(m_folder.Path("log.txt")), AllOf(StartsWith(command), EndsWith("\n0123456789\n")));
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes.front().Text, StartsWith("Unable to write " + m_folder.Path("no such folder/log.txt: ")));
}

TEST_F(ModelPages, ViewTheCompiledModel) {
  Tool("hlmv.exe", "for word; do echo \"$word\"; done > \"$0.new\"\nmv \"$0.new\" \"$0.words\"\n");
  const auto page = OpenCrate();
  Click(*page, "viewButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return std::filesystem::exists(m_folder.Path("hlmv.exe.words")); }));
  EXPECT_EQ(tests::ReadText(m_folder.Path("hlmv.exe.words")), "-game\n/no/game\n/no/game/models/props/crate.mdl\n");
  EXPECT_TRUE(m_desktop.Boxes.empty());
  m_settings.Values["Tarnwick/SDKDirectory"] = "/no/sdk";
  Click(*page, "viewButton");
  EXPECT_THAT(m_desktop.Boxes, testing::ElementsAre(ShownBox{BoxIcon::None, "Error starting /no/sdk/hlmv.exe", ""}));
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
  m_desktop.OpenSucceeds = false;
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
  const auto expect = [](QWidget& page, const char* button, const char* title) {
    tests::WhenModalOpens([title](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), title);
      const auto* info = qobject_cast<CRefSMDInfo*>(&dialog);
      EXPECT_TRUE(info == nullptr || info->InfoText() == "Unable to open /no/such.smd\r\n");
      static_cast<QDialog&>(dialog).reject();
    });
    Click(page, button);
  };
  for (const auto& [button, title] : dialogs) expect(form, button, title);
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
  EXPECT_EQ(ControlOf<QLineEdit>(*page, "qcFileEdit").text(), "/m/a.qc");
  EXPECT_EQ(ControlOf<QLineEdit>(*page, "referenceEdit").text(), "") << "that page was not showing";
}

TEST_F(ModelPages, CompileAReadyMadeScript) {
  const auto page = Open<CQCCompileDialog>();
  tests::Drop(ControlOf<QLineEdit>(*page, "qcFileEdit"), {"/m/a.qc", "/m/b.qc"});
  m_settings.Values["Tarnwick/SDKDirectory"] = "/no/sdk";
  Click(*page, "compileButton");
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_EQ(m_desktop.Boxes.front().Caption, "STUDIOMDL ERROR");
  EXPECT_EQ(page->OutputText(), "");
  EXPECT_EQ(m_settings.Values["Tarnwick/QC File"], "/m/a.qc");
  Tool("studiomdl.exe", "echo read\n");
  m_options.studioMdlOptions = 1;
  Click(*page, "compileButton");
  EXPECT_TRUE(page->isEnabled()) << "its output can be read meanwhile";
  ASSERT_TRUE(tests::WaitUntil([&] { return page->OutputText().find("complete") != std::string::npos; }));
  EXPECT_THAT(page->OutputText(),
              StartsWith(m_folder.Path() + "/studiomdl.exe -game \"/no/game\" \"/m/a.qc\"\r\nread\n"));
  EXPECT_THAT(page->OutputText(), EndsWith("\r\nStudioMDL Thread complete\r\n"));
}

}  // namespace

}  // namespace tarnwick::pages
