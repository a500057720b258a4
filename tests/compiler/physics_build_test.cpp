#include "compiler/physics/build_physics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_fixture.h"
#include "compiler/physics/collision_text.h"
#include "model/phy_file.h"
#include "model/phy_values.h"
#include "model/phy_writer.h"
#include "support/recording_troubles.h"

namespace tarnwick::tests {
namespace {

using namespace compiler;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct PhysicsFixture {
  CompileFixture Compile;
  BuiltPhysics Physics;
  bool Built = false;
  model::PhyFile File;
  std::string Bytes;
  model::PhyValues Values;

  PlanCollision& Collision(smd::SmdSource source, const std::string& name = "crate_phys.smd") {
    PlanCollision& collision = Compile.Plan.Collision.emplace();
    collision.Mesh = Compile.AddSource(std::move(source), name);
    return collision;
  }
  /// Builds, and reads back what was built.
  void Build(const std::optional<model::RigidTransform>& rootPose = std::nullopt) {
    Compile.Run([&](CompileContext& context) { Built = BuildPhysics(context, Compile.Bones, Physics, rootPose); });
    if (!Built) return;
    Bytes = model::WritePhyFile(7, Physics.Solids, Physics.Text);
    RecordingTroubles troubles;
    auto file = model::ReadPhyFile(core::ImageView(std::as_bytes(std::span(Bytes))), "built.phy", troubles);
    ASSERT_TRUE(file.has_value());
    File = std::move(*file);
    Values = model::TakePhyValues(File.Text, static_cast<int64_t>(File.Solids.size()), "built.phy", troubles);
  }
  /// The corners of a solid's box in the model's units.
  std::pair<model::Vec3, model::Vec3> BoxOf(size_t solid) const {
    model::Vec3 low = {1e9f, 1e9f, 1e9f}, high = {-1e9f, -1e9f, -1e9f};
    for (const model::Vec3& point : File.Solids.at(solid)->Points) {
      const model::Vec3 p = model::PhyToModel(point);
      low = {std::min<float>(low.x, p.x), std::min<float>(low.y, p.y), std::min<float>(low.z, p.z)};
      high = {std::max<float>(high.x, p.x), std::max<float>(high.y, p.y), std::max<float>(high.z, p.z)};
    }
    return {low, high};
  }
};

#ifdef TARNWICK_HULLS
TEST(BuildPhysics, MakesOneTurnedHullWithDefaults) {
  PhysicsFixture fixture;
  SourceBuilder source;
  source.Box({0, 0, 0}, {10, 2, 4}).Box({20, 0, 0}, {30, 2, 4});
  fixture.Collision(source.Source, "folder/crate_phys.smd");
  fixture.Build();
  ASSERT_TRUE(fixture.Built);
  ASSERT_EQ(fixture.Values.Solids.size(), 1U);
  const model::PhySolidValues& solid = fixture.Values.Solids[0];
  EXPECT_EQ(solid.Name, "crate_phys");
  EXPECT_EQ(solid.SurfaceProp, "default");
  EXPECT_NEAR(solid.Volume, 30 * 2 * 4, 0.01);
  EXPECT_EQ(solid.Mass, 1);
  EXPECT_FALSE(fixture.Values.IsConcave);
  EXPECT_EQ(fixture.File.Solids[0]->Pieces.size(), 1U);
  const auto [low, high] = fixture.BoxOf(0);
  EXPECT_NEAR(low.x, -2, 1e-4);
  EXPECT_NEAR(high.y, 30, 1e-4);
  ASSERT_TRUE(fixture.Physics.Box.has_value());
  EXPECT_NEAR(float{(*fixture.Physics.Box)[0].x}, -2, 1e-4);
  EXPECT_THAT(fixture.Compile.Told, IsEmpty());
}
#endif

TEST(BuildPhysics, PartsConcaveMeshesByConnectionAndLeavesFlatSetsOut) {
  PhysicsFixture fixture;
  SourceBuilder source;
  source.Box({0, 0, 0}, {10, 2, 4}).Box({20, 0, 0}, {30, 2, 4});
  source.Triangle("box", {50, 0, 0}, {51, 0, 0}, {50, 1, 0});
  PlanCollision& collision = fixture.Collision(source.Source);
  collision.Concave = true;
  collision.Mass = 20;
  fixture.Build();
  ASSERT_TRUE(fixture.Built);
  EXPECT_EQ(fixture.File.Solids[0]->Pieces.size(), 2U);
  EXPECT_NEAR(fixture.Values.Solids[0].Volume, 160, 0.01);
  EXPECT_TRUE(fixture.Values.IsConcave);
  EXPECT_EQ(fixture.Values.TotalMass, 20);

  // A hard-edged mesh, each side a set of its own: all are flat, so there is one hull round all.
  PhysicsFixture hard;
  SourceBuilder box;
  box.Box({0, 0, 0}, {1, 1, 1});
  for (size_t i = 0; i < box.Source.Corners.size(); ++i) {
    const auto side = static_cast<float>(i / 6);
    box.Source.Corners[i].Normal = {side, 1, side * side};
  }
  hard.Collision(box.Source).Concave = true;
  hard.Build();
  ASSERT_TRUE(hard.Built);
  EXPECT_EQ(hard.File.Solids[0]->Pieces.size(), 1U);
  EXPECT_NEAR(hard.Values.Solids[0].Volume, 1, 1e-4);
}

TEST(BuildPhysics, KeepsClosedPiecesTriangleByTriangle) {
  PhysicsFixture fixture;
  fixture.Compile.Options.KeepValues = true;
  SourceBuilder source;
  source.Box({-1, -1, -1}, {1, 1, 1});
  fixture.Collision(source.Source);
  const model::RigidTransform pose = model::RigidTransform::Of(model::EulerAngles{0, 0, 0}, {5, 0, 0});
  fixture.Build(pose);
  ASSERT_TRUE(fixture.Built);
  const model::PhySolid& solid = *fixture.File.Solids[0];
  const auto& triangles = solid.Pieces[0].Triangles;
  ASSERT_EQ(triangles.size(), 12U);
  for (size_t t = 0; t < triangles.size(); ++t) {
    for (size_t k = 0; k < 3; ++k) {
      const model::Vec3 point = model::PhyToModel(solid.Points[triangles[t][k]]);
      EXPECT_NEAR(point.x, source.Source.Corners[3 * t + k].Position.X + 5, 1e-5) << "by the root's pose";
      EXPECT_NEAR(point.y, source.Source.Corners[3 * t + k].Position.Y, 1e-5);
    }
  }
}

#ifdef TARNWICK_HULLS
TEST(BuildPhysics, MakesJointsInTheOrderOfTheirStatements) {
  PhysicsFixture fixture;
  fixture.Compile.AddBone("arm", 0, {0, 0, 10});
  fixture.Compile.AddBone("hand", 1, {0, 0, 10});
  fixture.Compile.AddBone("leg", 0, {0, 0, -10});
  fixture.Compile.AddBone("foot", 3, {0, 0, -10});
  SourceBuilder source;
  source.Source.Nodes = {{"root", -1}, {"arm", 0}, {"hand", 1}, {"leg", 0}, {"foot", 3}};
  source.Box({-1, -1, -1}, {1, 1, 1}, "m", 0)
      .Box({-1, -1, 9}, {1, 1, 11}, "m", 1)
      .Box({-1, -1, 19}, {1, 1, 22}, "m", 2);
  source.Box({-1, -1, -11}, {1, 1, -9}, "m", 3).Box({-1, -1, -21}, {1, 1, -19}, "m", 4);
  PlanCollision& collision = fixture.Collision(source.Source);
  collision.Joints = true;
  collision.Mass = 44;
  collision.NamedBones = {"LEG", "hand"};
  collision.Merged = {{"leg", "foot"}};
  collision.Constraints = {{{}, "hand", 2, -30, 60, 5}, {{}, "foot", 0, -1, 1, 0}};
  collision.JointInertia = {{{}, "hand", 4}};
  collision.JointMassBias = {{{}, "hand", 2}};
  collision.RootBone = "Root";
  fixture.Build();
  ASSERT_TRUE(fixture.Built);
  std::vector<std::string> names, parents;
  for (const model::PhySolidValues& solid : fixture.Values.Solids) {
    names.push_back(solid.Name);
    parents.push_back(solid.Parent);
  }
  EXPECT_THAT(names, ElementsAre("root", "leg", "hand", "arm"));
  EXPECT_THAT(parents, ElementsAre("", "root", "arm", "root"));
  EXPECT_THAT(fixture.Physics.BoneSolids, ElementsAre(0, 3, 2, 1, 1));
  ASSERT_EQ(fixture.Values.Constraints.size(), 3U);
  const model::PhyConstraint& hand = fixture.Values.Constraints[1];
  EXPECT_EQ(hand.Parent, 3);
  EXPECT_EQ(hand.Child, 2);
  EXPECT_EQ(hand.Axes[2].Maximum, 60);
  EXPECT_EQ(hand.Axes[2].Friction, 1);
  EXPECT_EQ(fixture.Values.Constraints[0].Axes[0].Maximum, 1)
      << "the foot's statement is for the leg that it is part of";
  EXPECT_EQ(fixture.Values.Solids[2].Inertia, 4);
  EXPECT_EQ(fixture.Values.RootName, "Root");
  // The bodies' volumes are 8, 2 * 2 * 12, 12 and 8; the hand counts twice.
  EXPECT_NEAR(fixture.Values.Solids[2].Mass, 44.0 * 24 / 88, 1e-3);
  const auto [low, high] = fixture.BoxOf(2);
  EXPECT_NEAR(low.z, -1, 1e-4) << "in the space of the bone";
  EXPECT_NEAR(high.z, 2, 1e-4);
  EXPECT_EQ(fixture.File.Solids[2]->Pieces[0].BoneNumber, 3);
  EXPECT_FALSE(fixture.Physics.Box.has_value());
}
#endif

#ifdef TARNWICK_HULLS
TEST(BuildPhysics, LeavesBonesAloneWhoseDroppedChildrenStatementsName) {
  PhysicsFixture fixture;
  fixture.Compile.AddBone("arm", 0, {0, 0, 10});
  for (const char* dropped : {"hand", "thumb", "sleeve"}) fixture.Compile.Bones.AddDropped(dropped, 1, {});
  SourceBuilder source;
  source.Source.Nodes = {{"root", -1}, {"arm", 0}, {"hand", 1}, {"thumb", 1}, {"sleeve", 1}};
  source.Box({-1, -1, -1}, {1, 1, 1}, "m", 0).Box({-1, -1, 9}, {1, 1, 11}, "m", 1);
  source.Box({-1, -1, 19}, {1, 1, 21}, "m", 2).Box({-1, -1, 29}, {1, 1, 31}, "m", 3);
  source.Box({-1, -1, 39}, {1, 1, 41}, "m", 4);
  PlanCollision& collision = fixture.Collision(source.Source);
  collision.Joints = true;
  collision.Skipped = {"Hand", "foot"};
  collision.Merged = {{"root", "thumb"}, {"root", "toe"}};
  collision.Constraints = {{{}, "arm", 0, -10, 10, 0}, {{}, "hand", 0, 0, 0, 0}};
  fixture.Build();
  ASSERT_TRUE(fixture.Built);
  ASSERT_EQ(fixture.Values.Solids.size(), 2U);
  EXPECT_NEAR(fixture.BoxOf(0).second.z, 31, 1e-4) << "the thumb's triangles are the root's";
  EXPECT_NEAR(fixture.BoxOf(1).second.z, 31, 1e-4) << "the sleeve's are the arm's, in whose space they stand";
  EXPECT_NEAR(fixture.BoxOf(1).first.z, -1, 1e-4) << "the arm itself is not skipped";
  EXPECT_EQ(fixture.Values.Constraints[0].Axes[0].Maximum, 10) << "the hand's statement is not for the arm";
  EXPECT_THAT(fixture.Compile.Told, testing::UnorderedElementsAre(HasSubstr("$jointskip names the bone \"foot\""),
                                                                  HasSubstr("$jointmerge names the bone \"toe\""),
                                                                  HasSubstr("no body for the bone \"hand\"")));
}
#endif

TEST(BuildPhysics, TellsWhatCannotBeMade) {
  PhysicsFixture fixture;
  SourceBuilder source;
  source.Triangle("flat", {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  PlanCollision& collision = fixture.Collision(source.Source);
  collision.AutoMass = true;
  fixture.Build();
  EXPECT_FALSE(fixture.Built);
  EXPECT_EQ(fixture.Compile.Errors, 0U);
  EXPECT_THAT(fixture.Compile.Told, testing::IsSupersetOf({HasSubstr("$automass"), HasSubstr("no collision model")}));
}

TEST(CollisionText, StandsOnALineForEachBlock) {
  const std::vector<qc::KeyValue> entries = {
      {"break", {}, {}, true, {{"model", "gib.mdl", {}, false, {}}, {"health", "5", {}, false, {}}}}};
  EXPECT_EQ(FormatCollisionText(entries), "break {\"model\" \"gib.mdl\" \"health\" \"5\"  }\n");
}

}  // namespace
}  // namespace tarnwick::tests
