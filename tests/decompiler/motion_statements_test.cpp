// What moves a model beside its animations' frames, and what goes with its sequences, in sources that are ready to
// compile.

#include <gmock/gmock.h>

#include "decompiled_model.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr float Degree = 0.017453292f;

DecompiledModel Ready(const ModelBuilder& model) {
  return DecompiledModel(model, DecompileOptionReadyToCompile);
}

model::StudioJiggleBone FlexibleTail() {
  model::StudioJiggleBone tail{};
  tail.Flags = model::JiggleFlagFlexible | model::JiggleFlagYawLimit | model::JiggleFlagAngleLimit;
  tail.Length = 10;
  tail.TipMass = 100;
  tail.YawStiffness = 50;
  tail.AlongDamping = 2;
  tail.AngleLimit = 30 * Degree;
  tail.Yaw = {-20 * Degree, 25 * Degree, 0.5f, 0};
  return tail;
}

TEST(MotionStatements, ABoneThatSwingsTellsWhatItIsMadeOf) {
  model::StudioJiggleBone base{};
  base.Flags = model::JiggleFlagRigid | model::JiggleFlagPitchLimit | model::JiggleFlagBaseSpring;
  base.Pitch = {0, 10 * Degree, 0, 0.25f};
  base.BaseMass = 3;
  base.Left = {-1, 1, 0.5f};
  const DecompiledModel job = Ready({.Bones = {{.Name = "root"},
                                               {.Name = "tail", .Parent = 0, .Jiggle = FlexibleTail()},
                                               {.Name = "pack", .Parent = 0, .Jiggle = base}}});
  EXPECT_EQ(job.Script("$jigglebone \"tail\"", "$jigglebone \"pack\""),
            "$jigglebone \"tail\" {\n  is_flexible {\n    length 10\n    tip_mass 100\n    yaw_stiffness 50\n"
            "    yaw_damping 0\n    pitch_stiffness 0\n    pitch_damping 0\n    allow_length_flex\n"
            "    along_stiffness 0\n    along_damping 2\n    angle_constraint 30\n    yaw_constraint -20 25\n"
            "    yaw_friction 0.5\n  }\n}\n");
  const std::string pack = job.Script("$jigglebone \"pack\"");
  EXPECT_THAT(pack, HasSubstr("  is_rigid {\n    length 0\n    tip_mass 0\n    pitch_constraint 0 10\n"
                              "    pitch_bounce 0.25\n  }\n  has_base_spring {\n    base_mass 3\n"));
  EXPECT_THAT(pack, HasSubstr("    left_constraint -1 1\n    left_friction 0.5\n    up_constraint 0 0\n"));
  EXPECT_THAT(job.Result.Lost, IsEmpty());
}

TEST(MotionStatements, ABoneThatFollowsAnotherStandsInAFileOfItsOwn) {
  const model::StudioTrigger rest{1 / (90 * Degree), {0, 0, 0, 1}, {1, 2, 3}, {0, 0, 0, 1}};
  const model::StudioTrigger bent{1 / (45 * Degree), {0, 0, 0.70710678f, 0.70710678f}, {4, 5, 6}, {0, 0, 0, 1}};
  const DecompiledModel job =
      Ready({.Bones = {{.Name = "root"},
                       {.Name = "arm", .Parent = 0},
                       {.Name = "helper", .Parent = 0, .Driven = DrivenDescription{1, {rest, bent}}}}});
  EXPECT_THAT(job.Script(), HasSubstr("$proceduralbones \"cube.vrd\"\n"));
  const std::string file = job.File("cube.vrd");
  EXPECT_THAT(file,
              testing::StartsWith("<helper> helper root root arm\n<basepos> 0 0 0\n<trigger> 90 0 -0 0 0 -0 0 1 2 3\n"
                                  "<trigger> 45 0 -0 89.9999"));
  EXPECT_THAT(file, testing::EndsWith(" 0 -0 0 4 5 6\n\n"));
}

TEST(MotionStatements, ABrokenProcedureCostsItselfAlone) {
  ModelFiles files = ModelBuilder{.Bones = {{.Name = "root"},
                                            {.Name = "tail", .Parent = 0, .Jiggle = FlexibleTail()},
                                            {.Name = "helper", .Parent = 0, .Driven = DrivenDescription{0, {{}}}}}}
                         .Build();
  files.Mdl.Record<model::StudioBone>("bones", 1).ProceduralOffset = 1 << 30;
  files.Mdl.Record<model::StudioDrivenBone>("driven bone 2").TriggerCount = 1 << 29;
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script(), testing::Not(HasSubstr("$jigglebone")));
  EXPECT_THAT(job.Result.Lost, testing::IsSupersetOf({LostKind{"jiggle bones that cannot be read", 1},
                                                      LostKind{"driven bones that cannot be read", 1}}));
  EXPECT_THAT(job.Files(), testing::Contains("cube.smd"));
}

/// Three bones, a limb of them, two animations of 11 frames, each with a sequence of its own.
ModelBuilder Walker() {
  ModelBuilder model{.Bones = {{.Name = "root"}, {.Name = "knee", .Parent = 0}, {.Name = "foot", .Parent = 1}},
                     .Animations = {{.Name = "@walk", .FrameCount = 11}, {.Name = "@wave", .FrameCount = 11}},
                     .Sequences = {{.Label = "walk", .FadeIn = 0.2f, .FadeOut = 0.2f},
                                   {.Label = "wave", .Blends = {1}, .FadeIn = 0.5f, .FadeOut = 0.2f}},
                     .IkChains = {{.Name = "leg", .Links = {{0}, {1}, {2}}}}};
  return model;
}

TEST(MotionStatements, AnAnimationTellsWhatTheModelTravelsAndWhereALimbIsHeld) {
  ModelBuilder model = Walker();
  model.Animations[0].Movements = {
      {5, model::MovementFlagX | model::MovementFlagLinearY, 1, 1, 0, {1, 0, 0}, {9, 0, 0}},
      {10, model::MovementFlagX, 1, 1, 0, {1, 0, 0}, {20, 0, 0}}};
  model::StudioIkRule touch{};
  touch.Type = model::IkRuleTouch;
  touch.Bone = 2;
  touch.Peak = touch.Contact = 0.2f;
  touch.Tail = 0.8f;
  touch.End = 1;
  model::StudioIkRule release = touch;
  release.Type = model::IkRuleRelease;
  release.Contact = 0.5f;
  model.Animations[0].IkRules = {touch, release};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(),
              HasSubstr("  walkframe 5 X LY\n  walkframe 10 X\n  ikrule \"leg\" touch \"foot\" range 0 2 8 10\n"
                        "  ikrule \"leg\" release range 0 2 8 10 contact 5\n"));
  EXPECT_THAT(job.Result.Lost, IsEmpty());
}

TEST(MotionStatements, ASequenceTellsItsLayersWeightsLocksAndFades) {
  ModelBuilder model = Walker();
  model.Sequences[0].Layers = {{1, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0.1f, 0.2f, 0.8f, 1}, {7, 0, 0, 0, 0, 0, 0}};
  model.Sequences[0].IkLocks = {{0, 1, 0.5f, 0, {}}};
  model.Sequences[1].Weights = {0, 0.5f, 1};
  model.AutoplayLocks = {{0, 0.25f, 1, 0, {}}};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(), HasSubstr("$ikautoplaylock \"leg\" 0.25 1\n"));
  EXPECT_THAT(job.Script(), HasSubstr("$weightlist \"weights_1\" {\n  \"root\" 0\n  \"knee\" 0.5\n  \"foot\" 1\n}\n"));
  const std::string walk = job.Script("$sequence \"walk\"", "$sequence \"wave\"");
  EXPECT_THAT(walk, HasSubstr("  addlayer \"wave\"\n  blendlayer \"wave\" 1 2 8 10\n  iklock \"leg\" 1 0.5\n"));
  EXPECT_THAT(walk, testing::Not(HasSubstr("fade"))) << "these are a compile's own";
  EXPECT_THAT(job.Script("$sequence \"wave\""), HasSubstr("  fadein 0.5\n  weightlist \"weights_1\"\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"layers whose sequence is not there", 1}));
}

TEST(MotionStatements, ABoneTellsItsSurface) {
  const DecompiledModel job =
      Ready({.Bones = {{.Name = "root"}, {.Name = "shell", .Parent = 0, .SurfaceProp = "metal_box"}}});
  EXPECT_THAT(job.Script(), HasSubstr("$jointsurfaceprop \"shell\" \"metal_box\"\n"));
}

}  // namespace
}  // namespace tarnwick::decompiler
