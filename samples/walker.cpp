#include "walker.h"

namespace tarnwick::samples {

namespace {

/// Keeps the vertices of the farthest LOD first in the file, as an engine that leaves near LODs out reads them.
std::vector<model::VvdFixup> FarthestFirst(const std::vector<std::vector<int32_t>>& counts) {
  std::vector<model::VvdFixup> fixups;
  for (size_t mesh = 0; mesh < counts.size(); ++mesh) {
    for (size_t lod = 0; lod < counts[mesh].size(); ++lod) {
      int32_t source = 0;  // behind all vertices of farther LODs, and those of this LOD in meshes before
      for (size_t other = 0; other < counts.size(); ++other) {
        for (size_t farther = lod + 1; farther < counts[other].size(); ++farther) source += counts[other][farther];
        if (other < mesh) source += counts[other][lod];
      }
      if (counts[mesh][lod] > 0) fixups.push_back({static_cast<int32_t>(lod), source, counts[mesh][lod]});
    }
  }
  return fixups;
}

}  // namespace

tests::ModelBuilder Walker() {
  std::vector<std::vector<int32_t>> counts;
  tests::ModelBuilder model;
  model.Name = "samples/walker.mdl";
  model.Bones = WalkerBones();
  model.Textures = {"walker_cloth", "walker_skin", "eyeball_r", "eyeball_l", "walker_cloth_red"};
  model.MaterialDirectories = {"models/walker/"};
  model.SkinFamilies = {{Cloth, Skin, RightEye, LeftEye, RedCloth}, {RedCloth, Skin, RightEye, LeftEye, RedCloth}};
  model.BodyParts = {
      {.Name = "figure",
       .Models = {{.Name = "walker.smd", .Meshes = WalkerMeshes(counts), .SwitchDistances = {0, 30, -1}}}}};
  model.Fixups = FarthestFirst(counts);
  AddWalkerMotion(model);
  AddWalkerFace(model);

  model.HitboxSets = {{.Name = "default",
                       .Hitboxes = {{.Bone = Pelvis, .Group = 3, .Minimum = {-4, -6.5f, -4}, .Maximum = {4, 6.5f, 5}},
                                    {.Bone = Spine, .Group = 2, .Minimum = {-4.5f, -8, -1}, .Maximum = {4.5f, 8, 15}},
                                    {.Bone = Head, .Group = 1, .Minimum = {-4.5f, -4, 0}, .Maximum = {5, 4, 14}}}}};
  model.Attachments = {
      {.Name = "eyes", .Bone = Head, .Placement = {{1, 0, 0, EyeForward, 0, 1, 0, 0, 0, 0, 1, 7}}},
      {.Name = "hand_right", .Bone = RightForearm, .Placement = {{0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, -11}}}};
  model.IkChains = {{.Name = "rfoot", .Links = {{RightThigh, {1, 0, 0}}, {RightCalf, {}}, {RightFoot, {}}}},
                    {.Name = "lfoot", .Links = {{LeftThigh, {1, 0, 0}}, {LeftCalf, {}}, {LeftFoot, {}}}}};
  model.SurfaceProp = "flesh";
  model.KeyValues = "mdlkeyvalue\n{\nprop_data\n{\n\"base\" \"Flesh.Small\"\n}\n}\n";
  model.EyePosition = {EyeForward, 0, EyeHeight};
  model.IllumPosition = {0, 0, 36};
  model.Physics = WalkerPhysics(model.Bones);
  return model;
}

}  // namespace tarnwick::samples
