#include <gmock/gmock.h>

#include <algorithm>

#include "archives/content_files.h"
#include "model/animation_records.h"
#include "scene_support.h"
#include "support/archive_builder.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A model with one sequence in which its second bone stands at (`x`, 0, 0).
ModelBuilder MovesOf(const std::string& label, float x, std::vector<BoneDescription> bones) {
  ModelBuilder model{.Bones = std::move(bones), .Animations = {{.Name = "@" + label}}, .Sequences = {{.Label = label}}};
  model.Animations[0].Data.Bones = {{.Bone = 1, .RawPosition = std::array<float, 3>{x, 0, 0}}};
  return model;
}

/// A character with a hat of its own, whose moves lie in other models.
class IncludedModels : public testing::Test {
 protected:
  std::optional<Scene> Load(const std::string& path, const core::FileSource& files = core::DiskFiles()) {
    return MakeScene(path, m_told, files);
  }
  static std::vector<std::string> NamesOf(const Scene& scene) {
    std::vector<std::string> names;
    for (const SceneSequence& sequence : scene.Sequences) names.push_back(sequence.Name);
    return names;
  }
  static Vec3 PlaceOf(const Scene& scene, const std::string& sequence, size_t bone) {
    ScenePose pose(scene);
    pose.Set({.Sequence = scene.FindSequence(sequence)});
    return pose.Bones()[bone].Translation();
  }

  ScratchFolder m_folder;
  RecordingTroubles m_told;
  const std::vector<BoneDescription> m_bones = {
      {.Name = "root"}, {.Name = "hat", .Parent = 0, .Position = {0, 0, 9}}, {.Name = "Hand", .Parent = 0}};
};

TEST_F(IncludedModels, GiveTheirSequencesByTheNamesOfTheBones) {
  // Other numbers, another case, a bone that the character has not.
  MovesOf("Wave", 5, {{.Name = "ROOT"}, {.Name = "hand", .Parent = 0}, {.Name = "tail", .Parent = 1}})
      .Write(m_folder.Path("mod/Models/shared"), "Moves");
  ModelBuilder own = MovesOf("stand", 2, m_bones);
  own.IncludedModels = {"models/shared/moves.mdl"};
  const std::string path = own.Write(m_folder.Path("mod/Models/hero"));
  const archives::ContentFiles content("", m_told);
  const auto scene = Load(path, content);
  ASSERT_TRUE(scene);
  EXPECT_THAT(m_told.Texts(), IsEmpty());
  EXPECT_THAT(NamesOf(*scene), ElementsAre("stand", "Wave"));
  EXPECT_THAT(scene->Included, ElementsAre(testing::EndsWith("Moves.mdl")));
  EXPECT_THAT(PlaceOf(*scene, "wave", 2), Is(5, 0, 0));
  EXPECT_THAT(PlaceOf(*scene, "wave", 1), Is(0, 0, 9)) << "the hat is its own, and keeps its place";
  EXPECT_THAT(PlaceOf(*scene, "stand", 1), Is(2, 0, 0));
  EXPECT_FALSE(scene->Sequences[1].IsPartial) << "all that the other model knows moves";
}

TEST_F(IncludedModels, FillInWhatIsDeclaredAndPassOverWhatIsKnown) {
  const std::vector<BoneDescription> bones = {{.Name = "root"}, {.Name = "Hand", .Parent = 0}};
  ModelBuilder first = MovesOf("walk", 1, bones);
  first.PoseParameters = {{.Name = "lean", .Start = -1, .End = 1}, {.Name = "MOVE", .Start = 0, .End = 1}};
  first.Sequences[0].PoseParameter = {1, 0};
  first.Sequences.push_back({.Label = "stand"});
  model::StudioAutoLayer layer{};
  layer.Sequence = 1;
  layer.Start = 0.5f, layer.Peak = 0.6f, layer.Tail = 0.9f, layer.End = 1;  // nothing at the beginning
  first.Sequences[0].Layers = {layer};
  first.IncludedModels = {"models/second.mdl", "models/first.mdl"};
  first.Write(m_folder.Path("models"), "first");
  ModelBuilder second = MovesOf("WALK", 7, bones);
  second.Sequences.push_back({.Label = "run"});
  second.Write(m_folder.Path("models"), "second");
  ModelBuilder own = MovesOf("stand", 2, m_bones);
  own.Sequences.push_back({.Label = "walk", .Flags = model::SequenceFlagDeclared, .Blends = {}, .BlendSize = {0, 0}});
  own.PoseParameters = {{.Name = "move", .Start = 0, .End = 1}};
  own.IncludedModels = {"models/first.mdl", "models/nowhere.mdl"};
  const auto scene = Load(own.Write(m_folder.Path("models/hero")));
  ASSERT_TRUE(scene);
  EXPECT_THAT(NamesOf(*scene), ElementsAre("stand", "walk", "run"));
  EXPECT_THAT(PlaceOf(*scene, "walk", 2), Is(1, 0, 0)) << "the first one counts, in the place that was kept for it";
  ASSERT_THAT(scene->Sequences[1].Layers, SizeIs(1));
  EXPECT_EQ(scene->Sequences[1].Layers[0].Sequence, 0) << "the character's own, of that name";
  ASSERT_THAT(scene->PoseParameters, SizeIs(2));
  EXPECT_THAT(scene->Sequences[1].PoseParameters, ElementsAre(0, 1));
  ASSERT_THAT(m_told.Texts(), SizeIs(1));
  EXPECT_THAT(m_told.Texts()[0], HasSubstr("The included model models/nowhere.mdl was not found"));
}

TEST_F(IncludedModels, AreFoundInArchivesAndInTheGame) {
  const std::vector<BoneDescription> bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0}};
  const ScratchFolder loose;
  MovesOf("jump", 3, bones).Write(loose.Path(), "near");
  ModelBuilder own = MovesOf("stand", 2, m_bones);
  own.IncludedModels = {"models/hero/near.mdl", "models/far.mdl"};
  own.Write(loose.Path(), "hero");
  VpkBuilder vpk{.Files = PackedFolder(loose, "models/hero")};
  WriteText(m_folder.Path("pak_dir.vpk"), vpk.Build().Directory);
  WriteText(m_folder.Path("game/gameinfo.txt"), "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
  MovesOf("fall", 4, bones).Write(m_folder.Path("game/models"), "far");
  const archives::ContentFiles content(m_folder.Path("game"), m_told);
  const auto scene = Load(m_folder.Path("pak_dir.vpk") + ":models/hero/hero.mdl", content);
  ASSERT_TRUE(scene);
  EXPECT_THAT(m_told.Texts(), IsEmpty());
  EXPECT_THAT(NamesOf(*scene), ElementsAre("stand", "jump", "fall"));
  EXPECT_THAT(PlaceOf(*scene, "jump", 2), Is(3, 0, 0));
  EXPECT_THAT(PlaceOf(*scene, "fall", 2), Is(4, 0, 0));
}

/// A leg whose knee is bent to the front, and a sequence on top that lifts the hip by 1.
TEST(IkLocks, PutTheEndOfALimbBackWhereItStood) {
  ModelBuilder model{.Bones = {{.Name = "root"},
                               {.Name = "hip", .Parent = 0, .Position = {0, 0, 10}},
                               {.Name = "knee", .Parent = 1, .Position = {0, -3, -4}},
                               {.Name = "foot", .Parent = 2, .Position = {0, 3, -4}}}};
  model.Animations = {{.Name = "@stand"}, {.Name = "@lift", .Flags = model::AnimFlagDelta}};
  model.Animations[1].Data.Bones = {{.Bone = 1, .RawPosition = std::array<float, 3>{0, 0, 1}, .IsDelta = true}};
  model.Sequences = {{.Label = "stand"}, {.Label = "lift", .Flags = model::SequenceFlagDelta, .Blends = {1}}};
  model.IkChains = {{.Name = "leg", .Links = {{.Bone = 1}, {.Bone = 2}, {.Bone = 3}}},
                    {.Name = "no limb", .Links = {{.Bone = 3}, {.Bone = 2}, {.Bone = 1}}}};
  model::StudioIkLock lock{};
  lock.PositionWeight = lock.RotationWeight = 1;
  model::StudioIkLock loose = lock;
  loose.Chain = 1;
  model.Sequences[1].IkLocks = {lock, loose};
  const BuiltScene scene(model);
  EXPECT_THAT(scene->Sequences[1].IkLocks, SizeIs(1)) << "bones that do not hang on each other are no limb";
  const auto placesWith = [&](bool ik, float weight) {
    ScenePose pose(*scene);
    pose.Set({.Sequence = 0, .Layers = {{.Sequence = 1, .Weight = weight}}, .Ik = ik});
    std::vector<Vec3> places;
    for (const Matrix34& bone : pose.Bones()) places.push_back(bone.Translation());
    return places;
  };
  EXPECT_THAT(placesWith(false, 1)[3], Is(0, 0, 3));
  const std::vector<Vec3> held = placesWith(true, 1);
  EXPECT_THAT(held[1], Is(0, 0, 11));
  EXPECT_THAT(held[3], IsNear(0, 0, 2, 0.01));
  // 9 apart by two bones of 5: the knee stands sqrt(25 - 4.5^2) before the line between them.
  EXPECT_THAT(held[2], IsNear(0, -2.1794, 6.5, 0.01));
  EXPECT_NEAR(Length(held[3] - held[2]), 5, 1e-3) << "bones keep their length";
  EXPECT_THAT(placesWith(true, 0.5f)[3], IsNear(0, 0, 2.25, 0.01)) << "a layer of half weight holds by half";
}

}  // namespace
}  // namespace tarnwick::view
