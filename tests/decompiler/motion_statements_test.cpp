// What moves a model beside its animations' frames, and what goes with its sequences, in sources that are ready to
// compile.

#include <gmock/gmock.h>

#include <array>
#include <string_view>

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
  base.YawStiffness = base.PitchStiffness = 100;  // as a compile takes them
  base.AlongStiffness = 50;
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
  EXPECT_THAT(
      pack, HasSubstr("  is_rigid {\n    length 0\n    tip_mass 0\n    allow_length_flex\n    along_stiffness 50\n    "
                      "pitch_constraint 0 10\n"
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
  model.Sequences[0].Layers = {{1, 0, 0, 0, 0, 0, 0},
                               {1, 0, 0, 0.1f, 0.2f, 0.8f, 1},
                               {1, 0, model::LayerFlagLocal, 0, 0, 0, 0},
                               {1, 2, 0x4, 0, 0, 0, 0},
                               {7, 0, 0, 0, 0, 0, 0}};
  model.Sequences[0].IkLocks = {{0, 1, 0.5f, 0, {}}};
  model.Sequences[1].Weights = {0, 0.5f, 1};
  model.AutoplayLocks = {{0, 0.25f, 1, 0, {}}};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(), HasSubstr("$ikautoplaylock \"leg\" 0.25 1\n"));
  EXPECT_THAT(job.Script(), HasSubstr("$weightlist \"weights_1\" {\n  \"root\" 0\n  \"knee\" 0.5\n  \"foot\" 1\n}\n"));
  const std::string walk = job.Script("$sequence \"walk\"", "$sequence \"wave\"");
  EXPECT_THAT(walk, HasSubstr("  addlayer \"wave\"\n  blendlayer \"wave\" 1 2 8 10\n"
                              "  blendlayer \"wave\" 0 0 0 0 local\n  addlayer \"wave\"\n  iklock \"leg\" 1 0.5\n"));
  EXPECT_THAT(walk, testing::Not(HasSubstr("fade"))) << "these are a compile's own";
  EXPECT_THAT(job.Script("$sequence \"wave\""), HasSubstr("  fadein 0.5\n  weightlist \"weights_1\"\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"flags of layers without a statement", 1},
                                                    LostKind{"pose parameters of layers", 1},
                                                    LostKind{"layers whose sequence is not there", 1}));
}

TEST(MotionStatements, WhatNoStatementSaysIsCounted) {
  ModelBuilder model = Walker();
  model.Bones.push_back({.Name = "tail", .Parent = 0, .Jiggle = FlexibleTail()});
  model.Bones.back().Jiggle->Flags |= model::JiggleFlagRigid;
  model.Sequences[0].ActivityWeight = 2;
  model.Sequences[0].IkLocks = {{0, 1, 0.5f, 1, {}}};
  model.AutoplayLocks = {{0, 0.25f, 1, 1, {}}};
  model::StudioIkRule rule{};
  rule.Type = model::IkRuleTouch;
  rule.Bone = -1;
  rule.End = rule.Tail = 1;
  rule.Unused64[5] = 1;
  model.Animations[0].IkRules = {rule};
  model.IkChains[0].Links[1].KneeDirection = {1, 0, 0};
  model.PoseParameters = {{.Name = "turn", .Wrap = 360}};  // without the flag that goes with it
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Result.Lost,
              testing::UnorderedElementsAre(LostKind{"flags of jiggle bones without a statement", 1},
                                            LostKind{"weights of activities without a name", 1},
                                            LostKind{"flags of IK locks", 2},
                                            LostKind{"values of IK rules without a statement", 1},
                                            LostKind{"values of IK chains without a statement", 1},
                                            LostKind{"flags of pose parameters without a statement", 1}));
}

TEST(MotionStatements, ASequenceTellsItsTextItsModifiersAndWhatDrivesItsTime) {
  ModelBuilder model = Walker();
  model.PoseParameters = {{.Name = "speed"}, {.Name = "turn"}};
  ModelFiles files = model.Build();
  FileBuilder& mdl = files.Mdl;
  const std::string texts[] = {"face { \"weight\" 0.5 }", "mdlkeyvalue\n{\nface { a b [$X360] } }\n"};
  const int32_t places[] = {mdl.Text(texts[0]), mdl.Text(texts[1])};
  const int32_t hurt = mdl.Text("hurt"), low = mdl.Text("low");
  mdl.Align(4);
  const auto modifiers = mdl.Reserve<model::StudioOffset>(3);
  modifiers[0].Offset = modifiers.To(hurt, 0);
  modifiers[1].Offset = modifiers.To(low, 1);
  modifiers[2].Offset = 1 << 30;
  for (int i = 0; i < 2; ++i) {
    auto& sequence = mdl.Record<model::StudioSeqDesc>("sequences", i);
    const auto start = static_cast<int32_t>(mdl.Place("sequences")) + i * static_cast<int32_t>(sizeof sequence);
    sequence.KeyValueOffset = places[i] - start;
    sequence.KeyValueSize = static_cast<int32_t>(texts[i].size()) + 1;
    sequence.ActivityModifierOffset = modifiers.At(0) - start;
    sequence.ActivityModifierCount = i == 0 ? 3 : 0;
    sequence.CyclePose = i == 0 ? 1 : 2;
    sequence.ExitPhase = i == 0 ? 0.75f : 0;
    sequence.EntryPhase = i == 0 ? 0 : 0.5f;
  }
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  const std::string walk = job.Script("$sequence \"walk\"", "$sequence \"wave\"");
  EXPECT_THAT(walk, HasSubstr("  activitymodifier \"hurt\"\n  activitymodifier \"low\"\n"));
  EXPECT_THAT(walk, HasSubstr("  posecycle \"turn\"\n  exitphase 0.75\n"));
  EXPECT_THAT(walk, testing::EndsWith("  keyvalues {\n    \"face\" {\n      \"weight\" \"0.5\"\n    }\n  }\n}\n"));
  EXPECT_THAT(job.Script("$sequence \"wave\""),
              HasSubstr("  keyvalues {\n    \"face\" {\n      \"a\" \"b\"\n    }\n  }\n}\n"));
  EXPECT_THAT(job.Result.Lost,
              testing::UnorderedElementsAre(LostKind{"activity modifiers that cannot be read", 1},
                                            LostKind{"pose parameters of cycles that are not there", 1},
                                            LostKind{"phases at which transitions are entered", 1},
                                            LostKind{"conditions of key values", 1}));
}

TEST(MotionStatements, AnEventGoesByItsNameOrItsNumber) {
  ModelBuilder model = Walker();
  model.Sequences[0].Events = {{.Cycle = 0.5f, .Name = "AE_STEP"}, {.Event = 3001}, {}, {.Name = "5 bells"}};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(), HasSubstr("  { event \"AE_STEP\" 5 }\n  { event 3001 0 }\n  { event 0 0 }\n"
                                      "  { event \"5 bells\" 0 }\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"names of events that read as numbers", 1}));
}

TEST(MotionStatements, WhatNoSequenceSaysOfTheNodesIsCounted) {
  ModelBuilder model = Walker();
  model.Nodes = {"stand", "lie", "fly"};
  model.Sequences[0].EntryNode = 1;
  model.Sequences[0].ExitNode = 2;
  ModelFiles files = model.Build();
  // From standing to lying, as the sequence does; from lying to standing, as none does.
  const int32_t table = files.Mdl.Append(std::string_view("\0\2\0\1\0\0\0\0\0", 9));
  files.Mdl.Record<model::StudioHeader>("header").NodeOffset = table;
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script(), HasSubstr("  transition \"stand\" \"lie\"\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"transition nodes that no sequence names", 1},
                                                    LostKind{"steps between nodes that no sequence makes", 1}));
}

TEST(MotionStatements, WhatASequenceHoldsAgainstItsAnimationsOrItsDeclarationIsCounted) {
  ModelBuilder model = Walker();
  model.Sequences[0].Flags = model::SequenceFlagLooping;
  model.Sequences[0].PoseEnd = {0, 1};
  model.Sequences[1].Flags = model::SequenceFlagDeclared;
  model.Sequences[1].Activity = "ACT_WAVE";
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(), HasSubstr("$declaresequence \"walk\"\n$declaresequence \"wave\"\n"));
  EXPECT_THAT(job.Result.Lost,
              testing::UnorderedElementsAre(LostKind{"sequences that loop otherwise than their animations", 1},
                                            LostKind{"blend axes without a pose parameter", 1},
                                            LostKind{"declared sequences that hold more than a name", 1}));
}

TEST(MotionStatements, RulesOfLimbsInABlockFileAreRead) {
  ModelBuilder model = Walker();
  model.Animations[0].Data = {.Bones = {{.Bone = 0, .RawPosition = std::array{1.0f, 2.0f, 3.0f}}}, .Block = 1};
  ModelFiles files = model.Build();
  files.Ani.Align(4);
  const auto rule = files.Ani.Reserve<model::StudioIkRule>(1);
  rule[0].Type = model::IkRuleTouch;
  rule[0].Bone = -1;
  rule[0].End = 1;
  auto& walk = files.Mdl.Record<model::StudioAnimDesc>("anims");
  walk.IkRuleCount = 1;
  walk.BlockIkRuleOffset = static_cast<int32_t>(rule.Offset - files.Ani.Place("block 1"));
  files.Mdl.Record<model::StudioAnimBlock>("anim blocks", 1).End = static_cast<int32_t>(files.Ani.Size());
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script("$sequence \"walk\"", "$sequence \"wave\""),
              HasSubstr("  ikrule \"leg\" touch \"\" range 0 0 0 10\n}\n"));
  EXPECT_THAT(job.Script("$sequence \"wave\""), HasSubstr("  noautoik\n")) << "it has no rule of its own";
  EXPECT_THAT(job.Result.Lost, IsEmpty());

  files.Mdl.Record<model::StudioAnimDesc>("anims").BlockIkRuleOffset = 1 << 30;
  const DecompiledModel damaged(files, DecompileOptionReadyToCompile);
  EXPECT_THAT(damaged.Script(), testing::Not(HasSubstr("ikrule")));
  EXPECT_THAT(damaged.Result.Lost, testing::ElementsAre(LostKind{"IK rules that cannot be read", 1}));
}

TEST(MotionStatements, ABoneTellsItsSurface) {
  const DecompiledModel job =
      Ready({.Bones = {{.Name = "root"}, {.Name = "shell", .Parent = 0, .SurfaceProp = "metal_box"}}});
  EXPECT_THAT(job.Script(), HasSubstr("$jointsurfaceprop \"shell\" \"metal_box\"\n"));
}

TEST(MotionStatements, AStaticModelsBoneIsTheCompilersOwnOrCounted) {
  ModelBuilder model{.Bones = {{.Name = "static_prop"}}, .Flags = model::ModelFlagStatic};
  EXPECT_THAT(Ready(model).Result.Lost, IsEmpty());
  model.Bones[0] = {.Name = "Bone01", .SurfaceProp = "wood"};
  EXPECT_THAT(Ready(model).Result.Lost,
              testing::ElementsAre(LostKind{"bones of a static model that a compile does not give it", 1},
                                   LostKind{"surface properties of the bone of a static model", 1}));
  model.Bones = {{.Name = "static_prop"}};
  model.Animations = {{.FrameCount = 2, .Data = {.Bones = {{.RawPosition = {{0, 2, 0}}}}}}};
  EXPECT_THAT(Ready(model).Result.Lost,
              testing::UnorderedElementsAre(LostKind{"frames of the animations of a static model", 1},
                                            LostKind{"moves of the bone of a static model", 1}));
}

TEST(MotionStatements, BoxesMadeFromVerticesTellTheirGroupsAndFirstFramesOfSomeBonesAreCounted) {
  ModelBuilder model{.Bones = {{.Name = "root"},
                               {.Name = "hand", .Parent = 0, .Flags = 0x200000},
                               {.Name = "thumb", .Parent = 1},
                               {.Name = "nail", .Parent = 2},
                               {.Name = "ring", .Parent = 1}},
                     .HitboxSets = {{.Hitboxes = {{.Bone = 0, .Group = 0},
                                                  {.Bone = 1, .Group = 5},
                                                  {.Bone = 3, .Group = 5},
                                                  {.Bone = 4, .Group = 0}}}},
                     .Flags = model::ModelFlagGeneratedHitboxes};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Script(), HasSubstr("$hgroup 5 \"hand\"\n$hgroup 0 \"ring\"\n"));
  EXPECT_THAT(job.Script(), testing::Not(HasSubstr("nail\"\n$h")));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"bones whose first frames are kept in another way", 1}));
}

}  // namespace
}  // namespace tarnwick::decompiler
