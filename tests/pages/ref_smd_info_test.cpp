#include "pages/ref_smd_info.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "support/scratch_folder.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {
namespace {

using testing::HasSubstr;
using tests::Click;
using tests::ControlOf;

constexpr const char* Triangle =
    "version 1\nnodes\n  0 \"root\" -1\nend\nskeleton\ntime 0\n  0 0 0 0 0 0 0\nend\ntriangles\nskin.tga\n"
    "0 0 0 0 0 0 1 0 0\n0 1 0 0 0 0 1 1 0\n0 0 1 0 0 0 1 0 1\nend\n";

TEST(RefSmdInfo, ReplacesAMaterialAndShowsTheNewFigures) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("a.smd"), Triangle);
  tests::ScriptedDesktop desktop;
  CRefSMDInfo dialog(desktop, nullptr);
  dialog.SmdPath = folder.Path("a.smd");
  dialog.Create();
  dialog.show();
  EXPECT_THAT(dialog.InfoText(), HasSubstr("skin.tga"));
  EXPECT_EQ(ControlOf<QComboBox>(dialog, "materialCombo").currentText(), "skin.tga");
  ControlOf<QLineEdit>(dialog, "replaceEdit").setText("bark.tga");

  // Asked first: nothing happens to the file without a yes.
  desktop.BoxAnswers = {platform::BoxAnswer::Cancel};
  Click(dialog, "replaceButton");
  EXPECT_EQ(tests::ReadText(folder.Path("a.smd")), Triangle);

  desktop.BoxAnswers = {platform::BoxAnswer::Ok};
  Click(dialog, "replaceButton");
  EXPECT_THAT(tests::ReadText(folder.Path("a.smd")), HasSubstr("triangles\nbark.tga\n0 0 0"));
  EXPECT_THAT(dialog.InfoText(), HasSubstr("bark.tga"));
  EXPECT_EQ(ControlOf<QComboBox>(dialog, "materialCombo").currentText(), "bark.tga");
  EXPECT_EQ(ControlOf<QLabel>(dialog, "resultLabel").text(), "1 occurrence replaced.");

  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
}

TEST(RefSmdInfo, TellsThatNoFileIsNamedAndClosesByItsCloseBox) {
  tests::ScriptedDesktop desktop;
  CRefSMDInfo dialog(desktop, nullptr);
  dialog.Create();
  dialog.show();
  EXPECT_EQ(dialog.InfoText(), "No Reference SMD File Specified\r\n");
  Click(dialog, "replaceButton");
  EXPECT_THAT(desktop.Boxes, testing::ElementsAre(tests::ShownBox{platform::BoxIcon::Exclamation,
                                                                  "No Reference SMD File Specified", "SMD ERROR"}));
  dialog.close();
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(desktop.Boxes.size(), 1u) << "closing replaces nothing";
}

}  // namespace
}  // namespace tarnwick::pages
