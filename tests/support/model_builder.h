#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/vtx_layout.h"
#include "support/animation_description.h"
#include "support/face_description.h"
#include "support/file_builder.h"
#include "support/mesh_description.h"
#include "support/phy_builder.h"
#include "support/script_description.h"

namespace tarnwick::tests {

/// The files of a built model. Their tables have these names, for FileBuilder::Record (b, m, k, l: body part, model,
/// mesh, LOD; n: any number):
///   Mdl: header, bones, textures, material directories, skins, body parts, "models b", "meshes b.m", "flexes b.m.k",
///        "vert anims b.m.k.n", "eyeballs b.m", anims, "anim data n", "movements n", "ik rules n", "anim sections n",
///        "section data n.s", "jiggle bone n", "driven bone n", "triggers n", "autoplay locks", sequences,
///        "events n", "blends n", "pose keys n", "layers n", "ik locks n", "weights n", nodes, pose parameters, hitbox
///        sets, "hitboxes n", attachments, includes, ik chains, "ik links n", flex descs, flex controllers, flex rules,
///        "flex ops n", mouths, anim blocks
///   Vtx: header, body parts, "models b", "lods b.m", "meshes b.m.l", "groups b.m.l.k", "strips b.m.l.k.n",
///        "vertices b.m.l.k.n", "indices b.m.l.k.n"
///   Vvd: header, fixups, vertices
///   Ani: header, anims, "block n" and "anim data n" or "section data n.s" in it
struct ModelFiles {
  FileBuilder Mdl;
  FileBuilder Vtx;  // empty for a model without body parts
  FileBuilder Vvd;  // empty for a model without body parts
  FileBuilder Ani;  // empty for a model without block data
  std::string Phy;  // empty for a model without physics

  /// Writes `stem`.mdl, .dx90.vtx, .vvd, .ani and .phy, those that are not empty, into `folder`, and gives the path of
  /// the .mdl file.
  std::string Write(const std::string& folder, const std::string& stem) const;
};

/// The model writer: a description of a compiled model, sound and small unless told otherwise: one bone, one material,
/// one triangle. A test names what differs and builds:
///     ModelBuilder{.Version = 49, .Bones = {{.Name = "root"}, {.Name = "hand", .Parent = 0}}}.Build()
struct ModelBuilder {
  std::string Name = "props/cube.mdl";
  int32_t Version = 48;
  int32_t VtxVersion = 7;
  /// Sizes of strip groups and strips; zeros: as the version has them (33 and 27 for 49, else 25 and 27).
  model::VtxLayout Layout = {0, 0};

  std::vector<BoneDescription> Bones = {BoneDescription{}};
  std::vector<std::string> Textures = {"skin"};
  std::vector<std::string> MaterialDirectories = {"models/props/"};
  std::vector<std::vector<int16_t>> SkinFamilies = {{0}};
  std::vector<BodyPartDescription> BodyParts = {BodyPartDescription{}};
  /// Where the .vvd file keeps which vertices; those with a Lod of 0 and above, in order, cover all vertices. Empty: no
  /// fix-ups.
  std::vector<model::VvdFixup> Fixups = {};

  std::vector<AnimationDescription> Animations = {};
  std::vector<SequenceDescription> Sequences = {};
  std::vector<std::string> Nodes = {};
  std::vector<PoseParameterDescription> PoseParameters = {};
  std::string AnimBlockName = "models/props/cube.ani";
  int32_t AnimBlockVersion = 48;

  std::vector<HitboxSetDescription> HitboxSets = {};
  std::vector<AttachmentDescription> Attachments = {};
  std::vector<std::string> IncludedModels = {};
  std::vector<IkChainDescription> IkChains = {};
  std::vector<model::StudioIkLock> AutoplayLocks = {};
  std::string SurfaceProp = "metal";
  std::string KeyValues = {};
  model::Vec3 EyePosition = {0, 0, 0};
  model::Vec3 IllumPosition = {0, 0, 0};
  uint32_t Flags = 0;  // ModelFlag bits

  std::vector<std::string> FlexDescs = {};
  std::vector<FlexControllerDescription> FlexControllers = {};
  std::vector<FlexRuleDescription> FlexRules = {};
  std::vector<MouthDescription> Mouths = {};

  std::optional<PhyBuilder> Physics = {};

  ModelFiles Build() const;
  /// Builds and writes the files; gives the path of the .mdl file.
  std::string Write(const std::string& folder, const std::string& stem = "cube") const {
    return Build().Write(folder, stem);
  }
};

}  // namespace tarnwick::tests
