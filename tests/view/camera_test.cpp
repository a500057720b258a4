#include "view/scene/camera.h"

#include "scene_support.h"

namespace tarnwick::view {
namespace {

using namespace tests;

TEST(Camera, LooksFromTheSides) {
  Camera camera{.Target = {1, 2, 3}, .Distance = 10};
  struct Case {
    ViewSide Side;
    Vec3 Eye;
    Vec3 Right;
  };
  for (const auto& [side, eye, right] :
       {Case{ViewSide::Front, {11, 2, 3}, {0, 1, 0}}, Case{ViewSide::Back, {-9, 2, 3}, {0, -1, 0}},
        Case{ViewSide::Left, {1, 12, 3}, {-1, 0, 0}}, Case{ViewSide::Right, {1, -8, 3}, {1, 0, 0}},
        Case{ViewSide::Top, {1, 2, 13}, {0, 1, 0}}, Case{ViewSide::Bottom, {1, 2, -7}, {0, 1, 0}}}) {
    camera.Look(side);
    EXPECT_THAT(camera.Eye(), Is(eye.X, eye.Y, eye.Z));
    EXPECT_THAT(camera.Right(), Is(right.X, right.Y, right.Z));
    EXPECT_THAT(Cross(camera.Right(), camera.Up()), Is(-camera.Forward().X, -camera.Forward().Y, -camera.Forward().Z));
  }
}

TEST(Camera, ProjectsWhereThingsStand) {
  for (const bool orthographic : {false, true}) {
    Camera camera{.Distance = 10, .FieldOfView = 90, .IsOrthographic = orthographic};
    EXPECT_THAT(camera.Project({0, 0, 0}, 200, 100), IsNear(100, 50, camera.Project({0, 0, 0}, 1, 1).Z, 1e-3f));
    // At 90 degrees the picture is as high as 20 units at the target: 5 pixels a unit.
    EXPECT_NEAR(camera.UnitPixels(100), 5, 1e-4);
    const Vec3 at = camera.Project({0, 4, 2}, 200, 100);
    EXPECT_NEAR(at.X, 120, 1e-3);
    EXPECT_NEAR(at.Y, 40, 1e-3);
    EXPECT_LT(camera.Project({5, 0, 0}, 200, 100).Z, camera.Project({-5, 0, 0}, 200, 100).Z) << "near is less deep";
  }
  EXPECT_GT((Camera{.Distance = 10}.Project({20, 0, 0}, 100, 100).Z), 1) << "behind the camera";
}

TEST(Camera, FramesTheWholeBox) {
  const Box box{{-3, -10, 0}, {5, 12, 70}};
  for (const bool orthographic : {false, true}) {
    for (const float aspect : {0.4f, 1.0f, 2.5f}) {
      for (const float yaw : {0.0f, 50.0f, 200.0f}) {
        Camera camera{.Yaw = yaw, .Pitch = 20, .IsOrthographic = orthographic};
        camera.Frame(box, aspect);
        for (int corner = 0; corner < 8; ++corner) {
          const Vec3 point{corner & 1 ? box.Maximum.X : box.Minimum.X, corner & 2 ? box.Maximum.Y : box.Minimum.Y,
                           corner & 4 ? box.Maximum.Z : box.Minimum.Z};
          const Vec3 at = camera.Project(point, 100 * aspect, 100);
          EXPECT_TRUE(at.X >= 0 && at.X <= 100 * aspect && at.Y >= 0 && at.Y <= 100 && std::abs(at.Z) < 1)
              << aspect << " " << yaw << " " << corner;
        }
      }
    }
  }
  Camera camera;
  camera.Frame({}, 1);
  EXPECT_GT(camera.Distance, 1) << "nothing to see is framed too";
}

TEST(Camera, TurnsPansAndZooms) {
  Camera camera{.Distance = 10, .FieldOfView = 90};
  camera.Turn(-30, 500);
  EXPECT_EQ(camera.Yaw, 330);
  EXPECT_EQ(camera.Pitch, 90);
  camera.Look(ViewSide::Front);
  const Vec3 before = camera.Project({0, 0, 0}, 100, 100);
  camera.Pan(0.25f, 0);
  EXPECT_NEAR(camera.Project({0, 0, 0}, 100, 100).X, before.X - 25, 1e-3) << "what is seen goes the other way";
  camera.Zoom(0.5f);
  EXPECT_EQ(camera.Distance, 5);
  for (int i = 0; i < 200; ++i) camera.Zoom(0.5f);
  EXPECT_GT(camera.Distance, 0);
  for (int i = 0; i < 400; ++i) camera.Zoom(2);
  EXPECT_TRUE(std::isfinite(camera.Distance));
}

}  // namespace
}  // namespace tarnwick::view
