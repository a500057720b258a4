#include "view/scene/face.h"

#include "model/face_records.h"
#include "scene_support.h"

namespace tarnwick::view {
namespace {

using namespace tests;
using model::StudioFlexOp;
using testing::ElementsAre;
using testing::FloatNear;

/// A model with one flex for each of these rules.
BuiltScene FaceOf(std::vector<std::vector<StudioFlexOp>> rules) {
  ModelBuilder model;
  model.FlexControllers = {{.Name = "smile", .Minimum = 0, .Maximum = 1},
                           {.Name = "brow", .Minimum = 0.5f, .Maximum = 2}};
  for (size_t i = 0; i < rules.size(); ++i) {
    model.FlexDescs.push_back("flex" + std::to_string(i));
    model.FlexRules.push_back({static_cast<int32_t>(i), rules[i]});
  }
  return BuiltScene(model);
}

TEST(Face, RulesAreCalculated) {
  const StudioFlexOp smile{model::FlexOpController, 0};
  const StudioFlexOp brow{model::FlexOpController, 1};
  const StudioFlexOp four = Constant(4);
  const auto with = [&](int32_t op) { return std::vector<StudioFlexOp>{smile, four, {op, 0}}; };
  const BuiltScene scene = FaceOf({{smile},
                                   with(model::FlexOpAdd),
                                   with(model::FlexOpSubtract),
                                   with(model::FlexOpMultiply),
                                   with(model::FlexOpDivide),
                                   with(model::FlexOpLarger),
                                   with(model::FlexOpSmaller),
                                   {smile, {model::FlexOpNegate, 0}},
                                   {{model::FlexOpFlexDesc, 1}, {model::FlexOpFlexDesc, 0}, {model::FlexOpAdd, 0}},
                                   {brow},
                                   {four, Constant(0), {model::FlexOpDivide, 0}}});
  const auto near = [](float value) { return FloatNear(value, 1e-6f); };
  EXPECT_THAT(FlexWeights(*scene, std::vector<float>{0.5f}),
              ElementsAre(near(0.5f), near(4.5f), near(-3.5f), near(2), near(0.125f), near(4), near(0.5f), near(-0.5f),
                          near(5), near(0.5f), near(0)));
}

TEST(Face, RulesThatAreNotSoundGiveNothing) {
  const StudioFlexOp add{model::FlexOpAdd, 0};
  std::vector<StudioFlexOp> tall;
  for (int i = 0; i < 200; ++i) tall.push_back(Constant(1));
  const BuiltScene scene = FaceOf({{},
                                   {Constant(1), add},
                                   {{model::FlexOpController, 99}},
                                   {{model::FlexOpController, -1}},
                                   {{model::FlexOpFlexDesc, 1 << 20}},
                                   {Constant(1), {77, 0}},
                                   {Constant(3e38f), Constant(3e38f), {model::FlexOpMultiply, 0}},
                                   tall,
                                   {{model::FlexOpNegate, 0}},
                                   {Constant(2)}});
  EXPECT_THAT(FlexWeights(*scene, {}), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0, 2));
}

/// A triangle whose corner 1 is moved by these flexes.
Scene FlexedScene(std::vector<FlexDescription> flexes) {
  ModelBuilder model;
  model.FlexDescs = {"none", "left", "right"};
  model.BodyParts[0].Models[0].Meshes[0].Flexes = std::move(flexes);
  BuiltScene scene(model);
  EXPECT_THAT(scene.Told.Texts(), testing::IsEmpty());
  return std::move(*scene.Made);
}

TEST(Face, ShapesMoveTheirVertices) {
  const VertAnimDescription up{.Vertex = 1, .PositionDelta = {0, 0, 2}, .NormalDelta = {1, 0, 0}};
  const Scene scene = FlexedScene({{.FlexDesc = 1, .VertAnims = {up}}});
  EXPECT_EQ(FlexedRange(scene), (PointRange{1, 1}));
  EXPECT_TRUE(scene.Draws[0].IsFlexed);
  std::vector<ScenePoint> points;
  FlexPoints(scene, std::vector<float>{0, 0.5f, 0}, points);
  EXPECT_THAT(points[1].Position, Is(1, 0, 1));
  EXPECT_THAT(points[1].Normal, Is(0.4472, 0, 0.8944));
  EXPECT_THAT(points[2].Position, Is(0, 1, 0));
  FlexPoints(scene, std::vector<float>{0, 1, 0}, points);
  EXPECT_THAT(points[1].Position, Is(1, 0, 2)) << "a second call begins anew";
  FlexPoints(scene, {}, points);
  EXPECT_THAT(points[1].Position, Is(1, 0, 0));
  EXPECT_THAT(points[1].Normal, Is(0, 0, 1));
}

TEST(Face, ShapesRiseAndFallWithTheirTargets) {
  const Scene scene = FlexedScene(
      {{.FlexDesc = 1, .VertAnims = {{.Vertex = 1, .PositionDelta = {0, 0, 1}}}, .Targets = {0, 0.25f, 0.5f, 1}}});
  std::vector<ScenePoint> points;
  for (const auto& [weight, height] :
       {std::pair{-0.5f, 0.0f}, {0.125f, 0.5f}, {0.4f, 1.0f}, {0.75f, 0.5f}, {1.5f, 0.0f}}) {
    FlexPoints(scene, std::vector<float>{0, weight, 0}, points);
    EXPECT_NEAR(points[1].Position.Z, height, 1e-5f) << weight;
  }
}

TEST(Face, PairsWeighTheirVerticesBySide) {
  const Scene scene = FlexedScene({{.FlexDesc = 1,
                                    .VertAnims = {{.Vertex = 0, .PositionDelta = {0, 0, 1}, .Side = 0},
                                                  {.Vertex = 1, .PositionDelta = {0, 0, 1}, .Side = 51},
                                                  {.Vertex = 2, .PositionDelta = {0, 0, 1}, .Side = 255}},
                                    .Partner = 2}});
  std::vector<ScenePoint> points;
  FlexPoints(scene, std::vector<float>{0, 1, 0.5f}, points);
  EXPECT_NEAR(points[0].Position.Z, 1, 1e-5);
  EXPECT_NEAR(points[1].Position.Z, 0.9, 1e-5);
  EXPECT_NEAR(points[2].Position.Z, 0.5, 1e-5);
}

}  // namespace
}  // namespace tarnwick::view
