// The widgets that show a model. Where the tests run without a screen nothing is drawn, and all else has to work.

#include "view/widget/model_viewer.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPointer>
#include <QSlider>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <cmath>
#include <filesystem>
#include <set>

#include "support/archive_builder.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"
#include "view/scene/face.h"
#include "view/widget/model_canvas.h"
#include "view/widget/model_window.h"
#include "view/widget/pose_pad.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::view {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using tests::Click;
using tests::ControlOf;

const std::string Walker = std::string(TARNWICK_SAMPLES) + "/walker.mdl";

class ModelViewerTest : public testing::Test {
 protected:
  void Open(const std::string& path) {
    m_viewer = std::make_unique<ModelViewer>(m_desktop, ModelViewer::Controls::Beside);
    m_viewer->resize(900, 600);
    m_viewer->show();
    Show(path);
  }
  void Show(const std::string& path) {
    m_viewer->ShowFile(QString::fromStdString(path));
    ASSERT_TRUE(tests::WaitUntil([this] { return !m_viewer->IsBusy(); }));
  }
  ModelView& View() { return m_viewer->View(); }
  const ViewState& State() { return View().State(); }
  void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    View().setFocus();
    QTest::keyClick(&View(), static_cast<Qt::Key>(key), modifiers);
  }

  tests::ScratchFolder m_folder;
  tests::ScriptedDesktop m_desktop;
  std::unique_ptr<ModelViewer> m_viewer;
};

TEST(ModelWindow, OpensModelsThatAreChosenInTheGame) {
  tests::ScriptedDesktop desktop;
  ModelWindow window(desktop);
  QAction* choose = nullptr;
  for (QAction* action : window.findChildren<QAction*>()) {
    if (action->text() == "&Game Content...") choose = action;
  }
  ASSERT_TRUE(choose);
  EXPECT_FALSE(choose->isEnabled()) << "nobody shows the game's content";
  int asked = 0;
  window.OfferContent([&](ModelWindow& asking) {
    ++asked;
    EXPECT_EQ(asking.OpenAll({"game:materials/none.vtf", QString::fromStdString(Walker)}), 1u);
  });
  choose->trigger();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(window.Viewer().File().toStdString(), Walker);
  EXPECT_TRUE(tests::WaitUntil([&] { return !window.Viewer().IsBusy(); }));
}

TEST(ModelWindow, OpensWhatIsDroppedOnItMoreModelsInWindowsOfTheirOwn) {
  const tests::ScratchFolder folder;
  const std::string crate = tests::ModelBuilder{}.Build().Write(folder.Path(), "crate");
  tests::ScriptedDesktop desktop;
  ModelWindow window(desktop);
  window.setAttribute(Qt::WA_DeleteOnClose, false);
  window.show();
  tests::Drop(window, {"/m/notes.txt"});
  EXPECT_EQ(window.Viewer().File().toStdString(), "");
  tests::Drop(window, {"/m/notes.txt", Walker, crate});
  // Windows that are closed are deleted while others are waited for.
  std::vector<QPointer<ModelWindow>> visible;
  for (QWidget* other : QApplication::topLevelWidgets()) {
    auto* opened = qobject_cast<ModelWindow*>(other);
    if (opened != nullptr && opened->isVisible()) visible.emplace_back(opened);
  }
  std::vector<std::string> shown;
  for (const auto& opened : visible) {
    ASSERT_TRUE(opened);
    EXPECT_TRUE(tests::WaitUntil([&] { return !opened->Viewer().IsBusy(); }));
    EXPECT_TRUE(opened->Viewer().View().HasModel());
    shown.push_back(opened->Viewer().File().toStdString());
    opened->close();
  }
  EXPECT_EQ(window.Viewer().File().toStdString(), tests::Dropped(Walker));
  EXPECT_THAT(shown, testing::UnorderedElementsAre(tests::Dropped(Walker), tests::Dropped(crate)));
}

TEST_F(ModelViewerTest, SaysWhyNothingIsDrawnAndDoesAllElse) {
  Open(Walker);
  ASSERT_TRUE(View().HasModel());
  if (OpenGlTrouble().isEmpty()) {
    EXPECT_EQ(View().ShownText(), "");
    EXPECT_FALSE(View().Picture().isNull());
  } else {
    EXPECT_THAT(View().ShownText().toStdString(),
                AllOf(HasSubstr("cannot be shown"), HasSubstr(OpenGlTrouble().toStdString())));
    m_viewer->SavePicture();
    EXPECT_EQ(m_desktop.LastBox.Text, "There is no picture to save.");
  }
  EXPECT_THAT(ControlOf<QLabel>(*m_viewer, "modelFacts").text().toStdString(),
              AllOf(HasSubstr("848 triangles"), HasSubstr("14 bones")));
  auto& missing = ControlOf<QTreeWidget>(*m_viewer, "missingList");
  EXPECT_EQ(missing.topLevelItemCount(), 0) << "the sample comes with its materials";
  Show(tests::ModelBuilder{}.Build().Write(m_folder.Path(), "crate"));
  ASSERT_GT(missing.topLevelItemCount(), 0);
  EXPECT_GT(missing.topLevelItem(0)->childCount(), 0) << "the paths that were tried";
}

/// On a screen alone: what the window shows, against where the scene's own vertices project.
TEST_F(ModelViewerTest, DrawsWhatTheCameraSees) {
  if (!OpenGlTrouble().isEmpty()) GTEST_SKIP() << OpenGlTrouble().toStdString();
  Open(Walker);
  View().Change([](ViewState& state) {
    state.IsPlaying = false;
    state.Extras.Grid = false;
    state.FixedLod = 0;
    state.Background = ViewColor{1, 0, 1, 1};
    state.Eye.Yaw = 50;
  });
  View().FrameModel();
  ASSERT_TRUE(tests::WaitUntil([this] { return View().Counts() && View().Counts()->Triangles > 0; }));
  const QImage picture = View().Picture();
  const QRgb behind = qRgb(255, 0, 255);
  const auto isCovered = [&](int x, int y) {
    return picture.valid(x, y) && (picture.pixel(x, y) | 0xFF000000) != behind;
  };
  const auto scale = static_cast<float>(picture.width()) / static_cast<float>(View().width());
  const Scene& scene = *View().Model().Model;
  ScenePose pose(scene);
  pose.Set(PoseOf(State()));
  QRect outline;
  int outside = 0;
  for (const SceneDraw& draw : scene.Draws) {
    if (!scene.IsDrawn(draw, State().BodyGroups, 0)) continue;
    for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
      const size_t vertex = scene.Indices[static_cast<size_t>(i)];
      const Vec3 at =
          State().Eye.Project(SkinPoint(scene.Points[vertex], scene.Vertices[vertex], pose.SkinMatrices()).Position,
                              static_cast<float>(View().width()), static_cast<float>(View().height()));
      const QPoint pixel(static_cast<int>(at.X * scale), static_cast<int>(at.Y * scale));
      outline |= QRect(pixel, QSize(1, 1));
      bool isNear = false;
      for (int x = -1; x <= 1; ++x) {
        for (int y = -1; y <= 1; ++y) isNear = isNear || isCovered(pixel.x() + x, pixel.y() + y);
      }
      outside += isNear ? 0 : 1;
    }
  }
  EXPECT_EQ(outside, 0) << "vertices of " << outline.width() << " by " << outline.height() << " pixels";
  EXPECT_GT(outline.height(), picture.height() / 2);
  outline.adjust(-2, -2, 2, 2);
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (!outline.contains(x, y)) {
        ASSERT_FALSE(isCovered(x, y)) << x << ", " << y;
      }
    }
  }
  // The window shows the same picture.
  const QImage shown = m_viewer->grab().toImage();
  const QPoint middle = View().mapTo(m_viewer.get(), QPoint(View().width() / 2, View().height() / 2));
  EXPECT_NE(shown.pixel(middle) | 0xFF000000, behind);
  EXPECT_EQ(shown.pixel(View().mapTo(m_viewer.get(), QPoint(2, 2))) | 0xFF000000, behind);
}

TEST_F(ModelViewerTest, SaysWhyAFileIsNotShownAndReadsItOnceItIsThere) {
  const std::string path = m_folder.Path("crate.mdl");
  Open(path);
  EXPECT_THAT(View().ShownText().toStdString(), HasSubstr("crate.mdl"));
  EXPECT_FALSE(ControlOf<QTabWidget>(*m_viewer, "viewerTabs").isEnabled());
  tests::WriteText(path, "no model at all");
  m_viewer->Reload();
  ASSERT_TRUE(tests::WaitUntil([this] { return !m_viewer->IsBusy(); }));
  EXPECT_FALSE(View().HasModel());
  // It is watched now; what is written in its place is read without being asked for.
  tests::ModelBuilder{}.Build().Write(m_folder.Path(), "crate");
  EXPECT_TRUE(tests::WaitUntil([this] { return View().HasModel(); }));
  m_viewer->ShowFile({});
  EXPECT_TRUE(tests::WaitUntil([this] { return !View().HasModel(); }));
}

TEST_F(ModelViewerTest, SaysBelowThePictureWhatIsNotInIt) {
  const auto notice = [this] {
    const auto& label = ControlOf<QLabel>(*m_viewer, "viewerNotice");
    return label.isHidden() ? std::string() : label.text().toStdString();
  };
  Open(Walker);
  EXPECT_EQ(notice(), "");
  Show(tests::ModelBuilder{}.Build().Write(m_folder.Path(), "crate"));
  EXPECT_THAT(notice(), AllOf(HasSubstr("missing"), HasSubstr("Facts")));
  Show(tests::ModelBuilder{.BodyParts = {}}.Build().Write(m_folder.Path(), "bones"));
  EXPECT_THAT(notice(), AllOf(HasSubstr("no mesh"), HasSubstr("bones are shown")));
  const std::string alone = tests::ModelBuilder{}.Build().Write(m_folder.Path(), "alone");
  std::filesystem::remove(m_folder.Path("alone.vvd"));
  Show(alone);
  EXPECT_THAT(notice(), AllOf(HasSubstr("no mesh"), HasSubstr("alone.vvd")));
  Show(m_folder.Path("gone.mdl"));
  EXPECT_EQ(notice(), "") << "the picture's place says it";
}

TEST_F(ModelViewerTest, TurnsMovesAndSwitchesByKeys) {
  Open(Walker);
  const Camera first = State().Eye;
  Press(Qt::Key_Left);
  EXPECT_NE(State().Eye.Yaw, first.Yaw);
  Press(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_NE(State().Eye.Target, first.Target);
  const float distance = State().Eye.Distance;
  Press(Qt::Key_Plus);
  EXPECT_LT(State().Eye.Distance, distance);
  Press(Qt::Key_3);
  Camera right = first;
  right.Look(ViewSide::Right);
  EXPECT_EQ(State().Eye.Yaw, right.Yaw);
  EXPECT_EQ(State().Eye.Pitch, right.Pitch);
  Press(Qt::Key_B);
  EXPECT_TRUE(State().Extras.Bones);
  Press(Qt::Key_W);
  EXPECT_EQ(State().Mode, ShadingMode::Wireframe);
  EXPECT_EQ(ControlOf<QComboBox>(*m_viewer, "modeCombo").currentText(), "Wireframe") << "the controls follow";
  Press(Qt::Key_Space);
  EXPECT_FALSE(State().IsPlaying);
  View().Change([](ViewState& state) { state.Cycle = 0; });
  Press(Qt::Key_Period);
  Press(Qt::Key_Period);
  EXPECT_NEAR(ShownFrame(*View().Model().Model, State()), 2, 1e-3);
  Press(Qt::Key_Comma);
  EXPECT_THAT(ControlOf<QLabel>(*m_viewer, "frameLabel").text().toStdString(), testing::StartsWith("1"));
}

TEST_F(ModelViewerTest, IsLitAsTheDesktopLooksUntilTheUserChooses) {
  Open(Walker);
  auto& desktop = ControlOf<QCheckBox>(*m_viewer, "desktopLight");
  const auto look = [this](const QColor& window) {
    QPalette palette = m_viewer->palette();
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, window.lightness() < 128 ? Qt::white : Qt::black);
    m_viewer->setPalette(palette);
    return std::pair(State().LightYaw, State().LightPitch);
  };
  const auto light = look(Qt::white), dark = look(QColor(30, 30, 30));
  EXPECT_NE(light, dark);
  for (QSlider* slider : m_viewer->findChildren<QSlider*>()) {
    if (slider->accessibleName() == "Light from the side") slider->setValue(-77);
  }
  EXPECT_FALSE(desktop.isChecked());
  EXPECT_EQ(look(Qt::white), std::pair(-77.0f, dark.second)) << "what was chosen stays";
  desktop.click();
  EXPECT_EQ(std::pair(State().LightYaw, State().LightPitch), light);
}

TEST_F(ModelViewerTest, GivesEveryCommandOfAMenuALetterOfItsOwn) {
  Open(Walker);
  std::vector<QMenu*> menus = {View().Commands()};
  for (QMenu* menu : View().Commands()->findChildren<QMenu*>()) menus.push_back(menu);
  EXPECT_GE(menus.size(), 3u);
  for (QMenu* menu : menus) {
    std::set<QKeySequence> letters;
    for (const QAction* action : menu->actions()) {
      if (action->isSeparator()) continue;
      const QKeySequence letter = QKeySequence::mnemonic(action->text());
      EXPECT_FALSE(letter.isEmpty()) << action->text().toStdString();
      EXPECT_TRUE(letters.insert(letter).second) << action->text().toStdString();
    }
  }
}

TEST_F(ModelViewerTest, FindsSequencesAndPutsOneOnTopOfAnother) {
  Open(Walker);
  auto& list = ControlOf<QListView>(*m_viewer, "sequenceList");
  EXPECT_EQ(list.currentIndex().data().toString(), "idle");
  ControlOf<QLineEdit>(*m_viewer, "sequenceSearch").setText("WAL");
  ASSERT_EQ(list.model()->rowCount(), 2) << "walk, and walk_nodding";
  list.setCurrentIndex(list.model()->index(0, 0));
  EXPECT_EQ(View().Model().Model->Sequences[static_cast<size_t>(State().Sequence)].Name, "walk");
  ControlOf<QLineEdit>(*m_viewer, "sequenceSearch").setText("nod");
  list.setCurrentIndex(list.model()->index(0, 0));
  const int32_t nod = State().Sequence;
  Click(*m_viewer, "addLayerButton");
  ASSERT_EQ(State().Layers.size(), 1u);
  EXPECT_EQ(State().Layers[0].Sequence, nod);
  for (QSlider* slider : m_viewer->findChildren<QSlider*>()) {
    if (slider->accessibleName() == "Weight of nod") slider->setValue(25);
  }
  EXPECT_FLOAT_EQ(State().Layers[0].Weight, 0.25f);
  ControlOf<QSlider>(*m_viewer, "speedSlider").setValue(40);
  EXPECT_FLOAT_EQ(State().Speed, 2);
}

TEST_F(ModelViewerTest, KeepsHowEachModelWasLookedAt) {
  const std::string crate = tests::ModelBuilder{}.Build().Write(m_folder.Path(), "crate");
  Open(Walker);
  View().Change([](ViewState& state) {
    state.Eye.Yaw = 123;
    state.Extras.Hitboxes = true;
  });
  Show(crate);
  EXPECT_NE(State().Eye.Yaw, 123);
  EXPECT_FALSE(State().Extras.Hitboxes);
  Show(Walker);
  EXPECT_EQ(State().Eye.Yaw, 123);
  EXPECT_TRUE(State().Extras.Hitboxes);
  Open(Walker);  // in another viewer too
  EXPECT_EQ(State().Eye.Yaw, 123);
  View().Change([](ViewState& state) { state = {}; });
}

TEST_F(ModelViewerTest, ShowsAModelThatLiesInAnArchive) {
  const tests::ScratchFolder loose;
  tests::ModelBuilder{}.Write(loose.Path(), "cube");
  tests::VpkBuilder vpk{.Files = tests::PackedFolder(loose, "models")};
  tests::WriteText(m_folder.Path("pak_dir.vpk"), vpk.Build().Directory);
  Open(m_folder.Path("pak_dir.vpk") + ":models/cube.mdl");
  ASSERT_TRUE(View().HasModel()) << View().ShownText().toStdString();
  EXPECT_FALSE(View().Model().Model->Draws.empty());
  Show(m_folder.Path("pak_dir.vpk") + ":models/none.mdl");
  EXPECT_FALSE(View().HasModel());
  EXPECT_THAT(View().ShownText().toStdString(), HasSubstr("models/none.mdl"));
}

TEST_F(ModelViewerTest, MovesTheFaceWithASliderForEachController) {
  Open(Walker);
  const auto& controllers = View().Model().Model->FlexControllers;
  ASSERT_FALSE(controllers.empty());
  auto& slider = ControlOf<QSlider>(*m_viewer, controllers[0].Name.c_str());
  slider.setValue(slider.maximum());
  ASSERT_FALSE(State().FlexControllers.empty());
  EXPECT_FLOAT_EQ(State().FlexControllers[0], controllers[0].Maximum);
  Click(*m_viewer, "resetFace");
  EXPECT_EQ(slider.value(), std::lround((DefaultControllerValue(controllers[0]) - controllers[0].Minimum) /
                                        (controllers[0].Maximum - controllers[0].Minimum) * 1000));
}

TEST_F(ModelViewerTest, MovesTwoPoseParametersOnAPad) {
  PosePad pad;
  pad.resize(110, 110);
  pad.show();
  std::vector<QPointF> places;
  QObject::connect(&pad, &PosePad::Moved, [&](const QPointF& place) { places.push_back(place); });
  QTest::mouseClick(&pad, Qt::LeftButton, {}, QPoint(105, 5));  // the upper right corner, within its frame
  QTest::mouseClick(&pad, Qt::LeftButton, {}, QPoint(-40, 500));
  QTest::keyClick(&pad, Qt::Key_Up);
  ASSERT_EQ(places.size(), 3u);
  EXPECT_EQ(places[0], QPointF(1, 1));
  EXPECT_EQ(places[1], QPointF(0, 0)) << "no farther than the edge";
  EXPECT_EQ(places[2], QPointF(0, 0.05));
}

TEST_F(ModelViewerTest, PicksTheNearestTriangleAndItsMaterial) {
  // Two triangles across the way of who looks at the front, the nearer one before the middle of the other.
  tests::WriteText(m_folder.Path("two.smd"),
                   "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\n"
                   "far\n0 -90 0 -90 0 -1 0 0 0\n0 90 0 -90 0 -1 0 0 0\n0 0 0 90 0 -1 0 0 0\n"
                   "near\n0 -9 -40 -9 0 -1 0 0 0\n0 9 -40 -9 0 -1 0 0 0\n0 0 -40 9 0 -1 0 0 0\nend\n");
  Open(m_folder.Path("two.smd"));
  ASSERT_TRUE(View().HasModel());
  const Scene& scene = *View().Model().Model;
  for (const bool isFlat : {false, true}) {
    for (const auto& [side, hit] : {std::pair(ViewSide::Front, "near"), {ViewSide::Back, "far"}}) {
      View().Change([&, side = side](ViewState& state) {
        state.Eye.IsOrthographic = isFlat;
        state.Eye.Look(side);
      });
      View().FrameModel();
      const Vec3 place =
          State().Eye.Project(Vec3{}, static_cast<float>(View().width()), static_cast<float>(View().height()));
      const auto picked = View().Pick(QPointF(place.X, place.Y));
      ASSERT_TRUE(picked.has_value()) << hit;
      EXPECT_EQ(scene.Materials[static_cast<size_t>(picked->Material)], hit);
    }
  }
  EXPECT_FALSE(View().Pick(QPointF(1, 1)).has_value());
}

}  // namespace
}  // namespace tarnwick::view
