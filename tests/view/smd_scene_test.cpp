#include "model/animation_records.h"
#include "scene_support.h"
#include "view/scene/scene_pose.h"

namespace tarnwick::view {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* Nodes =
    "version 1\n"
    "nodes\n"
    "0 \"hand\" 1\n"
    "1 \"root\" -1\n"
    "end\n"
    "skeleton\n"
    "time 0\n"
    "0 0 0 8 0 0 0\n"
    "1 0 0 0 0 0 0\n"
    "time 1\n"
    "1 4 0 0 0 0 0\n"
    "end\n";

constexpr const char* Mesh =
    "triangles\n"
    "skin.bmp\n"
    "0 1 0 8 0 0 1 0.5 0.25 2 0 0.75 1 0.25\n"
    "0 0 1 8 0 0 1 0 0 1 0 1\n"
    "1 0 0 8 0 0 1 0 0\n"
    "cloth\n"
    "0 1 0 8 0 0 1 0.5 0.25 2 0 0.75 1 0.25\n"
    "1 0 0 8 0 0 1 0 0\n"
    "0 0 2 8 0 0 1 0 0 5 1 0.1 0 0.2 1 0.3 0 0.25 1 0.15\n"
    "end\n";

TEST(SmdScene, HasMeshSkeletonAndFrames) {
  RecordingTroubles told;
  const Scene scene = MakeSmdSceneOfText(std::string(Nodes) + Mesh, "a/walk.smd", told);
  EXPECT_THAT(told.Texts(), IsEmpty());
  EXPECT_EQ(scene.Name, "walk");
  ASSERT_EQ(scene.Bones.size(), 2u);
  EXPECT_EQ(scene.Bones[0].Name, "root") << "parents stand first";
  EXPECT_EQ(scene.Bones[1].Parent, 0);
  EXPECT_THAT(scene.Materials, ElementsAre("skin.bmp", "cloth"));
  ASSERT_EQ(scene.Draws.size(), 2u);
  EXPECT_EQ(scene.Points.size(), 4u) << "corners that are the same in everything are one vertex";
  const SceneVertex& first = scene.Vertices[scene.Indices[0]];
  EXPECT_THAT(first.Weights, ElementsAre(0.75f, 0.25f, 0));
  EXPECT_THAT(first.Bones, ElementsAre(1, 0, 0, 0));
  EXPECT_EQ(first.V, 0.75f);
  // Five links of two bones: the three that weigh most, made to add up to 1.
  const SceneVertex& last = scene.Vertices[scene.Indices[5]];
  EXPECT_NEAR(last.Weights[0], 0.3f / 0.75f, 1e-6);
  EXPECT_NEAR(last.Weights[0] + last.Weights[1] + last.Weights[2], 1, 1e-6);
  // Turned as a compiler turns it; the second frame moves the root, and holds the hand.
  ScenePose pose(scene);
  EXPECT_THAT(SkinPoint(scene.Points[scene.Indices[0]], first, pose.SkinMatrices()).Position, Is(0, 1, 8));
  ASSERT_EQ(scene.Sequences.size(), 1u);
  pose.Set({.Sequence = 0, .Cycle = 1});
  EXPECT_THAT(pose.Bones()[1].Translation(), Is(0, 4, 8));
  EXPECT_THAT(SkinPoint(scene.Points[scene.Indices[0]], first, pose.SkinMatrices()).Position, Is(0, 5, 8));
  EXPECT_THAT(scene.MeshBox.Maximum, Is(0, 1, 8));
}

TEST(SmdScene, ShowsWhatThereIs) {
  RecordingTroubles told;
  const Scene bones = MakeSmdSceneOfText(Nodes, "x.smd", told);
  EXPECT_TRUE(bones.Draws.empty());
  EXPECT_EQ(bones.Sequences.size(), 1u);
  const Scene empty = MakeSmdSceneOfText("", "x.smd", told);
  EXPECT_TRUE(empty.Bones.empty());
  ScenePose pose(empty);
  pose.Set({.Sequence = 3});
  EXPECT_EQ(pose.SkinMatrices().size(), 1u);
  // Nodes that hang on each other in a circle.
  const Scene circle =
      MakeSmdSceneOfText("version 1\nnodes\n0 a 1\n1 b 0\n2 c 2\nend\nskeleton\ntime 0\nend\n", "x.smd", told);
  EXPECT_EQ(circle.Bones.size(), 3u);
  ScenePose turning(circle);

  RecordingTroubles missing;
  EXPECT_FALSE(MakeSmdScene("/nowhere/x.smd", missing));
  EXPECT_THAT(missing.Texts(), ElementsAre(HasSubstr("/nowhere/x.smd")));
  RecordingTroubles damaged;
  (void)MakeSmdSceneOfText("version 1\nnodes\n0 a what\n", "y.smd", damaged);
  EXPECT_THAT(damaged.Texts(), testing::Contains(HasSubstr("y.smd, line ")));
}

}  // namespace
}  // namespace tarnwick::view
