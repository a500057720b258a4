#include "decompiler/plain/sequence_statement.h"

#include <gmock/gmock.h>

#include "decompiled_model.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

ModelBuilder Model(std::vector<AnimationDescription> animations, std::vector<SequenceDescription> sequences) {
  ModelBuilder model;
  model.BodyParts.clear();
  model.Animations = std::move(animations);
  model.Sequences = std::move(sequences);
  return model;
}

std::string Sequences(const ModelBuilder& model, uint32_t options = 0) {
  return DecompiledModel(model, options).Script("$sequence", "-");
}

TEST(SequenceScript, ClausesStandInTheirOrder) {
  ModelBuilder model = Model({{.Name = "@walk", .Fps = 24, .Flags = AnimFlagDelta, .FrameCount = 25}},
                             {{.Label = "walk",
                               .Activity = "ACT_WALK",
                               .ActivityWeight = 3,
                               .Flags = SequenceFlagLooping,
                               .Events = {{0.5f, 6004, "step", ""}, {1, 0, "", "AE_DONE"}, {0.25f, 0, "", ""}},
                               .EntryNode = 1,
                               .ExitNode = 2,
                               .NodeFlags = 1}});
  model.Nodes = {"stand", "run"};
  EXPECT_EQ(Sequences(model),
            "$sequence walk \"walk\" loop ACT_WALK 3 fps 24.00 subtract ravelback_delta.smd 0"
            " rtransition stand run {\n"
            "  { event 6004 12 \"step\" }\n"
            "  { event AE_DONE 24 }\n"
            "  { event 6 }\n"
            "}\n\n");
}

TEST(SequenceScript, SubtractStandsWhereTheAnimationIsUsedDirectly) {
  const AnimationDescription lean = {.Name = "lean", .Flags = AnimFlagDelta};
  EXPECT_EQ(Sequences(Model({lean}, {{.Label = "lean"}, {.Label = "other"}})),
            "$sequence lean \"lean\" fps 30.00 subtract ravelback_delta.smd 0\n"
            "$animation lean \"lean\" fps 30.000000 subtract ravelback_delta.smd 0\n\n"
            "$sequence other \"lean\" fps 30.00\n");
}

TEST(SequenceScript, NodesAreNamedByEntryAndExit) {
  ModelBuilder model = Model({AnimationDescription{}}, {});
  model.Nodes = {"a", "b"};
  for (const auto& [entry, exit, flags] : {std::array{1, 1, 1}, {2, 1, 0}, {0, 2, 0}}) {
    model.Sequences.push_back({.EntryNode = entry, .ExitNode = exit, .NodeFlags = flags});
  }
  EXPECT_EQ(Sequences(model),
            "$sequence idle \"idle\" fps 30.00 node a\n"
            "$sequence idle \"idle\" fps 30.00 transition b a\n"
            "$sequence idle \"idle\" fps 30.00\n");
}

TEST(SequenceScript, BlendsAreListedColumnByColumn) {
  ModelBuilder model = Model({{.Name = "@a", .FrameCount = 10}, {.Name = "b", .FrameCount = 0}, {.Name = "c"}},
                             {{.Label = "aim",
                               .Flags = SequenceFlagPost | SequenceFlagAutoplay,
                               .Events = {{0, 1, "", ""}},
                               .Blends = {0, 1, 2, 0},
                               .BlendSize = {2, 2},
                               .PoseParameter = {0, -1}}});
  model.PoseParameters = {{"aim_yaw", -45, 45, 0}};
  EXPECT_EQ(Sequences(model),
            "$sequence aim \"a\" fps 30.00 {\n"
            "  { event 1 0 }\n"
            "  blendwidth 4\n  blend aim_yaw -45.000000 45.000000\n  delta\n  autoplay\n a c b a\n}\n");
}

TEST(SequenceScript, RateAndLastFrameWeighTheAnimationsRoundTheRestPose) {
  // The pose at rest, 0, lies a quarter of the way from the first to the second animation.
  ModelBuilder model = Model({{.Name = "@a", .Fps = 10, .FrameCount = 11}, {.Name = "@b", .Fps = 30, .FrameCount = 51}},
                             {{.Events = {{1, 5, "", ""}},
                               .Blends = {0, 1},
                               .BlendSize = {2, 1},
                               .PoseParameter = {0, -1},
                               .PoseStart = {-30, 0},
                               .PoseEnd = {90, 0}}});
  model.PoseParameters = {{"turn", 0, 1, 0}};
  EXPECT_THAT(Sequences(model), HasSubstr("fps 15.00 {\n  { event 5 20 }"));

  // With keys the value at rest is sought among them: start 0 lies between 2 keys, half of the way.
  model.Sequences[0].PoseKeys = {-1, 1, 0};
  EXPECT_THAT(Sequences(model), HasSubstr("fps 20.00 {\n  { event 5 30 }"));

  // Three blends: 0 lies in the second half of the axis.
  model.Sequences[0].PoseKeys = {};
  model.Sequences[0].Blends = {1, 0, 1};
  model.Sequences[0].BlendSize = {3, 1};
  model.Sequences[0].PoseStart = {-75, 0};
  model.Sequences[0].PoseEnd = {25, 0};
  EXPECT_THAT(Sequences(model), HasSubstr("fps 20.00 {\n  { event 5 30 }"));

  // A parameter that wraps brings 0 round to 360, past the end of the axis.
  model.PoseParameters = {{"turn", 90, 450, 360}};
  model.Sequences[0].Blends = {0, 1};
  model.Sequences[0].BlendSize = {2, 1};
  model.Sequences[0].PoseStart = {90, 0};
  model.Sequences[0].PoseEnd = {450, 0};
  EXPECT_THAT(Sequences(model), HasSubstr("fps 30.00 {\n  { event 5 50 }"));
}

TEST(SequenceScript, QuotesWhatTheCompilerWouldBreakApart) {
  ModelBuilder model = Model({{.Name = "Big Walk"}, {.Name = "@run fast"}},
                             {{.Label = "my walk", .Blends = {0, 1}, .BlendSize = {2, 1}}});
  EXPECT_THAT(DecompiledModel(model, DecompileOptionReadyToCompile).Script("$animation", "-"),
              AllOf(HasSubstr("$animation \"Big Walk\" \"Big Walk.smd\" {"),
                    HasSubstr("$sequence \"my walk\" {\n  \"Big Walk\" \"@run fast\"\n  blendwidth 2\n")));
  EXPECT_THAT(DecompiledModel(model).Script("$animation", "-"), HasSubstr("$sequence my walk \"Big Walk\""));
  model = Model({{.Name = "a//b"}}, {{.Label = ""}});
  EXPECT_THAT(DecompiledModel(model, DecompileOptionReadyToCompile).Script("$animation", "-"),
              AllOf(HasSubstr("$animation \"a//b\" \"b.smd\""), HasSubstr("$sequence \"\" {\n  \"a//b\"\n")));
}

TEST(SequenceScript, DamageIsTold) {
  ModelBuilder model = Model({AnimationDescription{}}, {{.EntryNode = 9, .ExitNode = 9}});
  EXPECT_THAT(TextsOf(DecompiledModel(model).Result, core::Severity::Error),
              ElementsAre(HasSubstr("names transition node 9")));
  model = Model({AnimationDescription{}}, {{.Blends = {0, 0}, .BlendSize = {2, 1}, .PoseParameter = {3, -1}}});
  EXPECT_THAT(TextsOf(DecompiledModel(model).Result, core::Severity::Error),
              ElementsAre(HasSubstr("names pose parameter 3 of 0")));
  model = Model({}, {SequenceDescription{}});
  EXPECT_THAT(TextsOf(DecompiledModel(model).Result, core::Severity::Error),
              ElementsAre(HasSubstr("names no animation")));
}

}  // namespace
}  // namespace tarnwick::decompiler
