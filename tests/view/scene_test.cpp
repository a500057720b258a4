#include "view/scene/scene.h"

#include <algorithm>
#include <map>

#include "model/animation_records.h"
#include "scene_support.h"
#include "view/scene/face.h"
#include "view/scene/scene_pose.h"

namespace tarnwick::view {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A mesh of one triangle at this height, which faces up.
MeshDescription TriangleAt(float z, int32_t material = 0) {
  MeshDescription mesh{.Material = material};
  // The model writer takes triangles as a source has them turned: the second and third corner are changed about.
  for (VertexDescription& vertex : mesh.Vertices) vertex.Position.z = z;
  return mesh;
}

TEST(Scene, HasTheModelsTriangles) {
  ModelBuilder model;
  model.BodyParts = {
      {.Name = "body",
       .Models = {{.Name = "a", .Meshes = {TriangleAt(0), TriangleAt(1, 1)}},
                  {.Name = "b", .Meshes = {TriangleAt(2, 1)}}}},
      {.Name = "hat", .Models = {{.Name = "none", .Meshes = {}}, {.Name = "hat", .Meshes = {TriangleAt(3)}}}}};
  model.Textures = {"skin", "cloth"};
  const BuiltScene scene(model);
  EXPECT_THAT(scene.Told.Texts(), IsEmpty());
  ASSERT_EQ(scene->Draws.size(), 4u);
  ASSERT_EQ(scene->BodyParts.size(), 2u);
  EXPECT_EQ(scene->BodyParts[1].Models[1].Name, "hat");
  const auto heights = [&](const std::vector<int32_t>& groups) {
    std::vector<float> shown;
    for (const SceneDraw& draw : scene->Draws) {
      if (!scene->IsDrawn(draw, groups, 0)) continue;
      EXPECT_EQ(draw.IndexCount, 3);
      shown.push_back(scene->Points[scene->Indices[static_cast<size_t>(draw.FirstIndex)]].Position.Z);
    }
    return shown;
  };
  EXPECT_THAT(heights({}), ElementsAre(0, 1));
  EXPECT_THAT(heights({1, 1}), ElementsAre(2, 3));
  EXPECT_THAT(heights({7, -1}), ElementsAre(0, 1)) << "a model that is not there counts as the first";
  const SceneCounts counts = CountsOf(*scene, {0, 1}, 0);
  EXPECT_EQ(counts.Triangles, 3);
  EXPECT_EQ(counts.Vertices, 9);
  EXPECT_EQ(counts.Draws, 3);
  // Corners run counterclockwise seen from outside, which a model stores the other way round.
  const auto& indices = scene->Indices;
  const Vec3 normal = Cross(scene->Points[indices[1]].Position - scene->Points[indices[0]].Position,
                            scene->Points[indices[2]].Position - scene->Points[indices[0]].Position);
  EXPECT_LT(normal.Z, 0) << "the writer stores 0 1 2 as it stands";
  EXPECT_THAT(scene->MeshBox.Maximum, Is(0, 1, 1)) << "turned, without the hat";
}

TEST(Scene, ChoosesLevelsByDistance) {
  MeshDescription mesh;
  mesh.Lods = {Triangles({0, 1, 2, 0, 2, 1}), Triangles({0, 1, 2}), Triangles({0, 1, 2})};
  ModelBuilder model;
  model.BodyParts[0].Models[0] = {.Meshes = {mesh}, .SwitchDistances = {0, 20, -1}};
  const BuiltScene scene(model);
  ASSERT_EQ(scene->Lods.size(), 3u);
  EXPECT_TRUE(scene->Lods[2].IsShadow);
  EXPECT_EQ(scene->LodAt(100), 0);
  EXPECT_EQ(scene->LodAt(5.1f), 0);
  EXPECT_EQ(scene->LodAt(4.9f), 1);
  EXPECT_EQ(scene->LodAt(0.001f), 1) << "the shadow's level is for shadows";
  EXPECT_THAT(scene->BodyParts[0].Models[0].TriangleCounts, ElementsAre(2, 1, 1));
}

TEST(Scene, SkinsNameMaterials) {
  ModelBuilder model;
  model.Textures = {"skin", "cloth", "gold"};
  model.MaterialDirectories = {"models/props/", ""};
  model.SkinFamilies = {{0, 1, 2}, {2, 1, 2}, {0, 99, -5}};
  model.BodyParts[0].Models[0].Meshes = {TriangleAt(0), TriangleAt(1, 1)};
  const BuiltScene scene(model);
  const SceneDraw& first = scene->Draws[0];
  const SceneDraw& second = scene->Draws[1];
  EXPECT_THAT(scene->Materials, ElementsAre("skin", "cloth", "gold"));
  EXPECT_THAT(scene->MaterialDirectories, ElementsAre("models/props/", ""));
  EXPECT_EQ(scene->MaterialOf(first, 0), 0);
  EXPECT_EQ(scene->MaterialOf(first, 1), 2);
  EXPECT_EQ(scene->MaterialOf(second, 1), 1);
  EXPECT_EQ(scene->MaterialOf(second, 2), -1);
  EXPECT_EQ(scene->MaterialOf(first, 50), 0);
}

TEST(Scene, VerticesKeepTheirWeights) {
  ModelBuilder model;
  model.Bones = {{.Name = "a"}, {.Name = "b", .Parent = 0}, {.Name = "c", .Parent = 1}};
  std::vector<VertexDescription>& vertices = model.BodyParts[0].Models[0].Meshes[0].Vertices;
  vertices[0].Weights = {{0, 0.5f}, {1, 0.25f}, {2, 0.25f}};
  vertices[1].Weights = {{1, 3.0f}, {2, 1.0f}};
  vertices[2].Weights = {{77, 1.0f}};
  vertices[2].V = 0.25f;
  const BuiltScene scene(model);
  EXPECT_THAT(scene->Vertices[0].Weights, ElementsAre(0.5f, 0.25f, 0.25f));
  EXPECT_THAT(scene->Vertices[0].Bones, ElementsAre(0, 1, 2, 0));
  EXPECT_THAT(scene->Vertices[1].Weights, ElementsAre(0.5f, 0.5f, 0)) << "a weight is at most 1";
  EXPECT_THAT(scene->Vertices[2].Weights, ElementsAre(1, 0, 0));
  EXPECT_EQ(scene->Vertices[2].Bones[0], 0) << "a bone that is not there";
  EXPECT_EQ(scene->Vertices[2].V, 0.25f);
}

TEST(Scene, BoxesAndPlacesHangOnTheirBones) {
  ModelBuilder model;
  model.Flags = model::ModelFlagStatic;
  model.Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0, .Position = {0, 0, 8}}};
  model.HitboxSets = {
      {.Name = "one",
       .Hitboxes = {{.Bone = 1, .Group = 4, .Minimum = {-1, -2, -3}, .Maximum = {1, 2, 3}}, {.Bone = 9}}},
      {.Name = "two"}};
  model.Attachments = {{.Name = "muzzle", .Bone = 1, .Placement = {{1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0}}}};
  model.EyePosition = {1, 2, 3};
  const BuiltScene scene(model);
  ASSERT_EQ(scene->HitboxSets.size(), 2u);
  const SceneHitbox& box = scene->HitboxSets[0].Boxes[0];
  EXPECT_EQ(box.Group, 4);
  EXPECT_EQ(scene->HitboxSets[0].Boxes[1].Bone, -1);
  const ScenePose pose(*scene);
  const Matrix34& hand = pose.Bones()[static_cast<size_t>(box.Bone)];
  EXPECT_THAT(TransformPoint(hand, box.Extent.Maximum), Is(1, 2, 11));
  EXPECT_THAT((hand * scene->Attachments[0].Placement).Translation(), Is(5, 0, 8));
  EXPECT_THAT(scene->EyePosition, Is(1, 2, 3));
}

/// The box of a hull's points in a pose.
Box PlacedHull(const Scene& scene, const SceneHull& hull) {
  const ScenePose pose(scene);
  Box box;
  for (const Vec3& point : hull.Points) box.Add(TransformPoint(pose.Bones()[static_cast<size_t>(hull.Bone)], point));
  return box;
}

TEST(Scene, HullsStandWhereTheirBonesAre) {
  ModelBuilder model;
  model.Flags = model::ModelFlagStatic;
  model.Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0, .Position = {0, 0, 8}}};
  PhySolidDescription root;
  root.Values.Name = "root";
  root.BoneNumber = 1;
  PhySolidDescription hand;
  hand.Values.Name = "hand";
  hand.BoneNumber = 2;
  hand.Boxes = {{{-1, -2, -3}, {1, 2, 3}}, {{2, -2, -3}, {3, 2, 3}}};
  model.Physics = PhyBuilder{.Solids = {root, hand}};
  const BuiltScene scene(model);
  ASSERT_EQ(scene->Hulls.size(), 3u);
  EXPECT_EQ(scene->Hulls[1].Name, "hand");
  EXPECT_EQ(scene->Hulls[1].Indices.size(), 36u);
  EXPECT_EQ(scene->Hulls[1].Points.size(), 8u);
  const Box box = PlacedHull(*scene, scene->Hulls[1]);
  EXPECT_THAT(box.Minimum, Is(-1, -2, 5));
  EXPECT_THAT(box.Maximum, Is(1, 2, 11));
}

TEST(Scene, SingleHullsStandAsTheFirstFramePosesThem) {
  ModelBuilder model;
  model.Physics = PhyBuilder{};
  model.Physics->Solids[0].Boxes = {{{-1, -2, -3}, {1, 2, 3}}};
  const auto boxOf = [&] {
    const BuiltScene scene(model);
    return PlacedHull(*scene, scene->Hulls.at(0));
  };
  // The rest pose is turned a quarter where there is no animation, and so is the hull: both stand alike.
  EXPECT_THAT(boxOf().Maximum, Is(1, 2, 3));
  model.Animations = {
      {.Data = {.Bones = {{.Bone = 0,
                           .RotationRuns = {{AxisRuns{}, AxisRuns{}, AxisRuns{{.Values = {1571}, .Total = 1}}}}}}}}};
  model.Sequences = {{}};
  EXPECT_THAT(boxOf().Maximum, IsNear(1, 2, 3, 0.01f));
}

TEST(Scene, SaysWhatItsSequencesAre) {
  ModelBuilder model;
  model.Animations = {{.Name = "@idle", .Fps = 12, .FrameCount = 25}};
  model.Sequences = {{.Label = "Idle", .Activity = "ACT_IDLE", .Flags = model::SequenceFlagLooping, .FadeIn = 0.2f},
                     {.Label = "later", .Flags = model::SequenceFlagDeclared},
                     {.Label = "wrong", .Blends = {55}}};
  const BuiltScene scene(model);
  ASSERT_EQ(scene->Sequences.size(), 3u);
  const SceneSequence& idle = scene->Sequences[0];
  EXPECT_EQ(idle.Activity, "ACT_IDLE");
  EXPECT_TRUE(idle.IsLooping());
  EXPECT_EQ(idle.Fps, 12);
  EXPECT_EQ(idle.FrameCount, 25);
  EXPECT_THAT(scene->Sequences[1].Animations, IsEmpty());
  EXPECT_THAT(scene->Sequences[2].Animations, ElementsAre(0));
  EXPECT_EQ(scene->FindSequence("iDLE"), 0);
  EXPECT_EQ(scene->FindSequence("run"), -1);
}

/// Files in memory, by path.
struct MemoryFiles : core::FileSource {
  explicit MemoryFiles(std::map<std::string, std::string> files) : Files(std::move(files)) {}
  std::optional<core::FileImage> Read(const std::string& path, std::string*) const override {
    return core::FileImage::FromBytes(path, std::as_bytes(std::span(Files.at(path))));
  }
  bool ReadStart(const std::string&, std::span<std::byte>) const override { return false; }
  bool Holds(const std::string& path) const override { return Files.contains(path); }
  std::optional<std::string> FindBeside(const std::string& path) const override {
    Asked.push_back(path);
    return Holds(path) ? std::optional(path) : std::nullopt;
  }
  std::optional<std::string> FindElsewhere(const std::string&) const override { return std::nullopt; }

  std::map<std::string, std::string> Files;
  mutable std::vector<std::string> Asked;
};

TEST(Scene, ComesFromAnywhere) {
  ModelBuilder model;
  model.Bones.push_back({.Name = "hand", .Parent = 0});
  model.Animations = {{.FrameCount = 2, .Data = {.Bones = {{.Bone = 1, .RawPosition = {{4, 0, 0}}}}, .Block = 1}}};
  model.Sequences = {{}};
  model.Physics = PhyBuilder{};
  const ModelFiles files = model.Build();
  MemoryFiles memory({{"models/a/cube.mdl", files.Mdl.Bytes()},
                      {"models/a/cube.dx90.vtx", files.Vtx.Bytes()},
                      {"models/a/cube.vvd", files.Vvd.Bytes()},
                      {"models/a/cube.ani", files.Ani.Bytes()},
                      {"models/a/cube.phy", files.Phy}});
  RecordingTroubles told;
  const auto scene = MakeScene("models/a/cube.mdl", told, memory);
  ASSERT_TRUE(scene);
  EXPECT_THAT(told.Texts(), IsEmpty());
  EXPECT_EQ(scene->Draws.size(), 1u);
  EXPECT_EQ(scene->Hulls.size(), 1u);
  ScenePose pose(*scene);
  pose.Set({.Sequence = 0});
  EXPECT_THAT(pose.Bones()[1].Translation(), Is(4, 0, 0)) << "the block file was had too";
  EXPECT_EQ(scene->FileBytes, files.Mdl.Size() + files.Vtx.Size() + files.Vvd.Size() + files.Ani.Size() +
                                  static_cast<int64_t>(files.Phy.size()));

  // Each companion may be missing: the rest is shown.
  for (const auto& [path, text] : {std::pair{"models/a/cube.dx90.vtx", ".vtx"}, std::pair{"models/a/cube.vvd", ".vvd"},
                                   std::pair{"models/a/cube.ani", "default pose"}}) {
    MemoryFiles less = memory;
    less.Files.erase(path);
    RecordingTroubles missed;
    const auto rest = MakeScene("models/a/cube.mdl", missed, less);
    ASSERT_TRUE(rest);
    EXPECT_THAT(missed.Texts(), testing::Contains(HasSubstr(text)));
    EXPECT_EQ(rest->Bones.size(), 2u);
    ScenePose still(*rest);
    still.Set({.Sequence = 0});
  }
  // The triangles that were made with the model are taken, whatever they are called.
  MemoryFiles other = memory;
  FileBuilder foreign = files.Vtx;
  foreign.Record<model::VtxHeader>("header").Checksum ^= 1;
  other.Files["models/a/cube.sw.vtx"] = files.Vtx.Bytes();
  other.Files["models/a/cube.dx90.vtx"] = foreign.Bytes();
  RecordingTroubles none;
  EXPECT_EQ(MakeScene("models/a/cube.mdl", none, other)->Draws.size(), 1u);
  EXPECT_THAT(none.Texts(), IsEmpty());
}

TEST(Scene, RefusesWhatIsNoModel) {
  for (const auto& [bytes, why] : {std::pair<std::string, std::string>{"", "it is empty"},
                                   {"IDST", "fewer than a model's header"},
                                   {std::string(1000, 'x'), "does not begin with IDST"}}) {
    MemoryFiles memory({{"x.mdl", bytes}});
    RecordingTroubles told;
    EXPECT_FALSE(MakeScene("x.mdl", told, memory));
    EXPECT_THAT(told.Texts(), ElementsAre(HasSubstr(why)));
  }
  RecordingTroubles told;
  EXPECT_FALSE(MakeScene("/nowhere/x.mdl", told));
  EXPECT_THAT(told.Texts(), ElementsAre(HasSubstr("/nowhere/x.mdl")));
}

/// A model with an entry in every table.
ModelBuilder WholeModel() {
  ModelBuilder model;
  model.Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0, .Position = {0, 0, 8}}};
  model.Bones.push_back({.Name = "helper",
                         .Parent = 0,
                         .Driven = DrivenDescription{.Driver = 1, .Triggers = {{1, {0, 0, 0, 1}, {}, {0, 0, 0, 1}}}}});
  model.BodyParts[0].Models[0].Meshes[0].Flexes = {
      {.FlexDesc = 0, .VertAnims = {{.Vertex = 1, .PositionDelta = {1, 0, 0}}}}};
  model.BodyParts[0].Models[0].Eyeballs = {{}};
  model.Animations = {
      {.FrameCount = 3,
       .Data = {.Bones = {{.Bone = 1,
                           .RotationRuns = {{AxisRuns{{.Values = {0, 1, 2}, .Total = 3}}, AxisRuns{}, AxisRuns{}}}}}}}};
  model.Sequences = {{.Blends = {0, 0},
                      .BlendSize = {2, 1},
                      .PoseParameter = {0, -1},
                      .PoseEnd = {1, 1},
                      .PoseKeys = {0, 1, 0},
                      .Layers = {{0, 0, 0, 0, 0, 0, 0}},
                      .Weights = {1, 0.5f, 1}}};
  model.PoseParameters = {{}};
  model.HitboxSets = {{}};
  model.Attachments = {{.Bone = 1}};
  model.FlexDescs = {"smile"};
  model.FlexControllers = {{}};
  model.FlexRules = {{.FlexDesc = 0, .Ops = {Constant(0.5f)}}};
  model.Physics = PhyBuilder{};
  return model;
}

/// Looks at all that a scene gives, as a viewer would.
void LookAt(const Scene& scene) {
  for (const uint32_t index : scene.Indices) ASSERT_LT(index, scene.Points.size());
  ASSERT_EQ(scene.Points.size(), scene.Vertices.size());
  for (const SceneVertex& vertex : scene.Vertices) {
    for (const uint16_t bone : vertex.Bones) ASSERT_LT(bone, std::max<size_t>(scene.Bones.size(), 1));
  }
  ScenePose pose(scene);
  for (size_t i = 0; i < std::min<size_t>(scene.Sequences.size(), 8); ++i) {
    pose.Set({.Sequence = static_cast<int32_t>(i), .Cycle = 0.7f, .PoseParameters = {0.3f}, .Seconds = 1});
  }
  std::vector<ScenePoint> points;
  FlexPoints(scene, FlexWeights(scene, {}), points);
}

TEST(Scene, CountsAndOffsetsThatLieDoNoHarm) {
  const ModelFiles sound = WholeModel().Build();
  // Every whole number of the .mdl and .vtx files in turn becomes one that cannot be.
  for (const bool vtx : {false, true}) {
    const int64_t size = vtx ? sound.Vtx.Size() : sound.Mdl.Size();
    for (int64_t at = 4; at + 4 <= size; at += 4) {
      for (const int32_t lie : {-1, 0x7FFFFFFF, 77777, -40}) {
        ModelFiles files = sound;
        std::string& bytes = vtx ? files.Vtx.Bytes() : files.Mdl.Bytes();
        std::memcpy(bytes.data() + at, &lie, sizeof lie);
        MemoryFiles memory({{"c.mdl", files.Mdl.Bytes()},
                            {"c.dx90.vtx", files.Vtx.Bytes()},
                            {"c.vvd", files.Vvd.Bytes()},
                            {"c.phy", files.Phy}});
        RecordingTroubles told;
        const auto scene = MakeScene("c.mdl", told, memory);
        SCOPED_TRACE(std::string(vtx ? "vtx " : "mdl ") + std::to_string(at));
        if (scene) LookAt(*scene);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Scene, FilesThatEndEarlyDoNoHarm) {
  const ModelFiles sound = WholeModel().Build();
  for (const int part : {1, 3, 5, 7, 9}) {
    const auto cut = [&](const std::string& bytes) {
      return bytes.substr(0, bytes.size() * static_cast<size_t>(part) / 10);
    };
    for (int which = 0; which < 4; ++which) {
      MemoryFiles memory({{"c.mdl", which == 0 ? cut(sound.Mdl.Bytes()) : sound.Mdl.Bytes()},
                          {"c.dx90.vtx", which == 1 ? cut(sound.Vtx.Bytes()) : sound.Vtx.Bytes()},
                          {"c.vvd", which == 2 ? cut(sound.Vvd.Bytes()) : sound.Vvd.Bytes()},
                          {"c.phy", which == 3 ? cut(sound.Phy) : sound.Phy}});
      RecordingTroubles told;
      const auto scene = MakeScene("c.mdl", told, memory);
      if (scene) LookAt(*scene);
      if (scene && which > 0 && part < 9) {
        EXPECT_THAT(told.Texts(), Not(IsEmpty())) << which << " " << part;
      }
    }
  }
}

}  // namespace
}  // namespace tarnwick::view
