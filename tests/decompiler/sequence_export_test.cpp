#include "decompiler/plain/blended_animations.h"
#include "decompiler/stages/animation_file.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "animation_job.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

AnimationDescription Animation(std::string name, uint32_t flags = 0, int32_t frames = 1) {
  return {.Name = std::move(name), .Fps = 30, .Flags = flags, .FrameCount = frames};
}

ModelBuilder Model(std::vector<AnimationDescription> animations, std::vector<std::vector<int16_t>> sequences) {
  ModelBuilder model;
  model.BodyParts.clear();
  model.Animations = std::move(animations);
  for (auto& blends : sequences) {
    const auto count = static_cast<int32_t>(blends.size());
    model.Sequences.push_back({.Blends = std::move(blends), .BlendSize = {count, 1}});
  }
  return model;
}

TEST(SequenceExport, WritesFilesAndStatementsInThePlainForm) {
  AnimationJob job(Model({Animation("walk", AnimFlagLooping), Animation("@idle"), Animation("lean", AnimFlagDelta),
                          Animation("none", 0, 0), Animation("nod", AnimFlagDelta | AnimFlagLooping)},
                         {{1}, {0, 2}, {3, 4, 99}, {1}}));
  EXPECT_EQ(job.Export(),
            "$animation walk \"walk\" loop fps 30.000000\n"
            "$animation ravelback_delta.smd \"ravelback_delta.smd\" fps 30\n"
            "$animation lean \"lean\" fps 30.000000 subtract ravelback_delta.smd 0\n\n"
            "$animation nod \"nod\" loop fps 30.000000 subtract ravelback_delta.smd 0\n\n"
            "$animation walk \"walk\" loop fps 30.000000\n");
  EXPECT_EQ(job.Report.LogText,
            "Creating idle.smd\r\nCreating walk.smd\r\nCreating ravelback_delta.smd\r\nCreating lean.smd\r\n"
            "Creating nod.smd\r\nCreating walk.smd\r\nCreating idle.smd\r\n");
  EXPECT_THAT(job.Folder.Files(),
              ElementsAre("idle.smd", "in.mdl", "lean.smd", "nod.smd", "ravelback_delta.smd", "walk.smd"));
  // Each is formatted once.
  EXPECT_EQ(job.Context().Result().Files.size(), 5u);
  EXPECT_EQ(plain::AnimationScriptName(job.Context(), 1), "idle");
  EXPECT_EQ(plain::AnimationScriptName(job.Context(), 2), "lean");
}

TEST(SequenceExport, GivesEachAnimationAFileOfItsOwnToCompile) {
  AnimationJob job(Model({Animation("walk"), Animation("@a/walk"), Animation("Walk fast", AnimFlagDelta),
                          Animation("@c:\\x\\nul"), Animation("@still", 0, 0)},
                         {{0, 1}, {2, 3}, {0, 1, 4}}),
                   DecompileOptionReadyToCompile);
  EXPECT_EQ(job.Export(),
            "$animation \"walk\" \"walk.smd\" {\n  fps 30\n}\n"
            "$animation \"@a/walk\" \"walk_2.smd\" {\n  fps 30\n}\n"
            "$sequence \"idle\" {\n  \"walk\" \"@a/walk\"\n  blendwidth 2\n  fadein 0\n  fadeout 0\n}\n"
            "$animation \"Walk fast\" \"Walk fast.smd\" {\n  fps 30\n  subtract \"Walk fast\" 0\n}\n"
            "$animation \"@c:\\x\\nul\" \"_ul.smd\" {\n  fps 30\n}\n"
            "$sequence \"idle\" {\n  \"Walk fast\" \"@c:\\x\\nul\"\n  blendwidth 2\n  fadein 0\n  fadeout 0\n}\n"
            "// an animation is left out, since it cannot be read: number 4\n"
            "// a sequence is left out, since one of its animations cannot be read: number 2\n");
  EXPECT_THAT(job.Folder.Files(), ElementsAre("Walk fast.smd", "_ul.smd", "in.mdl", "walk.smd", "walk_2.smd"));
  EXPECT_THAT(TextsOf(job.Context().Result(), core::Severity::Warning), ElementsAre(HasSubstr("@still has no frames")));
}

TEST(SequenceExport, LeavesTheLastOfAnimationsOfOneNameInThePlainForm) {
  auto animations = std::vector{Animation("same"), Animation("same"), Animation("@same")};
  for (size_t i = 0; i < animations.size(); ++i) {
    animations[i].Data.Bones = {{.RawPosition = {{0, 0, static_cast<float>(i + 1)}}}};
  }
  core::WorkQueue helpers(2);
  for (const auto& [order, last] : {std::pair{std::vector<int16_t>{0, 1, 2}, "3.0"}, {{1, 0, 1}, "2.0"}}) {
    AnimationJob job(Model(animations, {order}).Build(), 0, &helpers);
    job.Export();
    EXPECT_THAT(ReadText(job.Folder.Path("same.smd")), HasSubstr(last));
    EXPECT_THAT(job.Folder.Files(), ElementsAre("in.mdl", "same.smd"));
  }
}

TEST(SequenceExport, GoesOnBehindAFileThatCannotBeOpened) {
  AnimationJob job(
      Model({Animation("none/walk"), Animation("../out"), Animation("run", AnimFlagDelta)}, {{0, 1, 2, 0}}));
  std::filesystem::create_directory(job.Folder.Path("ravelback_delta.smd"));
  const std::string script = job.Export();
  EXPECT_THAT(script, HasSubstr("$animation none/walk \"none/walk\" fps 30.000000\n$animation ../out"));
  EXPECT_THAT(script, HasSubstr("subtract ravelback_delta.smd 0\n"));
  EXPECT_THAT(job.Report.LogText, HasSubstr("Unable to open file none/walk.smd"));
  EXPECT_THAT(job.Report.LogText, HasSubstr("Unable to open file ../out.smd"));
  EXPECT_THAT(job.Report.LogText, HasSubstr("Unable to open file ravelback_delta.smd"));
  EXPECT_THAT(job.Report.LogText, HasSubstr("Creating run.smd\r\n"));
  EXPECT_EQ(job.Context().Result().Told(core::Severity::Error).size(), 3u);
  EXPECT_FALSE(std::filesystem::exists(job.Folder.Path("../out.smd")));
}

TEST(SequenceExport, TellsDamageAndKeepsWhatIsSound) {
  // Three frames of a rotation and a position for two bones, in a model with a sound animation behind it.
  const std::array<AxisRuns, 3> runs = {AxisRuns{{{1, 2, 3}, 3}}, {}, {}};
  AnimationDescription sound = Animation("sound");
  AnimationDescription broken = Animation("broken", 0, 3);
  broken.Data.Bones = {{.Bone = 0, .RotationRuns = runs}, {.Bone = 1, .RotationRuns = runs}};
  AnimationDescription sectioned = Animation("broken", 0, 3);
  sectioned.SectionFrames = 2;
  sectioned.Sections = {{}, {}, {}};

  struct Case {
    const char* Expected;
    std::function<void(ModelFiles&)> Damage;
    bool Sectioned = false;
  };
  const auto anim = [](ModelFiles& files) -> StudioAnimDesc& { return files.Mdl.Record<StudioAnimDesc>("anims"); };
  const auto data = [](ModelFiles& files) -> StudioAnim& { return files.Mdl.Record<StudioAnim>("anim data 0"); };
  const Case cases[] = {
      {"has a negative number of frames", [&](auto& f) { anim(f).FrameCount = -5; }},
      {"frames, more than its data can hold", [&](auto& f) { anim(f).FrameCount = 0x7FFFFFFF; }},
      {"lie behind the file", [&](auto& f) { anim(f).DataOffset = 1 << 30; }},
      {"begin before the file", [&](auto& f) { anim(f).DataOffset = -(1 << 30); }},
      {"leads back to an earlier one", [&](auto& f) { data(f).NextOffset = -4; }},
      {"for an earlier bone than the one before it", [&](auto& f) { data(f).Bone = 1; }},
      {"bone record of animation broken", [&](auto& f) { data(f).NextOffset = 0x7FFF; }},
      {"run of animation broken",
       [&](auto& f) { f.Mdl.template Record<StudioRunOffsets>("anim data 0").Axis[2] = 0x7FFF; }},
      {"run of animation broken",
       [&](auto& f) {
         const int64_t head = f.Mdl.Place("anim data 0") + 10;
         f.Mdl.Bytes()[static_cast<size_t>(head)] = 0;  // covers frames, has no values
       }},
      {"negative number of frames a section", [&](auto& f) { anim(f).SectionFrames = -1; }, true},
      {"table of 3 sections", [&](auto& f) { anim(f).SectionOffset = 1 << 30; }, true},
      {"animation name", [&](auto& f) { anim(f).NameOffset = 1 << 30; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Expected);
    ModelBuilder model = Model({c.Sectioned ? sectioned : broken, sound}, {{0, 0, 1}});
    model.Bones.push_back({.Name = "second", .Parent = 0});
    ModelFiles files = model.Build();
    c.Damage(files);
    AnimationJob job(files);
    EXPECT_THAT(job.Export(), HasSubstr("$animation sound"));
    ASSERT_EQ(job.Report.Boxes.size(), 1u);
    EXPECT_THAT(job.Report.Boxes[0].Text, HasSubstr(c.Expected));
    EXPECT_THAT(job.Report.Boxes[0].Text, HasSubstr(job.Folder.Path("in.mdl") + ": the "));
    EXPECT_THAT(job.Folder.Files(), ElementsAre("in.mdl", "sound.smd"));
  }
}

TEST(SequenceExport, TellsMuchDamageInTheLog) {
  std::vector<AnimationDescription> animations;
  for (int i = 0; i < 20; ++i) animations.push_back(Animation("broken" + std::to_string(i), 0, -1));
  AnimationJob job(Model(animations, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}}));
  job.Export();
  EXPECT_EQ(job.Report.Boxes.size(), 3u);
  EXPECT_EQ(job.Context().Result().Told(core::Severity::Error).size(), 20u);
  EXPECT_THAT(job.Report.LogText, HasSubstr("record of animation broken19"));
}

TEST(SequenceExport, RefusesBlendTablesThatCannotBe) {
  for (const auto& [columns, rows] : {std::pair{-1, 1}, {1, -1}, {0x7FFFFFFF, 0x7FFFFFFF}, {1 << 20, 1}}) {
    ModelFiles files = Model({Animation("walk")}, {{0}}).Build();
    files.Mdl.Record<StudioSeqDesc>("sequences").BlendSize[0] = columns;
    files.Mdl.Record<StudioSeqDesc>("sequences").BlendSize[1] = rows;
    AnimationJob job(files);
    EXPECT_EQ(job.Export(), "");
    EXPECT_EQ(job.Report.Boxes.size(), 1u);
  }
  AnimationJob none(Model({}, {{0}, {0}}));
  EXPECT_EQ(none.Export(), "");
  EXPECT_EQ(none.Report.Boxes.size(), 1u);
}

}  // namespace
}  // namespace tarnwick::decompiler
