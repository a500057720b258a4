#include "compiler/face/build_face.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "compile_fixture.h"
#include "compiler/face/face_names.h"
#include "compiler/face/half_float.h"
#include "compiler/mesh/strip_groups.h"
#include "model/bone_math.h"
#include "qc/words.h"

namespace tarnwick::tests {
namespace {

using namespace compiler;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(HalfFloats, AreTheNearestAndComeBackFromEveryBitPattern) {
  for (uint32_t bits = 0; bits < 0x10000; ++bits) {
    const auto half = static_cast<uint16_t>(bits);
    const bool isFinite = (half & 0x7C00) != 0x7C00;
    if (!isFinite) continue;
    ASSERT_EQ(EncodeHalfFloat(double{model::DecodeHalfFloat(half)}), half) << bits;
  }
  EXPECT_EQ(EncodeHalfFloat(1e9), 0x7BFF);
  EXPECT_EQ(EncodeHalfFloat(-std::numeric_limits<double>::infinity()), 0xFBFF);
  EXPECT_EQ(EncodeHalfFloat(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(EncodeHalfFloat(2049), 0x6800) << "of two as near the even one";
  EXPECT_EQ(EncodeHalfFloat(2051), 0x6802);
  EXPECT_EQ(EncodeHalfFloat(2047.7), 0x6800) << "a carry into the exponent";
  EXPECT_EQ(EncodeHalfFloat(1e-12), 0);
}

/// The face of `text`, a rule, with the controllers `right_a`, `left_a` and `b`.
struct RuleFixture {
  CompileFixture Compile;
  BuiltFace Face;

  bool Add(std::string_view text) {
    qc::WordScanner scanner(text, 0);
    std::vector<qc::Word> words;
    for (qc::Word word; scanner.Next(word);) words.push_back(word);
    qc::Messages told;
    const qc::FlexRule rule = qc::ParseFlexRule(words, told);
    FaceNames names(Face);
    names.Descriptor("known");
    for (const char* name : {"right_a", "left_a", "b"}) names.AddController({"eyes", name, 0, 1});
    bool added = false;
    Compile.Run([&](CompileContext& context) { added = AddFlexRule(context, rule, names, Face); });
    return added;
  }
};

TEST(FlexRules, BecomeOperationsInTheOrderOfAStackMachine) {
  RuleFixture fixture;
  ASSERT_TRUE(fixture.Add("%smile = (b - 0.5) * -right_a / -2 + %Known"));
  RuleFixture functions;
  ASSERT_TRUE(functions.Add("%known = min(max(b, -(1)), 2)"));
  ASSERT_EQ(fixture.Face.Rules.size(), 1U);
  std::vector<std::pair<int32_t, int32_t>> operations;
  for (const BuiltFace* face : {&fixture.Face, &functions.Face}) {
    for (const model::StudioFlexOp& op : face->Rules.at(0).Operations) operations.emplace_back(op.Op, op.Operand);
  }
  const auto number = [](float value) { return std::pair{1, std::bit_cast<int32_t>(value)}; };
  EXPECT_THAT(operations,
              ElementsAre(std::pair{2, 2}, number(0.5f), std::pair{5, 0}, std::pair{2, 0}, std::pair{8, 0},
                          std::pair{6, 0}, number(-2), std::pair{7, 0}, std::pair{3, 0}, std::pair{4, 0},
                          std::pair{2, 2}, number(1), std::pair{8, 0}, std::pair{13, 0}, number(2), std::pair{14, 0}));
  EXPECT_THAT(fixture.Face.Descriptors, ElementsAre("known", "smile"));
  EXPECT_THAT(fixture.Compile.Told, IsEmpty());
}

TEST(FlexRules, TellNamesThatNothingDeclares) {
  RuleFixture fixture;
  EXPECT_FALSE(fixture.Add("%smile = rihgt_a"));
  EXPECT_THAT(fixture.Compile.Told, ElementsAre(AllOf(HasSubstr("no flexcontroller"), HasSubstr("right_a"))));
}

TEST(FlexControls, JoinRightAndLeft) {
  const auto controls = ControlsOf({{"e", "jaw", 0, 1}, {"e", "right_lid", 0, 1}, {"e", "left_lid", 0, 1}});
  ASSERT_EQ(controls.size(), 2U);
  EXPECT_EQ(controls[1].Name, "lid");
  EXPECT_EQ(controls[1].Controllers[0], 2);
  EXPECT_EQ(controls[1].Controllers[1], 1);
  EXPECT_EQ(controls[0].Controllers[1], -1);
}

/// Two triangles of two materials, and a shape file that numbers their corners in another order.
struct FaceFixture {
  CompileFixture Compile;
  BuiltMeshes Meshes;
  BuiltFace Face;
  smd::SmdSource Shapes;

  FaceFixture() {
    Shapes.Path = "face.vta";
    SourceBuilder source;
    source.Triangle("skin", {5, 0, 0}, {6, 0, 0}, {5, 1, 0}).Triangle("skin", {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    source.Triangle("eye_white", {0, 9, 0}, {1, 9, 0}, {0, 9, 1});
    Compile.AddModel(source.Source);
    Shapes.Shapes.resize(1);
    const smd::Triple rest[] = {{1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {-2, 0, 0}, {0, 9, 0}};
    int32_t number = 0;
    for (const smd::Triple& place : rest) Shapes.Shapes[0].Vertices.push_back({number++, place, {0, 0, 1}});
  }
  void AddShape(int32_t time, std::vector<smd::ShapeVertex> vertices) { Shapes.Shapes.push_back({time, vertices}); }
  PlanModel& Model() { return Compile.Plan.BodyParts[0].Models[0]; }
  PlanFlexFile FlexFile(std::vector<PlanShape> shapes) {
    return {{}, Compile.AddSource(Shapes, "face.vta").Source, std::move(shapes)};
  }
  void Build() {
    Compile.Run([&](CompileContext& context) {
      BuildMeshes(context, Compile.Bones, Meshes);
      BuildFace(context, Compile.Bones, Meshes, Face);
    });
  }
};

PlanShape Shape(const std::string& name, int32_t frame) {
  PlanShape shape;
  shape.Name = name;
  shape.Frame = frame;
  return shape;
}

TEST(BuildFace, MatchesShapesToVerticesAndPartsTheTrianglesThatMove) {
  FaceFixture fixture;
  fixture.AddShape(3, {{2, {0, 1, 4}, {0, 0, 1}},
                       {1, {0, 0, 1}, {0, 0.5f, 1}},
                       {4, {0.5f, 9, 0}, {0, 0, 1}},
                       {7, {0, 0, 0}, {0, 0, 1}}});
  fixture.Model().Face.push_back(fixture.FlexFile({Shape("smile", 3)}));
  fixture.Build();
  EXPECT_THAT(fixture.Compile.Told, ElementsAre(HasSubstr("1 vertex of \"face.vta\" has no vertex of the mesh"),
                                                HasSubstr("1 vertex of frame 3 of \"face.vta\" is not in")));
  EXPECT_THAT(fixture.Face.Descriptors, ElementsAre("smile"));
  ASSERT_EQ(fixture.Face.Models.size(), 1U);
  const auto& flexes = fixture.Face.Models[0].MeshFlexes;
  ASSERT_EQ(flexes.size(), 2U);
  ASSERT_EQ(flexes[0].size(), 1U);
  ASSERT_EQ(flexes[1].size(), 1U) << "the shape moves the eye too";
  const BuiltFlex& flex = flexes[0][0];
  ASSERT_EQ(flex.VertAnims.size(), 2U);
  // Vertices stand in the order of the shape file: 1 0 0, 0 0 0, 0 1 0, then those that it does not have.
  EXPECT_EQ(flex.VertAnims[0].Vertex, 1);
  EXPECT_EQ(flex.VertAnims[1].Vertex, 2);
  EXPECT_EQ(flex.VertAnims[0].PositionDelta.Words[2], EncodeHalfFloat(1));
  EXPECT_EQ(flex.VertAnims[0].NormalDelta.Words[1] != 0, true);
  EXPECT_EQ(flex.VertAnims[1].PositionDelta.Words[2], EncodeHalfFloat(4));
  EXPECT_EQ(flex.VertAnims[0].Speed, 63);
  EXPECT_EQ(flex.VertAnims[1].Speed, 255);
  EXPECT_EQ(float{flex.Record.Targets[1]}, 1);
  EXPECT_EQ(float{flex.Record.Targets[3]}, 11);
  const auto& groups = fixture.Meshes.Triangles[0][0].Lods[0].Meshes[0].Groups;
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].Flags, 7);
  EXPECT_EQ(TrianglesOf(groups)[0][0], 1) << "the triangle that moves stands first";
}

TEST(BuildFace, SplitsAPairAcrossTheFaceAndChainsPlaces) {
  FaceFixture fixture;
  fixture.AddShape(1, {{0, {1, 0, 2}, {0, 0, 1}}, {1, {0, 0, 2}, {0, 0, 1}}});
  PlanShape pair = Shape("brow", 1), half = Shape("Lip", 1), whole = Shape("lip", 1);
  pair.What = PlanShape::Kind::Pair;
  pair.Split = 1;
  half.Position = 0.5f;
  fixture.Model().Face.push_back(fixture.FlexFile({pair, half}));
  fixture.Model().Face.push_back(fixture.FlexFile({whole}));  // of one flex, whichever file its shapes are of
  fixture.Build();
  EXPECT_THAT(fixture.Face.Descriptors, ElementsAre("browR", "browL", "Lip"));
  const auto& flexes = fixture.Face.Models[0].MeshFlexes[0];
  ASSERT_EQ(flexes.size(), 3U);
  EXPECT_EQ(int32_t{flexes[0].Record.FlexDesc}, 0);
  EXPECT_EQ(int32_t{flexes[0].Record.Partner}, 1);
  EXPECT_EQ(flexes[0].VertAnims[0].Side, 255) << "at x = 1";
  EXPECT_EQ(flexes[0].VertAnims[1].Side, 128) << "at x = 0";
  const auto targets = [](const BuiltFlex& flex) {
    return std::vector<float>{flex.Record.Targets[0], flex.Record.Targets[1], flex.Record.Targets[2],
                              flex.Record.Targets[3]};
  };
  EXPECT_THAT(targets(flexes[1]), ElementsAre(0, 0.5f, 0.5f, 1));
  EXPECT_THAT(targets(flexes[2]), ElementsAre(0.5f, 1, 10, 11));
}

TEST(BuildFace, BeginsAPairWithTheSideThatWasSaidFirst) {
  FaceFixture fixture;
  fixture.AddShape(1, {{0, {1, 0, 2}, {0, 0, 1}}, {1, {0, 0, 2}, {0, 0, 1}}});
  PlanShape pair = Shape("brow", 1);
  pair.What = PlanShape::Kind::Pair;
  pair.Split = 1;
  fixture.Model().Face.push_back(PlanLocalVars{{}, {"spare", "browL"}});
  fixture.Model().Face.push_back(fixture.FlexFile({pair}));
  fixture.Build();
  EXPECT_THAT(fixture.Face.Descriptors, ElementsAre("spare", "browL", "browR"));
  const BuiltFlex& flex = fixture.Face.Models[0].MeshFlexes[0].at(0);
  EXPECT_EQ(int32_t{flex.Record.FlexDesc}, 1);
  EXPECT_EQ(int32_t{flex.Record.Partner}, 2);
  EXPECT_EQ(flex.VertAnims[0].Side, 0) << "at x = 1, which is the left one's";
}

TEST(BuildFace, MakesEyesLidsAndMouths) {
  FaceFixture fixture;
  fixture.Compile.AddBone("head", 0, {0, 0, 60});
  fixture.AddShape(1, {{1, {-0.5f, 0, -1}, {0, 0, 1}}, {0, {1, 0, -1}, {0, 0, 1}}});
  fixture.Shapes.Shapes.push_back({2, {{1, {0, 0, 1}, {0, 0, 1}}}});
  const int32_t source = fixture.FlexFile({}).Source;
  PlanModel& model = fixture.Model();
  model.Face.push_back(PlanEyelid{{}, "upper_right", source, 1, 0, 2, -0.2f, 0.1f, 0.3f, 0.1f, "righteye"});
  model.Face.push_back(PlanEyeball{{}, "righteye", "head", {1, -2, 64}, "Eye_White", 1, 4, "iris", 0.5f});
  model.Face.push_back(PlanMouth{{}, 1, "upper_right", "head", {1, 0, 0}});
  model.Face.push_back(PlanMouth{{}, 0, "upper_right", "head", {0, 1, 0}});
  fixture.Compile.Plan.RenamedMaterials = {{"eye_white", "sclera"}};
  fixture.Build();
  EXPECT_EQ(fixture.Compile.Errors, 0U);
  ASSERT_EQ(fixture.Face.Models[0].Eyeballs.size(), 1U);
  const model::StudioEyeball eye = fixture.Face.Models[0].Eyeballs[0];
  EXPECT_EQ(int32_t{eye.Bone}, 1);
  EXPECT_EQ(float{eye.Origin.z}, 4);
  EXPECT_NEAR(float{eye.ForwardOffset}, 0.0699f, 1e-4f);
  EXPECT_EQ(float{eye.Radius}, 0.5f);
  EXPECT_EQ(float{eye.IrisScale}, 2);
  EXPECT_EQ(float{eye.UpperTarget[2]}, 0.3f);
  EXPECT_EQ(fixture.Face.Descriptors[static_cast<size_t>(eye.UpperLidFlexDesc)], "upper_right");
  EXPECT_EQ(fixture.Meshes.BodyParts[0].Models[0].Meshes[1].Eyeball, 0);
  const auto& flexes = fixture.Face.Models[0].MeshFlexes[0];
  ASSERT_EQ(flexes.size(), 2U);
  EXPECT_EQ(float{flexes[0].Record.Targets[0]}, -11);
  EXPECT_EQ(float{flexes[0].Record.Targets[3]}, 0.1f);
  EXPECT_EQ(flexes[0].VertAnims.size(), 1U) << "a corner beyond the split stays";
  EXPECT_EQ(float{flexes[1].Record.Targets[1]}, 0.3f);
  ASSERT_EQ(fixture.Face.Mouths.size(), 2U);
  EXPECT_EQ(float{fixture.Face.Mouths[0].Forward.y}, 1) << "a mouth's number is its place";
}

TEST(BuildFace, TellsFramesBonesAndEyesThatAreNotThere) {
  FaceFixture fixture;
  fixture.AddShape(1, {{0, {1, 0, 2}, {0, 0, 1}}});
  fixture.Model().Face.push_back(fixture.FlexFile({Shape("smile", 7), Shape("frown", 1), Shape("lip", 8)}));
  fixture.Model().Face.push_back(PlanMouth{{}, 0, "smile", "haed", {0, 1, 0}});
  fixture.Model().Face.push_back(PlanEyelid{{}, "lower_right", 0, 0, 0, 0, 0, 0, 0, 0, ""});
  fixture.Model().Face.push_back(PlanEyelid{{}, "upper_right", 0, 0, 0, 0, 0, 0, 0, 0, "righteye"});
  fixture.Build();
  EXPECT_EQ(fixture.Compile.Errors, 5U);
  EXPECT_THAT(fixture.Compile.Told,
              testing::IsSupersetOf({HasSubstr("no frame 7; its last is 1"), HasSubstr("no frame 8"),
                                     HasSubstr("no bone \"haed\""), HasSubstr("\"lower_right\" names no eyeball"),
                                     HasSubstr("\"righteye\", which the model does not have")}));
  EXPECT_THAT(fixture.Face.Descriptors, testing::Contains("frown")) << "one wrong line does not hide the next";
}

}  // namespace
}  // namespace tarnwick::tests
