#include "pages/ref_smd_info.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "support/scratch_folder.h"
#include "view/widget/model_view.h"
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

TEST(RefSmdInfo, LightsTheChosenMaterialUpAndTellsThatOfAPickedTriangle) {
  const tests::ScratchFolder folder;
  std::string smd = Triangle;
  smd.replace(smd.find("end\n", smd.find("triangles")), 4,
              "bark.tga\n0 0 0 5 0 0 1 0 0\n0 1 0 5 0 0 1 1 0\n0 0 1 5 0 0 1 0 1\nend\n");
  tests::WriteText(folder.Path("a.smd"), smd);
  tests::ScriptedDesktop desktop;
  CRefSMDInfo dialog(desktop, nullptr);
  dialog.SmdPath = folder.Path("a.smd");
  dialog.Create();
  dialog.show();
  auto& mesh = ControlOf<view::ModelView>(dialog, "mesh");
  ASSERT_TRUE(tests::WaitUntil([&] { return mesh.HasModel(); }));
  const auto lit = [&] {
    const auto material = static_cast<size_t>(mesh.State().HighlightedMaterial);
    return material < mesh.Model().Model->Materials.size() ? mesh.Model().Model->Materials[material] : "(none)";
  };
  auto& combo = ControlOf<QComboBox>(dialog, "materialCombo");
  EXPECT_EQ(lit(), "skin.tga");
  combo.setEditText("bark.tga");
  EXPECT_EQ(lit(), "bark.tga");
  combo.setEditText("no such");
  EXPECT_EQ(lit(), "(none)");

  // A click on the triangle with the other material, which is seen from above.
  mesh.Change([](view::ViewState& state) { state.Eye.Look(view::ViewSide::Top); });
  mesh.FrameModel();
  const auto& scene = *mesh.Model().Model;
  view::ScenePose pose(scene);
  pose.Set(view::PoseOf(mesh.State()));
  view::Vec3 middle;
  for (size_t i = 3; i < 6; ++i) {
    const size_t index = scene.Indices[i];
    const view::ScenePoint corner = SkinPoint(scene.Points[index], scene.Vertices[index], pose.SkinMatrices());
    middle = middle + corner.Position * (1.0f / 3);
  }
  const view::Vec3 place =
      mesh.State().Eye.Project(middle, static_cast<float>(mesh.width()), static_cast<float>(mesh.height()));
  QTest::mouseClick(&mesh, Qt::LeftButton, {}, QPointF(place.X, place.Y).toPoint());
  EXPECT_EQ(combo.currentText(), "bark.tga");
  EXPECT_EQ(lit(), "bark.tga");
  EXPECT_THAT(ControlOf<QLabel>(dialog, "resultLabel").text().toStdString(), HasSubstr("\"bark.tga\""));
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
