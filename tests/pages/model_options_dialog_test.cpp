#include "pages/model_options_dialog.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QTabWidget>
#include <QTreeWidget>

#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {
namespace {

using tests::Click;
using tests::ControlOf;

class ModelOptionsDialog : public testing::Test {
 protected:
  std::unique_ptr<CModelOptionsDialog> Open() {
    auto dialog =
        std::make_unique<CModelOptionsDialog>(PageContext{m_settings, m_desktop, m_options}, nullptr, m_project);
    dialog->Create();
    dialog->show();
    return dialog;
  }

  /// Has the editor that opens next filled in by `fill` and left with OK.
  static void Answer(const std::function<void(QWidget&)>& fill) {
    tests::WhenModalOpens([fill](QWidget& editor) {
      fill(editor);
      static_cast<QDialog&>(editor).accept();
    });
  }
  static void AnswerText(const char* text) {
    Answer([text](QWidget& editor) { ControlOf<QLineEdit>(editor, "textEdit").setText(text); });
  }

  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
  project::ModelProject m_project{m_options};
};

TEST_F(ModelOptionsDialog, TakesItsFieldsWithOkOnly) {
  auto dialog = Open();
  EXPECT_EQ(ControlOf<QLineEdit>(*dialog, "surfacePropEdit").text(), "metal");
  ControlOf<QLineEdit>(*dialog, "massEdit").setText("12.5");
  dialog->reject();
  EXPECT_EQ(m_options.mass, 100.0);

  dialog = Open();
  ControlOf<QLineEdit>(*dialog, "scaleEdit").setText("2");
  ControlOf<QLineEdit>(*dialog, "massEdit").setText("12.5");
  ControlOf<QLineEdit>(*dialog, "surfacePropEdit").setText("wood");
  dialog->accept();
  EXPECT_EQ(m_options.scale, 2.0);
  EXPECT_EQ(m_options.mass, 12.5);
  EXPECT_EQ(m_options.surfaceProp, "wood");
}

TEST_F(ModelOptionsDialog, EditsTheRowThatIsSelectedAmongEqualOnes) {
  auto dialog = Open();
  auto& tabs = ControlOf<QTabWidget>(*dialog, "tabs");
  tabs.setCurrentIndex(4);
  QWidget& page = *tabs.currentWidget();
  for (int i = 0; i < 2; ++i) {
    AnswerText("$staticprop");
    Click(page, "addButton");
  }
  auto& list = ControlOf<QTreeWidget>(page, "list");
  ASSERT_EQ(list.topLevelItemCount(), 2);
  list.setCurrentItem(list.topLevelItem(1));
  AnswerText("$opaque");
  Click(page, "editButton");
  ASSERT_EQ(m_project.QcCommands.Count(), 2);
  EXPECT_EQ(m_project.QcCommands.At(0).command, "$staticprop");
  EXPECT_EQ(m_project.QcCommands.At(1).command, "$opaque");
  list.setCurrentItem(list.topLevelItem(0));
  Click(page, "removeButton");
  ASSERT_EQ(m_project.QcCommands.Count(), 1);
  EXPECT_EQ(m_project.QcCommands.At(0).command, "$opaque");
  EXPECT_EQ(list.topLevelItem(0)->text(0), "$opaque");
}

TEST_F(ModelOptionsDialog, AddsAnAttachmentWithItsDefaults) {
  auto dialog = Open();
  QWidget& page = *ControlOf<QTabWidget>(*dialog, "tabs").widget(0);
  Answer([](QWidget& editor) {
    EXPECT_EQ(ControlOf<QLineEdit>(editor, "translationEdit").text(), "0 0 0");
    ControlOf<QLineEdit>(editor, "nameEdit").setText("muzzle");
    ControlOf<QLineEdit>(editor, "boneEdit").setText("barrel");
  });
  Click(page, "addButton");
  ASSERT_EQ(m_project.Attachments.Count(), 1);
  EXPECT_EQ(m_project.Attachments.At(0).bone, "barrel");
  EXPECT_EQ(m_project.Attachments.At(0).rotation, "0 0 0");
}

TEST_F(ModelOptionsDialog, RemembersItsTab) {
  auto dialog = Open();
  ControlOf<QTabWidget>(*dialog, "tabs").setCurrentIndex(3);
  dialog->reject();
  dialog = Open();
  EXPECT_EQ(ControlOf<QTabWidget>(*dialog, "tabs").currentIndex(), 3);
}

}  // namespace
}  // namespace tarnwick::pages
