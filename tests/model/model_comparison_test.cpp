#include "model/comparison/model_comparison.h"

#include <gmock/gmock.h>

#include <limits>

#include <functional>

#include "model/face_records.h"
#include "support/model_builder.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::model;
using namespace tarnwick::tests;
using testing::HasSubstr;
using testing::IsEmpty;

/// A model with an entry in each table.
ModelBuilder WholeModel() {
  ModelBuilder model;
  model.Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0, .Position = {0, 0, 8}}};
  model.BodyParts[0].Models[0].Meshes[0].Flexes = {
      {.FlexDesc = 0, .VertAnims = {{.Vertex = 1, .PositionDelta = {1, 0, 0}}}}};
  model.BodyParts[0].Models[0].Meshes[0].Lods.push_back(Triangles({0, 1, 2}));
  model.BodyParts[0].Models[0].SwitchDistances = {0, 10};
  const BoneAnimDescription turn{
      .Bone = 1, .RotationRuns = {{AxisRuns{{.Values = {0, 100, 200}, .Total = 3}}, AxisRuns{}, AxisRuns{}}}};
  model.Animations = {{.Name = "@idle"}, {.Name = "walk", .FrameCount = 3, .Data = {.Bones = {turn}}}};
  model.Sequences = {{.Label = "idle"},
                     {.Label = "walk", .Events = {{.Cycle = 0.5f, .Event = 1004, .Options = "step"}}, .Blends = {1}}};
  model.PoseParameters = {{}};
  model.HitboxSets = {{}};
  model.Attachments = {{.Bone = 1}};
  model.IkChains = {{.Links = {{.Bone = 0}, {.Bone = 1}}}};
  model.FlexDescs = {"smile"};
  model.FlexControllers = {{}};
  model.FlexRules = {{.FlexDesc = 0, .Ops = {Constant(0.5f)}}};
  model.Mouths = {{}};
  model.Physics = PhyBuilder{};
  return model;
}

struct Compared {
  std::optional<std::vector<ModelDifference>> Differences;
  RecordingTroubles Troubles;
};

Compared Compare(const ModelBuilder& first, const ModelBuilder& second) {
  const ScratchFolder a;
  const ScratchFolder b;
  Compared result;
  result.Differences = CompareModels(first.Write(a.Path()), second.Write(b.Path()), result.Troubles);
  return result;
}

TEST(ModelComparison, EqualModelsHaveNoDifference) {
  const Compared compared = Compare(WholeModel(), WholeModel());
  EXPECT_THAT(compared.Troubles.Texts(), IsEmpty());
  ASSERT_TRUE(compared.Differences);
  EXPECT_THAT(*compared.Differences, IsEmpty());
}

/// The only mesh of a model of WholeModel.
MeshDescription& Mesh(ModelBuilder& model) {
  return model.BodyParts[0].Models[0].Meshes[0];
}

TEST(ModelComparison, NamesTheTableAndPlaceOfEachChange) {
  struct Case {
    ModelTable Table;
    const char* Line;
    std::function<void(ModelBuilder&)> Change;
  };
  const Case cases[] = {
      {ModelTable::Header, "name differs", [](auto& m) { m.Name = "props/ball.mdl"; }},
      {ModelTable::Header, "key values", [](auto& m) { m.KeyValues = "x"; }},
      {ModelTable::Header, "flags", [](auto& m) { m.Flags = ModelFlagOpaque; }},
      {ModelTable::Bones, "name differs, in bone hand: \"hand\" and \"fist\"",
       [](auto& m) { m.Bones[1].Name = "fist"; }},
      {ModelTable::Poses, "position differs by 0.5, in bone hand: 0 0 8 and 0 0 8.5",
       [](auto& m) { m.Bones[1].Position.z = 8.5f; }},
      {ModelTable::Bones, "flags differs, in bone hand", [](auto& m) { m.Bones[1].Flags = BoneFlagMerge; }},
      {ModelTable::Boxes, "sides of a hit box", [](auto& m) { m.HitboxSets[0].Hitboxes[0].Maximum.x = 2; }},
      {ModelTable::Attachments, "bone differs, in attachment muzzle", [](auto& m) { m.Attachments[0].Bone = 0; }},
      {ModelTable::IkChains, "bone of a link", [](auto& m) { m.IkChains[0].Links[1].Bone = 0; }},
      {ModelTable::PoseParameters, "range differs by 90", [](auto& m) { m.PoseParameters[0].End = 90; }},
      {ModelTable::Materials, "\"skin\" and \"fur\"", [](auto& m) { m.Textures[0] = "fur"; }},
      {ModelTable::Skins, "number of families", [](auto& m) { m.SkinFamilies.push_back({0}); }},
      {ModelTable::Bodies, "name differs, in body part body", [](auto& m) { m.BodyParts[0].Name = "torso"; }},
      {ModelTable::Levels, "switch distance differs by 5, in body part body, model 0, level 1",
       [](auto& m) { m.BodyParts[0].Models[0].SwitchDistances[1] = 15; }},
      {ModelTable::Vertices,
       "position differs in 2 places by up to 0.25, most in body part body, model 0, level 0, "
       "mesh skin, triangle 0, corner 1",
       [](auto& m) { Mesh(m).Vertices[1].Position.x = 1.25f; }},
      {ModelTable::Vertices, "bone of a weight", [](auto& m) { Mesh(m).Vertices[0].Weights[0].Bone = 1; }},
      {ModelTable::Vertices, "texture coordinates", [](auto& m) { Mesh(m).Vertices[2].U = 0.5f; }},
      {ModelTable::Triangles, "number of triangles differs, in body part body, model 0, level 1, mesh skin: 1 and 2",
       [](auto& m) {
         Mesh(m).Lods[1] = Triangles({0, 1, 2, 0, 2, 1});
       }},
      {ModelTable::Animations, "frames per second", [](auto& m) { m.Animations[1].Fps = 24; }},
      {ModelTable::Animations, "start in the block file differs, in animation walk: 0 and 1",
       [](auto& m) { m.Animations[1].Data.Block = 1; }},
      {ModelTable::Frames, "rotation differs by 0.05, in animation walk, frame 2, bone hand",
       [](auto& m) { (*m.Animations[1].Data.Bones[0].RotationRuns)[0][0].Values[2] = 250; }},
      {ModelTable::Sequences, "label", [](auto& m) { m.Sequences[1].Label = "run"; }},
      {ModelTable::Sequences, "animation of the grid", [](auto& m) { m.Sequences[1].Blends = {0}; }},
      {ModelTable::Events, "options differs, in sequence walk, event 0",
       [](auto& m) { m.Sequences[1].Events[0].Options = "stamp"; }},
      {ModelTable::Events, "cycle differs by 0.25", [](auto& m) { m.Sequences[1].Events[0].Cycle = 0.75f; }},
      {ModelTable::Faces, "position under a flex", [](auto& m) { Mesh(m).Flexes[0].VertAnims[0].PositionDelta.x = 2; }},
      {ModelTable::Faces, "vertex of a flex", [](auto& m) { Mesh(m).Flexes[0].VertAnims[0].Vertex = 2; }},
      {ModelTable::Faces, "constant of a rule differs by 0.25",
       [](auto& m) { m.FlexRules[0].Ops = {Constant(0.75f)}; }},
      {ModelTable::Faces, "range of a controller", [](auto& m) { m.FlexControllers[0].Maximum = 2; }},
      {ModelTable::Physics, "point differs in 4 places by up to 1",
       [](auto& m) { m.Physics->Solids[0].Boxes[0].High.z = 2; }},
      {ModelTable::Physics, "value of surfaceprop", [](auto& m) { m.Physics->Solids[0].Values.SurfaceProp = "wood"; }},
      {ModelTable::Physics, "the file differs: \"is there\" and \"is not there\"", [](auto& m) { m.Physics.reset(); }},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.Line);
    ModelBuilder changed = WholeModel();
    one.Change(changed);
    const Compared compared = Compare(WholeModel(), changed);
    ASSERT_TRUE(compared.Differences);
    std::string lines;
    bool found = false;
    for (const ModelDifference& difference : *compared.Differences) {
      const std::string line = DifferenceLine(difference);
      lines += line + "\n";
      if (difference.Table != one.Table || line.find(one.Line) == std::string::npos) continue;
      found = true;
      EXPECT_FALSE(difference.IsRounding) << line;
    }
    EXPECT_TRUE(found) << lines;
  }
}

TEST(ModelComparison, TellsRoundingFromARealDifference) {
  const auto withPacked = [](int64_t x, int64_t y, int64_t z) {
    constexpr int64_t Middle = 1048576;
    ModelBuilder model = WholeModel();
    const int64_t bits = (x + Middle) | (y + Middle) << 21 | (z + Middle) << 42;
    model.Animations[0].Data.Bones = {{.Bone = 1, .Rotation64 = static_cast<uint64_t>(bits)}};
    return model;
  };
  // A half-turn, its parts by a step apart each, which turns it by more than a step elsewhere; then by many.
  const auto steps = Compare(withPacked(-1, -821042, 652229), withPacked(-2, -821041, 652230)).Differences;
  ASSERT_TRUE(steps && steps->size() == 1);
  EXPECT_TRUE(steps->front().IsRounding);
  EXPECT_GT(steps->front().Largest, 5e-4);
  const auto turned = Compare(withPacked(-1, -821042, 652229), withPacked(-1, -820900, 652229)).Differences;
  ASSERT_TRUE(turned && turned->size() == 1);
  EXPECT_FALSE(turned->front().IsRounding);
  // Parts that no rotation has are no number where they are read, which no rotation is like.
  const auto none = Compare(withPacked(-1, -821042, 652229), withPacked(1000000, 1000000, 0)).Differences;
  ASSERT_TRUE(none && none->size() == 1);
  EXPECT_FALSE(none->front().IsRounding);

  ModelBuilder near = WholeModel();
  near.Bones[1].Position.z += 0.000002f;
  (*near.Animations[1].Data.Bones[0].RotationRuns)[0][0].Values[1] = 101;  // a step of the track
  const Compared compared = Compare(WholeModel(), near);
  ASSERT_TRUE(compared.Differences);
  EXPECT_FALSE(compared.Differences->empty());
  for (const ModelDifference& difference : *compared.Differences) {
    EXPECT_TRUE(difference.IsRounding) << DifferenceLine(difference);
    EXPECT_GT(difference.Largest, 0);
  }
}

TEST(ModelComparison, TellsWhatNoSourceHolds) {
  const auto compare = [](const ModelBuilder& model) {
    const ScratchFolder a;
    const ScratchFolder b;
    ModelFiles heavy = model.Build();
    heavy.Mdl.Record<StudioHeader>("header").Mass = 7;
    RecordingTroubles troubles;
    return CompareModels(model.Write(a.Path()), heavy.Write(b.Path(), "cube"), troubles)
        .value_or(std::vector<ModelDifference>{});
  };
  const auto known = compare(WholeModel());
  ASSERT_THAT(known, testing::SizeIs(1));
  EXPECT_TRUE(known[0].IsReal()) << DifferenceLine(known[0]);
  ModelBuilder alone = WholeModel();
  alone.Physics.reset();
  const auto unknown = compare(alone);
  ASSERT_THAT(unknown, testing::SizeIs(1));
  EXPECT_FALSE(unknown[0].IsReal());
  EXPECT_THAT(DifferenceLine(unknown[0]), HasSubstr("(not known without the .phy file)"));
  // Sources of one name lie in one folder; a source holds no number that is none.
  ModelBuilder first = WholeModel(), second = WholeModel();
  first.BodyParts[0].Models[0].Name = "x/ref.smd";
  second.BodyParts[0].Models[0].Name = "ref_2.smd";
  first.Sequences[0].FadeIn = std::numeric_limits<float>::quiet_NaN();
  second.Sequences[0].FadeIn = 0;
  const Compared compared = Compare(first, second);
  ASSERT_TRUE(compared.Differences);
  EXPECT_THAT(*compared.Differences, testing::SizeIs(2));
  for (const ModelDifference& one : *compared.Differences) EXPECT_FALSE(one.IsReal()) << DifferenceLine(one);
}

/// Which of the differences between two models there are, and whether they are real.
std::vector<std::string> RealAndDerived(const ModelBuilder& first, const ModelBuilder& second) {
  const Compared compared = Compare(first, second);
  std::vector<std::string> lines;
  for (const ModelDifference& one : compared.Differences.value_or(std::vector<ModelDifference>{})) {
    lines.push_back((one.IsReal() ? "real " : one.IsRounding ? "rounding " : "derived ") + one.What);
  }
  return lines;
}

TEST(ModelComparison, KeyValuesCountByTheirWords) {
  ModelBuilder first = WholeModel();
  first.KeyValues = "mdlkeyvalue{\"prop_data\"\n{ base \"Metal.Large\" \"a\" \"b c\" } }";
  ModelBuilder second = first;
  second.KeyValues = "mdlkeyvalue\n{\nprop_data {\n\"base\" \"Metal.Large\" \"a\" \"b c\"  }\n}\n";
  EXPECT_THAT(RealAndDerived(first, second), IsEmpty());
  second.KeyValues = "mdlkeyvalue\n{\nprop_data {\n\"base\" \"Metal.Large\" \"a\" b c  }\n}\n";
  EXPECT_THAT(RealAndDerived(first, second), testing::ElementsAre("real key values"));
  // A compile puts blocks below its own head, and closes them.
  for (const char* text : {"door { x { a b } }", "loose word\nmdlkeyvalue { x { a b // c\n}"}) {
    first.KeyValues = text;
    second.KeyValues = "mdlkeyvalue\n{\nx {\n\"a\" \"b\"  }\n}\n";
    EXPECT_THAT(RealAndDerived(first, second), testing::ElementsAre("derived key values")) << text;
    second.KeyValues = "mdlkeyvalue\n{\nx {\n\"a\" \"c\"  }\n}\n";
    EXPECT_THAT(RealAndDerived(first, second), testing::ElementsAre("real key values")) << text;
  }
}

TEST(ModelComparison, FoldersMayGainTheSlashThatACompileEndsThemWith) {
  ModelBuilder first = WholeModel(), second = WholeModel();
  first.MaterialDirectories = {"props\\a", "b"};
  second.MaterialDirectories = {"props\\a\\", "b\\"};
  EXPECT_THAT(RealAndDerived(first, second), testing::Each("derived folder"));
  EXPECT_THAT(RealAndDerived(second, first), testing::Each("real folder"));
}

TEST(ModelComparison, FlagsAndKeysThatNoStatementSetsAreNoRealDifference) {
  using testing::ElementsAre;
  ModelBuilder first = WholeModel();
  first.Flags = 0x10000 | model::ModelFlagOpaque;
  first.Bones[1].Flags = model::BoneFlagZeroFrames;
  first.Animations[1].Flags = 0x40;
  first.Sequences[1].Flags = model::SequenceFlagCalcBlend;
  first.Sequences[1].Blends = {0, 1, 0};
  first.Sequences[1].BlendSize = {3, 1};
  first.Sequences[1].PoseParameter = {0, -1};
  first.Sequences[1].PoseStart = {-90, 0};
  first.Sequences[1].PoseEnd = {90, 0};
  first.Sequences[1].PoseKeys = {-90, 17, 90, 0};
  ModelBuilder second = first;
  second.Flags = model::ModelFlagOpaque;
  second.Bones[1].Flags = 0;
  second.Animations[1].Flags = 0;
  second.Sequences[1].Flags = 0;
  second.Sequences[1].PoseKeys[1] = 0;
  EXPECT_THAT(RealAndDerived(first, second),
              ElementsAre("derived flags", "derived flags", "derived flags", "derived flags", "derived pose key"));
  // The other way round, and where a statement would have set them, they are.
  EXPECT_THAT(RealAndDerived(second, first),
              ElementsAre("real flags", "real flags", "real flags", "real flags", "real pose key"));
  second = first;
  second.Flags &= ~model::ModelFlagOpaque;
  second.Sequences[1].PoseKeys = first.Sequences[1].PoseKeys = {-90, 0, 90, 0};
  second.Sequences[1].PoseKeys[1] = 1;
  EXPECT_THAT(RealAndDerived(first, second), ElementsAre("real flags", "real pose key"));
}

TEST(ModelComparison, VerticesCountByWhatTheyAreNotByTheirNumbers) {
  ModelBuilder other = WholeModel();
  auto& mesh = Mesh(other);
  std::swap(mesh.Vertices[0], mesh.Vertices[2]);
  mesh.Lods = {Triangles({2, 1, 0}), Triangles({2, 1, 0})};
  const Compared compared = Compare(WholeModel(), other);
  ASSERT_TRUE(compared.Differences);
  EXPECT_THAT(*compared.Differences, IsEmpty());
}

TEST(ModelComparison, CountsEveryCornerAndNamesTheFirstThatDiffersMost) {
  ModelBuilder model;
  Mesh(model).Vertices.push_back({.Position = {1, 1, 0}});
  Mesh(model).Lods = {Triangles({0, 1, 2, 0, 2, 3, 0, 3, 1, 3, 2, 1})};
  ModelBuilder other = model;
  const VertexDescription vertex = Mesh(model).Vertices[0];
  for (const float moved : {0.25f, 0.5f}) {
    Mesh(other).Vertices.push_back(vertex);
    Mesh(other).Vertices.back().Position.x += moved;
  }
  Mesh(other).Lods = {Triangles({4, 1, 2, 5, 2, 3, 4, 3, 1, 3, 2, 1})};
  const Compared compared = Compare(model, other);
  ASSERT_TRUE(compared.Differences);
  std::vector<std::string> lines;
  for (const ModelDifference& one : *compared.Differences) {
    if (one.What == "position") lines.push_back(DifferenceLine(one));
  }
  EXPECT_THAT(lines, ElementsAre(AllOf(HasSubstr("position differs in 3 places by up to 0.5"),
                                       HasSubstr("triangle 1, corner 0: 0 0 0 and 0.5 0 0"))));
}

TEST(ModelComparison, TellsWhatCannotBeRead) {
  const ScratchFolder folder;
  const std::string sound = WholeModel().Write(folder.Path());
  const std::string empty = folder.Path("empty.mdl");
  WriteText(empty, "");
  for (const std::string& bad : {empty, folder.Path("none.mdl")}) {
    RecordingTroubles troubles;
    EXPECT_FALSE(CompareModels(sound, bad, troubles));
    ASSERT_FALSE(troubles.Texts().empty());
    EXPECT_THAT(troubles.Texts()[0], HasSubstr(bad));
  }
}

TEST(ModelComparison, DamageCostsItsPartAndIsTold) {
  const ScratchFolder a;
  const ScratchFolder b;
  ModelFiles damaged = WholeModel().Build();
  damaged.Mdl.Record<StudioHeader>("header").SequenceOffset = 0x7FFFFFFF;
  damaged.Mdl.Record<StudioHeader>("header").Mass = 7;
  RecordingTroubles troubles;
  const auto differences = CompareModels(WholeModel().Write(a.Path()), damaged.Write(b.Path(), "cube"), troubles);
  ASSERT_TRUE(differences);
  EXPECT_THAT(DifferenceLine(differences->at(0)), HasSubstr("mass"));
  ASSERT_FALSE(troubles.Texts().empty());
  EXPECT_THAT(troubles.Texts()[0], HasSubstr("sequences"));
}

}  // namespace
