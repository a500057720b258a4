#include <gmock/gmock.h>

#include "decompiled_model.h"
#include "decompiler/writers/flex_expression.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Expression(const std::vector<StudioFlexOp>& ops, size_t mostBytes = 1 << 20) {
  const std::vector<std::string_view> controllers = {"smile", "jaw drop"}, flexes = {"lip", "a-b"};
  const FlexExpression made =
      MakeFlexExpression({ops.data(), 0, static_cast<int64_t>(ops.size())}, {controllers, flexes}, mostBytes);
  return made.Problem.empty() ? made.Text : "? " + made.Problem;
}

constexpr StudioFlexOp Smile = {FlexOpController, 0}, Jaw = {FlexOpController, 1}, Lip = {FlexOpFlexDesc, 0},
                       Odd = {FlexOpFlexDesc, 1}, Add = {FlexOpAdd, 0}, Subtract = {FlexOpSubtract, 0},
                       Multiply = {FlexOpMultiply, 0}, Divide = {FlexOpDivide, 0}, Negate = {FlexOpNegate, 0},
                       Larger = {FlexOpLarger, 0}, Smaller = {FlexOpSmaller, 0};

TEST(FlexExpression, HasTheParenthesesThatTheOrderNeeds) {
  EXPECT_EQ(Expression({Smile, Lip, Add, Constant(-0.1f), Multiply}), "(smile + %lip) * -0.1");
  EXPECT_EQ(Expression({Smile, Lip, Smile, Subtract, Subtract}), "smile - (%lip - smile)");
  EXPECT_EQ(Expression({Smile, Lip, Subtract, Smile, Subtract}), "smile - %lip - smile");
  EXPECT_EQ(Expression({Smile, Lip, Smile, Multiply, Divide}), "smile / (%lip * smile)");
  EXPECT_EQ(Expression({Smile, Lip, Smile, Multiply, Add, Negate}), "-(smile + %lip * smile)");
  EXPECT_EQ(Expression({Smile, Negate, Constant(2), Negate, Constant(-2), Negate, Add, Multiply}),
            "-smile * (-(2) + -(-2))");
  EXPECT_EQ(Expression({Smile, Lip, Add, Odd, Larger, Jaw, Smaller, Constant(2), Divide}),
            "min(max(smile + %lip, \"%a-b\"), \"jaw drop\") / 2");
}

TEST(FlexExpression, TellsWhyAProgramIsNone) {
  EXPECT_EQ(Expression({}), "? it is empty");
  EXPECT_EQ(Expression({Smile, Add}), "? an operation lacks its values");
  EXPECT_EQ(Expression({Smile, Smile}), "? it leaves 2 values");
  EXPECT_EQ(Expression({{FlexOpController, 7}}), "? it names controller 7, which is not there");
  EXPECT_EQ(Expression({{FlexOpFlexDesc, -1}}), "? it names flex -1, which is not there");
  EXPECT_EQ(Expression({Smile, {99, 0}}), "? operation 99 has no sign");
  EXPECT_EQ(Expression({Constant(std::numeric_limits<float>::infinity())}), "? it holds a number that is not finite");
}

TEST(FlexExpression, IsAsLongAsItsBoundAndAsDeepAsAReaderGoes) {
  std::vector<StudioFlexOp> sum = {Smile}, deep = {Smile};
  for (int i = 0; i < 50'000; ++i) sum.insert(sum.end(), {Lip, Add});
  for (int i = 0; i < 200; ++i) deep.insert(deep.end(), {Constant(2), Add, Negate});
  EXPECT_EQ(Expression(sum).size(), 5 + 50'000 * std::string(" + %lip").size());
  EXPECT_THAT(Expression(sum, 1000), HasSubstr("? it is longer than"));
  EXPECT_EQ(Expression(deep), "? it is nested too deep");
}

/// A head with a vertex on each side of the middle and one in the band between, and what moves it.
ModelBuilder Head() {
  ModelBuilder model;
  model.Textures = {"skin", "white_r", "white_l"};
  model.SkinFamilies = {{0, 1, 2}};
  model.FlexDescs = {"upper_right", "smileR", "smileL", "open", "spare", "lower_right"};
  MeshDescription skin;
  skin.Vertices[0].Position = {-2, 0, 0};
  skin.Vertices[1].Position = {2, 0, 0};
  skin.Vertices[2].Position = {0.25f, 1, 0};
  const auto moved = [](uint8_t right, uint8_t left, uint8_t middle) {
    std::vector<VertAnimDescription> anims;
    const uint8_t sides[] = {right, left, middle};
    for (int16_t i = 0; i < 3; ++i) anims.push_back({.Vertex = i, .PositionDelta = {0, 0, 1}, .Side = sides[i]});
    return anims;
  };
  skin.Flexes = {{.FlexDesc = 0, .Targets = {-11, -10, -0.5f, 0.25f}},
                 {.FlexDesc = 0, .Targets = {0.25f, 0.75f, 10, 11}},
                 // Half a unit to either side: at 0.25 three quarters of the way, 27 / 32 of a smooth step.
                 {.FlexDesc = 1, .VertAnims = moved(0, 255, 215), .Partner = 2},
                 {.FlexDesc = 3, .Targets = {0, 0.5f, 0.5f, 1}},
                 {.FlexDesc = 3, .Targets = {0.5f, 1, 10, 11}}};
  for (FlexDescription& flex : skin.Flexes) {
    if (flex.Partner == 0) flex.VertAnims = {{.Vertex = 0, .PositionDelta = {0, 0, 1}}};
  }
  model.BodyParts[0].Models[0] = {.Name = "head.smd",
                                  .Meshes = {skin, {.Material = 2, .Eyeball = 1}, {.Material = 1, .Eyeball = 0}}};
  EyeballDescription right{.Origin = {-1, -3, 60},
                           .Radius = 0.55f,
                           .IrisScale = 1.6f,
                           .UpperTarget = {-0.5f, 0.25f, 0.75f},
                           .UpperLidFlexDesc = 0,
                           .LowerLidFlexDesc = 5};
  EyeballDescription left = right;
  left.Origin.x = 1;
  left.UpperLidFlexDesc = left.LowerLidFlexDesc = 4;
  model.BodyParts[0].Models[0].Eyeballs = {right, left};
  return model;
}

TEST(FaceSources, SayEachShapeWithItsPlaceSplitAndLid) {
  const DecompiledModel run(Head(), DecompileOptionReadyToCompile);
  EXPECT_EQ(run.MeshCommands(),
            "$model \"body\" \"head.smd\" {\n"
            // A compile numbers names as they come; of these the first is a lid's.
            "    localvar \"upper_right\"\n"
            "    localvar \"smileR\"\n"
            "    localvar \"smileL\"\n"
            "    localvar \"open\"\n"
            "    localvar \"spare\"\n"
            "    localvar \"lower_right\"\n"
            "    flexfile \"ravelback_expressions.vta\" {\n"
            "      defaultflex frame 0\n"
            "      flexpair \"smile\" 0.5 frame 3\n"
            "      flex \"open\" frame 4 position 0.5\n"
            "      flex \"open\" frame 5\n"
            "    }\n"
            "    eyeball \"righteye\" \"root\" -1 -3 60 \"white_r\" 1.1 0 \"white_r\" 0.625\n"
            "    eyeball \"lefteye\" \"root\" 1 -3 60 \"white_l\" 1.1 0 \"white_l\" 0.625\n"
            "    eyelid \"upper_right\" \"ravelback_expressions.vta\" lowerer 1 -0.5 neutral 0 0.25 raiser 2 0.75 "
            "split 0.1 eyeball \"righteye\"\n"
            "    eyelid \"lower_right\" \"ravelback_expressions.vta\" lowerer 0 -0.5 neutral 0 0 raiser 0 0.5 "
            "split 0.1 eyeball \"righteye\"\n"
            "    eyelid \"spare\" \"ravelback_expressions.vta\" lowerer 0 -0.5 neutral 0 0.25 raiser 0 0.75 "
            "split -0.1 eyeball \"lefteye\"\n"
            "    eyelid \"spare\" \"ravelback_expressions.vta\" lowerer 0 -0.5 neutral 0 0 raiser 0 0.5 "
            "split -0.1 eyeball \"lefteye\"\n"
            "}\n");
  EXPECT_THAT(run.Result.Lost, IsEmpty());
  EXPECT_THAT(run.File("ravelback_expressions.vta"), HasSubstr("time 5 // open\n"));
}

TEST(FaceSources, HaveTheSharedPartOnceInTheLastFaceAndTellWhatNoRuleSays) {
  ModelBuilder model = Head();
  const BodyPartDescription head = model.BodyParts[0];
  model.BodyParts = {head,
                     {.Name = "teeth", .Models = {{.Name = "teeth.smd", .Meshes = {head.Models[0].Meshes[0]}}}},
                     {.Name = "hat", .Models = {{.Name = "hat.smd"}}}};
  model.FlexControllers = {
      {"mouth", "right_smile", 0, 1}, {"mouth", "left_smile", 0, 1}, {"eyelid", "blink", -1, 0.1f}};
  model.FlexRules = {{1, {Smile}}, {4, {Smile, {42, 0}}}, {3, {{FlexOpController, 2}, Constant(0.3f), Multiply}}};
  model.Mouths = {{.Bone = 0, .Forward = {0, 1, 0}, .FlexDesc = 3}, {.Bone = 9}};
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  const std::string script = run.Script();
  const std::string shared =
      "    mouth 0 \"open\" \"root\" 0 1 0\n"
      "    flexcontroller \"mouth\" \"right_smile\" \"left_smile\" range 0 1\n"
      "    flexcontroller \"eyelid\" \"blink\" range -1 0.1\n"
      "    %smileR = right_smile\n"
      "    // the rule of \"spare\" is left out, since operation 42 has no sign\n"
      "    %open = blink * 0.3\n"
      "}\n$body \"hat\" \"hat.smd\"\n";
  EXPECT_THAT(script, HasSubstr(shared));
  EXPECT_EQ(script.find("mouth 0"), script.rfind("mouth 0"));
  EXPECT_THAT(run.Result.Lost, Contains(LostKind{"face rules that no expression says", 1}));
  EXPECT_THAT(run.Result.Lost, Contains(LostKind{"mouths whose bone or flex is not there", 1}));
}

TEST(FaceSources, SayNamesAheadOfALaterFaceThatWouldNumberThemOtherwise) {
  ModelBuilder model;
  model.FlexDescs = {"smile", "spare", "frown", "last"};
  const auto body = [](const std::string& name, int32_t flex) {
    MeshDescription mesh;
    mesh.Flexes = {{.FlexDesc = flex, .VertAnims = {{.Vertex = 0, .PositionDelta = {0, 0, 1}}}}};
    return BodyPartDescription{.Name = name, .Models = {{.Name = name + ".smd", .Meshes = {mesh}}}};
  };
  model.BodyParts = {body("head", 0), body("teeth", 0), body("tongue", 2)};
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  const std::string commands = run.MeshCommands();
  EXPECT_THAT(commands, HasSubstr("$model \"head\" \"head.smd\" {\n    flexfile"));
  EXPECT_THAT(commands, HasSubstr("$model \"teeth\" \"teeth.smd\" {\n    flexfile"));
  EXPECT_THAT(commands, HasSubstr("$model \"tongue\" \"tongue.smd\" {\n    localvar \"spare\"\n    localvar "
                                  "\"frown\"\n    localvar \"last\"\n    flexfile"));
}

TEST(FaceSources, SplitNoVertexOfALidOff) {
  ModelBuilder model = Head();
  std::vector<FlexDescription>& flexes = model.BodyParts[0].Models[0].Meshes[0].Flexes;
  flexes[1].VertAnims.push_back({.Vertex = 1, .PositionDelta = {0, 0, 1}});
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(run.Script(), HasSubstr("raiser 2 0.75 split 2.1 eyeball \"righteye\"\n"));
}

TEST(FaceSources, HaveTheSharedPartWhereAMeshIsShownAgain) {
  ModelBuilder model;
  model.BodyParts = {{.Name = "one", .Models = {{.Name = "cube.smd"}}},
                     {.Name = "two", .Models = {{.Name = "cube.smd"}}}};
  model.FlexControllers = {{"eyelid", "blink", 0, 1}};
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(run.Script(), HasSubstr("$body \"one\" \"cube.smd\"\n$model \"two\" \"cube.smd\" {\n"
                                      "    flexcontroller \"eyelid\" \"blink\" range 0 1\n}\n"));
  EXPECT_THAT(run.Result.Lost, IsEmpty());
}

TEST(FaceSources, CountWhatTheirLinesDoNotSay) {
  ModelBuilder model = Head();
  std::vector<FlexDescription>& flexes = model.BodyParts[0].Models[0].Meshes[0].Flexes;
  flexes[2].VertAnims[2].Side = 128;
  flexes[2].VertAnims[0].Speed = 3;
  flexes[3].Targets = {0.1f, 0.5f, 0.5f, 1};
  flexes[4].Wrinkles = true;
  model.BodyParts[0].Models[0].Eyeballs[0].Forward = {1, 0, 0};
  model.BodyParts[0].Models[0].Meshes[1].Eyeball = -1;
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  for (const char* kind :
       {"pairs of flexes whose sides no split gives", "flexes whose wrinkles have no statement",
        "flexes whose speeds do not follow from their moves", "directions of eyes",
        "flexes that come and go at other weights than their places say", "eyes that no mesh or no bone belongs to"}) {
    EXPECT_THAT(run.Result.Lost, Contains(LostKind{kind, 1}));
  }
}

}  // namespace
}  // namespace tarnwick::decompiler
