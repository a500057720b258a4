#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "model/bone_math_types.h"
#include "qc/script.h"

namespace tarnwick::compiler {

/// A source file as one statement uses it, with what $scale, $origin and $upaxis said ahead of that statement.
struct SourceUse {
  int32_t Source = -1;  // its place in Script::Sources; -1 for none
  std::string Name;     // as typed
  qc::Place At;
  float Scale = 1;
  model::Vec3 Origin = {0, 0, 0};
  float OriginTurn = 0;  // degrees about Z
  bool YUp = false;
  bool Reverse = false;  // normals and winding turned round
};

// Faces: the lines of a $model block. Angles are degrees, places units of the model's space, `Source` places in
// Script::Sources.

struct PlanEyeball {
  qc::Place At;
  std::string Name, Bone;
  model::Vec3 Center = {0, 0, 0};
  std::string Material;
  float Diameter = 0, Angle = 0;
  std::string IrisMaterial;
  float IrisScale = 0;
};
struct PlanEyelid {
  qc::Place At;
  std::string Name;
  int32_t Source = -1;
  int32_t LowererFrame = 0, NeutralFrame = 0, RaiserFrame = 0;
  float LowererHeight = 0, NeutralHeight = 0, RaiserHeight = 0;
  float Split = 0;
  std::string Eyeball;
};
struct PlanMouth {
  qc::Place At;
  int32_t Number = 0;
  std::string Flex, Bone;
  model::Vec3 Forward = {0, 0, 0};
};
struct PlanShape {
  enum class Kind : uint8_t { Default, Flex, Pair };
  qc::Place At;
  Kind What = Kind::Flex;
  std::string Name;
  int32_t Frame = 0;
  bool IsFrameless = false;  // the line names no frame
  float Split = 0;           // of a pair
  std::optional<float> Position;
  std::optional<float> Decay;
};
struct PlanFlexFile {
  qc::Place At;
  int32_t Source = -1;
  std::vector<PlanShape> Shapes;
};
struct PlanFlexController {
  qc::Place At;
  std::string Group;
  std::vector<std::string> Names;
  float Minimum = 0, Maximum = 1;
};
struct PlanLocalVars {
  qc::Place At;
  std::vector<std::string> Names;
};
struct PlanFlexRule {
  qc::Place At;
  int32_t Rule = -1;  // its place in Script::Rules
};
struct PlanSphereNormals {
  qc::Place At;
  std::string Material;
  model::Vec3 Center = {0, 0, 0};
};
struct PlanVcaFile {
  qc::Place At;
  int32_t Source = -1;
};
using PlanFaceLine = std::variant<PlanEyeball, PlanEyelid, PlanMouth, PlanFlexFile, PlanFlexController, PlanLocalVars,
                                  PlanFlexRule, PlanSphereNormals, PlanVcaFile>;

/// A model of a body part. An empty choice has no source and no name.
struct PlanModel {
  std::string Name;  // the mesh as typed
  SourceUse Mesh;
  std::vector<PlanFaceLine> Face;  // in script order
};

struct PlanBodyPart {
  qc::Place At;
  std::string Name;
  std::vector<PlanModel> Models;
};

/// Another mesh for a model at a level of detail, or none.
struct PlanReplacement {
  qc::Place At;
  std::string Model;  // the mesh that is replaced, as typed
  SourceUse Mesh;     // Source -1: nothing is drawn
};

/// A level of detail beside the first. Levels stand by rising threshold, the shadow's last.
struct PlanLod {
  qc::Place At;
  float Threshold = 0;
  bool Shadow = false;
  std::vector<PlanReplacement> Replacements;
  std::vector<std::pair<std::string, std::string>> Materials;  // old, new
  std::vector<std::string> RemovedMeshes;                      // by material
  std::vector<std::pair<std::string, std::string>> Bones;      // old, new
  std::vector<std::string> CollapsedTrees;                     // by their root
  bool Faces = true;
};

/// Skins: row 0 names materials of the meshes, each further row replaces column by column.
struct PlanSkins {
  qc::Place At;
  std::vector<std::vector<std::string>> Rows;
};

// Physics.

struct PlanConstraint {
  qc::Place At;
  std::string Bone;
  int Axis = 0;
  float Minimum = 0, Maximum = 0, Friction = 0;  // as they take effect: free -360 360, fixed 0 0
};
struct PlanJointValue {
  qc::Place At;
  std::string Bone;
  float Value = 0;
};
struct PlanCollision {
  qc::Place At;
  bool Joints = false;
  SourceUse Mesh;
  float Mass = 1;
  bool AutoMass = false;
  std::optional<model::Vec3> MassCenter;
  float Inertia = 1, Damping = 0, RotDamping = 0;
  std::optional<float> Drag;
  bool Concave = false, ConcavePerJoint = false;
  int32_t MostPieces = 0;                                     // 0: no limit
  std::vector<std::pair<SourceUse, std::string>> MorePieces;  // a mesh and its words
  std::string RootBone;
  bool AssumeWorldSpace = false;
  std::vector<std::string> Skipped;
  std::vector<std::pair<std::string, std::string>> Merged;
  std::vector<PlanConstraint> Constraints;
  std::vector<PlanJointValue> JointInertia, JointDamping, JointRotDamping, JointMassBias;
  /// Bones in the order in which joint statements name them first.
  std::vector<std::string> NamedBones;
  bool NoSelfCollisions = false;
  std::vector<std::pair<std::string, std::string>> Collide;
  std::optional<std::array<float, 5>> AnimatedFriction;  // least, most, time in, time out, time hold
};

// Bones.

struct PlanBone {
  qc::Place At;
  std::string Name, Parent;
  model::Vec3 Position = {0, 0, 0};
  model::EulerAngles Angles = {0, 0, 0};  // radians
  model::Vec3 FixPosition = {0, 0, 0};    // what a realignment adds to the bone as sources have it
  model::EulerAngles FixAngles = {0, 0, 0};
};
struct PlanAttachment {
  qc::Place At;
  std::string Name, Bone;
  model::Vec3 Position = {0, 0, 0};
  std::optional<model::PitchYawRoll> Rotation;
  bool Absolute = false, Rigid = false, WorldAlign = false;
  std::optional<std::array<float, 6>> Axes;  // X axis, then Z axis
  SourceUse Settings;                        // $origin moves those that stand in the model's space
};
struct PlanHitbox {
  qc::Place At;
  int32_t Group = 0;
  std::string Bone;
  model::Vec3 Minimum = {0, 0, 0}, Maximum = {0, 0, 0};
};
struct PlanHitboxSet {
  std::string Name;
  std::vector<PlanHitbox> Boxes;
};
struct PlanBoneText {
  qc::Place At;
  std::string Bone, Text;
};
struct PlanBoneNumber {
  qc::Place At;
  std::string Bone;
  int32_t Value = 0;
};
struct PlanController {
  qc::Place At;
  std::string Bone;
  int32_t Number = 0;
  int32_t Type = 0;
  float Start = 0, End = 0;
};
struct PlanIkChain {
  qc::Place At;
  std::string Name, Bone;
  model::Vec3 Knee = {0, 0, 0};
  std::optional<model::Vec3> Center;
  float Height = 0, Pad = 0, Floor = 0;
};
struct PlanIkLock {
  qc::Place At;
  std::string Chain;
  float PositionWeight = 0, RotationWeight = 0;
};
struct PlanPoseParameter {
  qc::Place At;
  std::string Name;
  float Start = 0, End = 0, Wrap = 0;
  bool Loops = false;
};
struct PlanJiggleBone {
  qc::Place At;
  std::string Bone;
  const qc::Statement* Words = nullptr;
};
struct PlanWeightList {
  std::string Name;
  std::vector<std::pair<std::string, float>> Bones;
  qc::Place At;
};

/// What a script asks for, statement by statement, with every default in place. Names are as typed; they are matched
/// exactly first, then without regard to case. Views and the statements of sequences lie in `Script`.
struct CompilePlan {
  qc::Script Script;

  std::string ModelName;     // with .mdl at its end
  std::string InternalName;  // what the file holds in its place; empty for none
  bool StaticProp = false;
  uint32_t Flags = 0;  // of the header, as statements set them; not those of hit boxes and levels of detail
  std::string SurfaceProp = "default";
  int32_t Contents = 1;
  std::vector<PlanBoneText> BoneSurfaces;
  std::vector<PlanBoneNumber> BoneContents;
  std::optional<model::Vec3> EyePosition, IllumPosition;  // as typed
  std::string IllumBone;
  std::optional<std::array<model::Vec3, 2>> HullBox, ViewBox;
  std::optional<float> MaxEyeDeflection;  // degrees
  std::string KeyValues;                  // as the file holds them, without the zero byte; empty for none
  bool AutoCenter = false;
  bool BoxOnlyVertices = false;

  std::vector<std::string> MaterialFolders;  // with backslashes, as the file holds them
  std::vector<std::pair<std::string, std::string>> RenamedMaterials;
  std::vector<PlanBodyPart> BodyParts;
  std::vector<PlanSkins> Skins;
  std::vector<PlanLod> Lods;
  int32_t LeastLod = 0;  // finer ones are dropped
  bool SkinnedLods = false;
  std::optional<int32_t> AllowedRootLods;

  std::vector<PlanBone> DefinedBones;
  bool UnlockDefinedBones = false;
  std::vector<std::string> MergedBones, CollapsedBones;
  std::vector<PlanBoneText> Roots;  // without a text
  bool CollapseBones = false;
  std::vector<std::pair<std::string, std::string>> Hierarchy;     // child, parent
  std::vector<std::pair<std::string, std::string>> RenamedBones;  // old, new
  bool LockBoneLengths = false, CenterBonesOnVertices = false, SkipBonesInBoxes = false;
  std::vector<PlanAttachment> Attachments;
  bool GivenHitboxes = false;
  std::vector<PlanHitboxSet> HitboxSets;
  std::vector<PlanBoneNumber> HitGroups;
  std::vector<PlanController> Controllers;
  std::vector<PlanJiggleBone> JiggleBones;
  std::vector<int32_t> VrdSources;
  std::vector<PlanIkChain> IkChains;
  std::vector<PlanIkLock> AutoplayLocks;
  std::vector<PlanPoseParameter> PoseParameters;
  std::vector<PlanWeightList> WeightLists;
  std::optional<PlanWeightList> DefaultWeights;

  /// $animation, $sequence, $declaresequence, $cmdlist, $continue, $append and $prepend, with the words' values.
  /// The scale and the origin that hold for each stand beside it.
  struct Motion {
    const qc::Statement* Words = nullptr;
    SourceUse Settings;  // without a source
  };
  std::vector<Motion> Motions;
  bool CalcTransitions = false, LowerCaseSequences = false;
  int32_t AnimBlockSize = 0;       // bytes, 0 for none
  bool KeepFirstSections = false;  // of animations in a block file: they stay in the model's own
  bool NoStall = false;
  int32_t SectionFrames = 30, LeastSectionedFrames = 120;

  std::vector<std::string> IncludedModels;  // with models/ in front
  std::optional<PlanCollision> Collision;
  std::vector<int32_t> CollisionTexts;  // places in Script::KeyValues
};

}  // namespace tarnwick::compiler
