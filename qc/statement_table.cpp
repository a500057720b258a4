#include <algorithm>

#include "qc/option_tables.h"
#include "qc/tables.h"

namespace tarnwick::qc {

namespace {

std::span<const StatementRow> MakeRows() {
  using enum Command;
  using enum Support;
  static const StatementRow Rows[] = {
      // Files and folders
      {"$cd", Cd, "w"},
      {"$pushd", PushD, "w"},
      {"$popd", PopD},
      {"$addsearchdir", AddSearchDir, "w"},
      // Name, meshes, materials
      {"$modelname", ModelName, "w"},
      {"$internalname", InternalName, "w"},
      {"$body", Body, "w?f", &FaceOptions(), Block::Options},
      {"$bodygroup", BodyGroup, "w", &BodyGroupOptions(), Block::Options},
      {"$model", Model, "w?f", &FaceOptions(), Block::Options},
      {"$appendblankbodygroup", AppendBlankBodyGroup, "w"},
      {"$bodygrouppreset", BodyGroupPreset, "L", nullptr, Block::None, NotBuilt},
      {"$appendsource", AppendSource, "L", nullptr, Block::None, NotBuilt},
      {"$cdmaterials", CdMaterials, "w*"},
      {"$texturegroup", TextureGroup, "w", nullptr, Block::Rows},
      {"$renamematerial", RenameMaterial, "ww"},
      {"$externaltextures", ExternalTextures, "L", nullptr, Block::None, NoEffect},
      {"$cliptotextures", ClipToTextures, "L", nullptr, Block::None, NoEffect},
      {"$cdtexture", CdTexture, "L", nullptr, Block::None, NoEffect},
      {"$maxverts", MaxVerts, "L", nullptr, Block::None, NoEffect},
      {"$checkuv", CheckUv, "L", nullptr, Block::None, NoEffect},
      // Size, place, flags
      {"$scale", Scale, "n"},
      {"$origin", Origin, "nnn?n"},
      {"$upaxis", UpAxis, "w"},
      {"$surfaceprop", SurfaceProp, "w"},
      {"$jointsurfaceprop", JointSurfaceProp, "ww"},
      {"$contents", Contents, "w*"},
      {"$jointcontents", JointContents, "ww*"},
      {"$eyeposition", EyePosition, "nnn"},
      {"$illumposition", IllumPosition, "nnn?w"},
      {"$bbox", BBox, "nnnnnn"},
      {"$cbox", CBox, "nnnnnn"},
      {"$skipboneinbbox", SkipBoneInBBox},
      {"$bboxonlyverts", BBoxOnlyVerts},
      {"$autocenter", AutoCenter},
      {"$staticprop", StaticProp},
      {"$opaque", Opaque},
      {"$mostlyopaque", MostlyOpaque},
      {"$obsolete", Obsolete},
      {"$ambientboost", AmbientBoost},
      {"$donotcastshadows", DoNotCastShadows},
      {"$casttextureshadows", CastTextureShadows},
      {"$constantdirectionallight", ConstantDirectionalLight, "n"},
      {"$noforcedfade", NoForcedFade},
      {"$forcephonemecrossfade", ForcePhonemeCrossfade},
      {"$keyvalues", KeyValues, "", nullptr, Block::KeyValues},
      {"$maxeyedeflection", MaxEyeDeflection, "n"},
      // Bones, attachments, hit detection
      {"$attachment", Attachment, "wwnnn", &AttachmentOptions()},
      {"$bonemerge", BoneMerge, "w"},
      {"$definebone", DefineBone, "wwnnnnnn?n*"},
      {"$unlockdefinebones", UnlockDefineBones},
      {"$alwayscollapse", AlwaysCollapse, "w"},
      {"$collapsebones", CollapseBones},
      {"$collapsebonesaggressive", CollapseBonesAggressive, "L", nullptr, Block::None, NotBuilt},
      {"$hierarchy", Hierarchy, "ww"},
      {"$heirarchy", Hierarchy, "ww"},
      {"$root", Root, "w"},
      {"$renamebone", RenameBone, "ww"},
      {"$insertbone", InsertBone, "L", nullptr, Block::None, NotBuilt},
      {"$importbone", ImportBone, "L", nullptr, Block::None, NotBuilt},
      {"$limitrotation", LimitRotation, "L", nullptr, Block::None, NotBuilt},
      {"$bonealwayssetup", BoneAlwaysSetup, "L", nullptr, Block::None, NotBuilt},
      {"$realignbones", RealignBones, "L", nullptr, Block::None, NotBuilt},
      {"$lockbonelengths", LockBoneLengths},
      {"$centerbonesonverts", CenterBonesOnVerts},
      {"$forcerealign", ForceRealign, "wwnnn"},
      {"$screenalign", ScreenAlign, "w*"},
      {"$worldalign", WorldAlign, "w*"},
      {"$hboxset", HBoxSet, "w"},
      {"$hbox", HBox, "iwnnnnnn?n*"},
      {"$hgroup", HGroup, "iw"},
      {"$controller", Controller, "wwwnn"},
      {"$poseparameter", PoseParameter, "wnn?n", &PoseParameterOptions()},
      {"$bonesaveframe", BoneSaveFrame, "w", &BoneSaveFrameOptions()},
      {"$jigglebone", JiggleBone, "w", &JiggleBoneOptions(), Block::Options},
      {"$proceduralbones", ProceduralBones, "d"},
      {"$boneflexdriver", BoneFlexDriver, "wwwnn"},
      // Animations and sequences
      {"$animation", Animation, "wa", &AnimationOptions(), Block::Options},
      {"$sequence", Sequence, "w", &SequenceOptions(), Block::SameLineOptions},
      {"$cmdlist", CmdList, "w", &AnimationOptions(), Block::Options},
      {"$declaresequence", DeclareSequence, "w"},
      {"$declareanimation", DeclareAnimation, "w"},
      {"$sequencegroup", SequenceGroup, "L", nullptr, Block::None, NoEffect},
      {"$sequencegroupsize", SequenceGroupSize, "L", nullptr, Block::None, NoEffect},
      {"$continue", Continue, "w", &SequenceOptions(), Block::Options},
      {"$append", Append, "w", &SequenceOptions(), Block::Options},
      {"$prepend", Prepend, "w", &SequenceOptions(), Block::Options},
      {"$weightlist", WeightList, "w", nullptr, Block::Pairs},
      {"$defaultweightlist", DefaultWeightList, "", nullptr, Block::Pairs},
      {"$ikchain", IkChain, "ww", &IkChainOptions()},
      {"$ikautoplaylock", IkAutoplayLock, "wnn"},
      {"$calctransitions", CalcTransitions},
      {"$skiptransition", SkipTransition, "w*"},
      {"$includemodel", IncludeModel, "w"},
      {"$animblocksize", AnimBlockSize, "n", &AnimBlockOptions()},
      {"$sectionframes", SectionFrames, "ii"},
      {"$lcaseallsequences", LCaseAllSequences},
      {"$clampworldspace", ClampWorldSpace, "L", nullptr, Block::None, NotBuilt},
      // Levels of detail
      {"$lod", Lod, "n", &LodOptions(), Block::Options},
      {"$shadowlod", ShadowLod, "", &LodOptions(), Block::Options},
      {"$minlod", MinLod, "i"},
      {"$allowrootlods", AllowRootLods, "?w"},
      {"$skinnedlods", SkinnedLods},
      // Collision
      {"$collisionmodel", CollisionModel, "f", &CollisionOptions(), Block::Options},
      {"$collisionjoints", CollisionJoints, "f", &CollisionOptions(), Block::Options},
      {"$collisiontext", CollisionText, "", nullptr, Block::KeyValues},
  };
  return Rows;
}

int CompareIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    const auto x = static_cast<unsigned char>(lower(a[i]));
    const auto y = static_cast<unsigned char>(lower(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace

void NameIndex::Sort() {
  std::sort(m_names.begin(), m_names.end(),
            [](const Entry& a, const Entry& b) { return CompareIgnoringCase(a.Name, b.Name) < 0; });
}

std::optional<size_t> NameIndex::Find(std::string_view name) const {
  const auto found = std::lower_bound(m_names.begin(), m_names.end(), name, [](const Entry& entry, std::string_view n) {
    return CompareIgnoringCase(entry.Name, n) < 0;
  });
  if (found == m_names.end() || CompareIgnoringCase(found->Name, name) != 0) return std::nullopt;
  return found->Row;
}

const OptionRow* OptionTable::Find(std::string_view name) const {
  const auto row = m_index.Find(name);
  return row ? &Rows[*row] : nullptr;
}

std::span<const StatementRow> StatementRows() {
  static const std::span<const StatementRow> rows = MakeRows();
  return rows;
}

const StatementRow* FindStatement(std::string_view name) {
  static const NameIndex index(StatementRows());
  const auto row = name.starts_with('$') ? index.Find(name) : std::nullopt;
  return row ? &StatementRows()[*row] : nullptr;
}

}  // namespace tarnwick::qc
