#include "decompiler/plain/face.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "decompiled_model.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

/// Two meshes of three vertices, and the descriptors d0 to d4.
ModelBuilder Face() {
  ModelBuilder model;
  model.FlexDescs = {"d0", "d1", "smileR", "smileL", "d4"};
  model.BodyParts[0].Models[0].Meshes = {MeshDescription{}, MeshDescription{}};
  model.Mouths = {{.Bone = 0, .Forward = {0, 1, 0}, .FlexDesc = 4}};
  return model;
}

std::vector<MeshDescription>& Meshes(ModelBuilder& model) {
  return model.BodyParts[0].Models[0].Meshes;
}

TEST(FlexExport, CountsFramesByDescriptorsEyelidsFirst) {
  ModelBuilder model = Face();
  model.BodyParts[0].Models[0].Eyeballs = {{.UpperLidFlexDesc = 1, .LowerLidFlexDesc = 1}};
  // Descriptor 1 has its frame from the lids; only the first mesh is still asked for it.
  Meshes(model)[0].Flexes = {{.FlexDesc = 2, .Partner = 3}};
  Meshes(model)[1].Flexes = {{.FlexDesc = 1}, {.FlexDesc = 4}, {.FlexDesc = 4}, {.FlexDesc = 2}};
  const DecompiledModel run(model);
  EXPECT_THAT(run.MeshCommands(), HasSubstr("     flexfile \"ravelback_expressions.vta\" {\n"
                                            "          flexpair \"smile\" 1.0 frame 3\n"
                                            "          flex \"d4\" frame 4\n"
                                            "     }\n"));
  EXPECT_THAT(run.MeshCommands(), HasSubstr("upper_right \"ravelback_expressions.vta\" lowerer 2 -0.500000"));

  Meshes(model)[0].Flexes = {{.FlexDesc = 1}};
  EXPECT_THAT(DecompiledModel(model).MeshCommands(), HasSubstr("          flex \"d1\" frame 3\n"));
}

TEST(FlexExport, WritesTheVertexAnimation) {
  ModelBuilder model = Face();
  model.Bones = {{.Name = "root"}, {.Name = "head", .Parent = 0, .Position = {0, 0, 2}, .Angles = {0, 0, 1}}};
  Meshes(model)[0].Flexes = {{.FlexDesc = 4, .VertAnims = {{.Vertex = 2, .PositionDelta = {0.5f, 0, -1}}}}};
  Meshes(model)[1].Flexes = {{.FlexDesc = 4, .VertAnims = {{.Vertex = 1, .NormalDelta = {0, 0, -0.5f}}}}};
  const DecompiledModel run(model);
  const std::string bones =
      "  0 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000\n"
      "  1 0.000000 0.000000 2.000000 0.000000 0.000000 1.000000\n";
  EXPECT_EQ(run.File("ravelback_expressions.vta"),
            "version 1\nnodes\n  0 \"root\" -1\n  1 \"head\" 0\nend\nskeleton\ntime 0\n" + bones + "time 1\n" + bones +
                "end\nvertexanimation\ntime 0\n"
                "    0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000\n"
                "    1 1.000000 0.000000 0.000000 0.000000 0.000000 1.000000\n"
                "    2 0.000000 1.000000 0.000000 0.000000 0.000000 1.000000\n"
                "    3 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000\n"
                "    4 1.000000 0.000000 0.000000 0.000000 0.000000 1.000000\n"
                "    5 0.000000 1.000000 0.000000 0.000000 0.000000 1.000000\n"
                "time 1 // d4\n"
                "    2 0.500000 1.000000 -1.000000 0.000000 0.000000 1.000000\n"
                "    4 1.000000 0.000000 0.000000 0.000000 0.000000 0.500000\n"
                "end\n");
  EXPECT_THAT(run.Report.LogText, HasSubstr("ravelback.qc\r\nCreating ravelback_expressions.vta\r\nCreating "));
}

TEST(FlexExport, TheFirstEyeIsTheRightOneAndAllOthersAreLeft) {
  ModelBuilder model = Face();
  model.Textures = {"skin", "eye"};
  model.Mouths.clear();
  const EyeballDescription eye = {.Origin = {1, 2, 3},
                                  .ForwardOffset = 1,
                                  .Radius = 0.75f,
                                  .Texture = 1,
                                  .IrisScale = 4,
                                  .UpperLidFlexDesc = 0,
                                  .LowerLidFlexDesc = 4};
  model.BodyParts[0].Models[0].Eyeballs = {eye, eye, eye};
  EXPECT_THAT(
      DecompiledModel(model).MeshCommands(),
      HasSubstr(
          "     eyeball righteye root 1.000 2.000 3.000 eyeball_r 1.500  45.000 eye 0.250\n"
          "     eyeball lefteye root 1.000 2.000 3.000 eyeball_l 1.500  45.000 eye 0.250\n"
          "     eyeball lefteye root 1.000 2.000 3.000 eyeball_l 1.500  45.000 eye 0.250\n"
          "      eyelid  upper_right \"ravelback_expressions.vta\" lowerer 3 -0.500000 neutral 0 0.000000 raiser 3 "
          "0.500000 split 0.1 eyeball righteye\n"
          "      eyelid  lower_right \"ravelback_expressions.vta\" lowerer 6 -0.500000 neutral 0 0.000000 raiser 6 "
          "0.500000  split 0.1 eyeball righteye\n"
          "      eyelid  upper_left \"ravelback_expressions.vta\" lowerer 3 -0.500000 neutral 0 0.000000 raiser 3 "
          "0.500000 split -0.1 eyeball lefteye\n"));
}

TEST(FlexExport, WritesMouthsControllersAndRules) {
  ModelBuilder model = Face();
  Meshes(model)[0].Flexes = {{.FlexDesc = 2, .Partner = 3}};
  model.FlexControllers = {{"mouth", "smile", 0, 1}, {"eyelid", "d1", -1, 0.5f}};
  model.FlexRules = {{2, {{FlexOpController, 0}, Constant(0.25f), {FlexOpMultiply, 0}}},
                     {3, {{FlexOpFlexDesc, 2}}},
                     {1, {{FlexOpController, 9}}},
                     {0, {}},
                     {4, {{FlexOpAdd, 0}, {99, 0}}}};
  const DecompiledModel run(model);
  EXPECT_THAT(run.MeshCommands(), HasSubstr("     mouth 0 \"d4\"  root 0.000 1.000 0.000\n"
                                            "     flexcontroller mouth smile \"range\" 0.000 1.000\n"
                                            "     flexcontroller eyelid d1 \"range\" -1.000 0.500\n"
                                            "    %smileR = ( smile *  0.250)\n"
                                            "    %smileL =  %smileR\n"
                                            "    %d1 =  unKnownFlexController!\n"
                                            "    localvar d0\n    %d0 = \n"
                                            "    localvar d4\n    %d4 = BADSTACK\n"
                                            "}\n"));
  EXPECT_THAT(TextsOf(run.Result, core::Severity::Warning),
              ElementsAre(HasSubstr("The rule of d4 holds 1 operation that")));
}

TEST(FlexExport, WithoutFramesOrVerticesNoControllersFollow) {
  ModelBuilder model = Face();
  model.FlexControllers = {FlexControllerDescription{}};
  const std::string commands = DecompiledModel(model).MeshCommands();
  EXPECT_THAT(commands, HasSubstr("$model "));
  EXPECT_EQ(commands.find("flexcontroller"), std::string::npos);

  Meshes(model)[0].Flexes = {{.FlexDesc = 4}};
  ModelFiles files = model.Build();
  files.Vvd.Record<VvdHeader>("header", 0).Id = 0;
  const DecompiledModel run(files);
  EXPECT_EQ(run.MeshCommands().find("flexcontroller"), std::string::npos);
  EXPECT_THAT(run.MeshCommands(), HasSubstr("     mouth 0 "));
  EXPECT_TRUE(run.File("ravelback_expressions.vta").ends_with("end\nvertexanimation\n"));
  EXPECT_FALSE(run.Result.Succeeded());
}

TEST(FlexExport, AVtaFileThatCannotBeOpenedIsLogged) {
  ModelBuilder model = Face();
  Meshes(model)[0].Flexes = {{.FlexDesc = 4}};
  const ScratchFolder input;
  const ScratchFolder output;
  std::filesystem::create_directory(output.Path("ravelback_expressions.vta"));
  RecordingReport report;
  DecompileJob job;
  job.ModelPath = model.Write(input.Path());
  job.OutputDirectory = output.Path();
  const DecompileResult result = DecompileModel(job, report);
  EXPECT_THAT(report.LogText, HasSubstr("Unable to open ravelback_expressions.vta\r\n"));
  EXPECT_THAT(ReadText(output.Path("ravelback.qc")), HasSubstr("flex \"d4\" frame 1\n     }\n     mouth"));
  EXPECT_FALSE(result.Succeeded());
}

TEST(FlexExport, EachFaceHasItsOwnFileToCompile) {
  ModelBuilder model = Face();
  model.Mouths.clear();
  BodyPartDescription face = model.BodyParts[0];
  face.Models[0].Meshes[0].Flexes = {{.FlexDesc = 4}};
  model.BodyParts = {face, BodyPartDescription{}, face};
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(run.Script(),
              HasSubstr("    localvar \"d4\"\n    flexfile \"ravelback_expressions.vta\" {\n      defaultflex frame 0\n"
                        "      flex \"d4\" frame 1\n    }\n}\n"));
  EXPECT_THAT(run.Script(), HasSubstr("$model \"body\" \"cube.smd\" {\n    localvar \"d0\"\n"));
  EXPECT_THAT(run.Script(), HasSubstr("$body \"body\" \"cube_2.smd\"\n"));
  EXPECT_THAT(run.Script(), HasSubstr("    flexfile \"ravelback_expressions_2.vta\""));
  EXPECT_THAT(run.Files(), testing::IsSupersetOf({"ravelback_expressions.vta", "ravelback_expressions_2.vta"}));
}

TEST(FlexExport, ReadsVertexAnimationsThatStandFartherApart) {
  // Eight wide records take the room of nine.
  const auto model = [](size_t count) {
    ModelBuilder face = Face();
    std::vector<VertAnimDescription> anims;
    for (size_t i = 0; i < count; ++i) {
      anims.push_back({.Vertex = static_cast<int16_t>(i % 3), .PositionDelta = {static_cast<float>(i), 0, 0}});
    }
    Meshes(face)[1].Flexes = {{.FlexDesc = 0, .VertAnims = anims}, {.FlexDesc = 4}};
    return face;
  };
  ModelFiles wide = model(9).Build();
  wide.Mdl.Record<StudioFlex>("flexes 0.0.1").VertAnimCount = 8;
  const auto place = static_cast<size_t>(wide.Mdl.Place("vert anims 0.0.1.0"));
  const std::string records = wide.Mdl.Bytes().substr(place, 8 * sizeof(StudioVertAnim));
  for (size_t i = 0; i < 8; ++i) {
    wide.Mdl.Bytes().replace(place + 18 * i, 18, records.substr(16 * i, 16) + "xy");
  }
  const DecompiledModel run(wide);
  EXPECT_TRUE(run.Result.Succeeded());
  EXPECT_EQ(run.File("ravelback_expressions.vta"), DecompiledModel(model(8)).File("ravelback_expressions.vta"));
  EXPECT_THAT(run.Report.LogText, HasSubstr("Reading vertex animations of 18 bytes\r\n"));
}

TEST(FlexExport, ReadsWrinklesByTheirKindAlone) {
  ModelBuilder face = Face();
  std::vector<VertAnimDescription> anims;
  for (int16_t i = 0; i < 8; ++i) anims.push_back({.Vertex = static_cast<int16_t>(i % 3), .PositionDelta = {1, 0, 0}});
  auto& flexes = Meshes(face)[1].Flexes;
  flexes = {{.FlexDesc = 0, .VertAnims = anims}, {.FlexDesc = 4}};
  const DecompiledModel plain(face);
  flexes[0].Wrinkles = true;
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile}) {
    const DecompiledModel run(face, options);
    EXPECT_TRUE(run.Result.Succeeded());
    EXPECT_EQ(run.File("ravelback_expressions.vta"), plain.File("ravelback_expressions.vta"));
  }
}

TEST(FlexExport, KeepsTheOrdinaryDistanceWhereItsVerticesAreSound) {
  // Between two tables lies what a table of wider records would need.
  ModelBuilder face = Face();
  std::vector<VertAnimDescription> anims(9, VertAnimDescription{.PositionDelta = {1, 0, 0}});
  Meshes(face)[1].Flexes = {{.FlexDesc = 0, .VertAnims = anims}, {.FlexDesc = 4}};
  ModelFiles files = face.Build();
  files.Mdl.Record<StudioFlex>("flexes 0.0.1").VertAnimCount = 8;
  const DecompiledModel run(files);
  EXPECT_TRUE(run.Result.Succeeded());
  EXPECT_THAT(run.Report.LogText, testing::Not(HasSubstr("Reading vertex animations")));
}

TEST(FlexExport, AFrameEndsAtAVertexThatIsNotThere) {
  ModelBuilder model = Face();
  Meshes(model)[0].Flexes = {{.FlexDesc = 4, .VertAnims = {{.Vertex = 500}}}};
  const DecompiledModel run(model);
  EXPECT_THAT(TextsOf(run.Result, core::Severity::Error), ElementsAre(HasSubstr("names vertex 500")));
  EXPECT_TRUE(run.File("ravelback_expressions.vta").ends_with("time 1 // d4\nend\n"));
}

}  // namespace
}  // namespace tarnwick::decompiler
