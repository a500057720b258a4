#include "pages/mdl_dialog.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <filesystem>

#include "pages/qc_compile_dialog.h"
#include "support/scratch_folder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
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

  /// Makes studiomdl a shell script.
  void Studiomdl(const std::string& script) {
    const std::string path = m_folder.Path("studiomdl.exe");
    tests::WriteText(path, "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path();
    m_settings.Values["Tarnwick/GameDirectory"] = "/no/game";
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
  Studiomdl("echo compiled\nif [ -e \"$0.slow\" ]; then sleep 30; fi\n");
  const auto page = Open<CMDLDialog>();
  ControlOf<QLineEdit>(*page, "modelFileEdit").setText("props/crate.mdl");
  ControlOf<QLineEdit>(*page, "referenceEdit").setText(QString::fromStdString(m_folder.Path("crate.smd")));
  ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
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
  Click(status, "stopButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  EXPECT_THAT(status.Text(), HasSubstr("[Stopped."));
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
  Studiomdl("echo read\n");
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
