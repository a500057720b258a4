#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "view/scene/vector_math.h"

namespace tarnwick::view {

// A model as it is shown: plain data, ready for a graphics processor and for lists in a window. Everything in it is
// checked: indices lead to something, numbers are finite. What a field of bone number -1 says hangs on no bone.

/// Where a vertex stands in the model's rest pose, and its normal. Flexes change these, so they are an array of their
/// own beside SceneVertex.
struct ScenePoint {
  Vec3 Position;
  Vec3 Normal;
};
static_assert(sizeof(ScenePoint) == 24);

/// The rest of a vertex. A vertex moves by the sum of its bones' skin matrices times the weights; unused weights are 0,
/// their bones 0. The weights add up to 1.
struct SceneVertex {
  float U = 0, V = 0;  // V goes down from the first row of the image, as texture files hold rows
  std::array<float, 4> Tangent = {0, 0, 0, 1};  // along rising U; the last is the sign of the bitangent
  std::array<float, 3> Weights = {1, 0, 0};
  std::array<uint16_t, 4> Bones = {};  // the last is unused
};
static_assert(sizeof(SceneVertex) == 44);

/// Triangles that are drawn together: those of one mesh of one level of detail. Seen from outside their corners run
/// counterclockwise.
struct SceneDraw {
  int32_t BodyPart = 0;
  int32_t Model = 0;     // of the body part
  int32_t Lod = 0;       // a place in Scene::Lods
  int32_t Material = 0;  // a slot of the skins' tables: see Scene::MaterialOf
  int64_t FirstIndex = 0;
  int64_t IndexCount = 0;
  int32_t Eyeball = -1;   // of the model, for the mesh of an eyeball
  bool IsFlexed = false;  // flexes move some of its vertices
};

/// An eye, for whoever wants to draw an iris.
struct SceneEyeball {
  std::string Name;
  int32_t Bone = -1;
  Vec3 Origin;  // these three in the bone's space
  Vec3 Up;
  Vec3 Forward;
  float Radius = 0;
  float IrisScale = 0;
};

/// One of the models that a body part can show.
struct SceneModel {
  std::string Name;  // may be empty
  std::vector<SceneEyeball> Eyeballs;
  std::vector<int64_t> TriangleCounts;  // a level of detail
  std::vector<int64_t> VertexCounts;    // a level of detail: vertices that its triangles use
};

struct SceneBodyPart {
  std::string Name;
  std::vector<SceneModel> Models;  // one of them is shown
};

struct SceneLod {
  float Distance = 0;     // from which on it is shown, by the measure of Scene::LodAt
  bool IsShadow = false;  // for shadows alone, never shown by distance
};

struct SceneBone {
  std::string Name;
  int32_t Parent = -1;  // stands before its children
  Vec3 Position;        // at rest, in the parent's space
  Quat Rotation;
  Matrix34 PoseToBone;  // from the space in which the vertices stand to the bone's
  uint32_t Flags = 0;   // as in StudioBone
};

/// A named place, in the space of a bone.
struct SceneAttachment {
  std::string Name;
  int32_t Bone = -1;
  Matrix34 Placement;
};

/// A box in which shots hit, in the space of a bone.
struct SceneHitbox {
  std::string Name;  // may be empty
  int32_t Bone = -1;
  int32_t Group = 0;  // 0 generic, 1 head, 2 chest, 3 stomach, 4 and 5 arms, 6 and 7 legs; others are a game's own
  Box Extent;
};

struct SceneHitboxSet {
  std::string Name;
  std::vector<SceneHitbox> Boxes;
};

/// A pose of a driving bone, and the pose that the driven one then has.
struct SceneTrigger {
  float InverseTolerance = 0;  // 1 / the angle in radians at which the trigger's weight ends
  Quat DriverRotation;
  Vec3 Position;
  Quat Rotation;
};

/// A bone that follows the rotation of another one.
struct SceneDrivenBone {
  int32_t Bone = 0;
  int32_t Driver = 0;
  std::vector<SceneTrigger> Triggers;  // at least one
};

/// A least and a largest value, and the share of the speed with which what runs against one comes back.
struct SceneJiggleLimit {
  float Minimum = 0, Maximum = 0;
  float Bounce = 0;
};

/// How a bone swings by itself. Angles are radians, axes those of the bone: X to the side, Y up, Z along.
struct SceneJiggle {
  int32_t Bone = 0;
  uint32_t Flags = 0;  // JiggleFlag bits of model/procedural_records.h
  float Length = 0;
  float TipMass = 0;
  float YawStiffness = 0, YawDamping = 0;
  float PitchStiffness = 0, PitchDamping = 0;
  float AlongStiffness = 0, AlongDamping = 0;
  float AngleLimit = 0;
  SceneJiggleLimit Yaw = {};
  SceneJiggleLimit Pitch = {};
  float BaseMass = 0, BaseStiffness = 0, BaseDamping = 0;
  std::array<SceneJiggleLimit, 3> BaseLimits = {};
};

/// One convex piece of a solid of the collision model: triangles of points in the space of `Bone`, whose corners run
/// counterclockwise seen from outside.
struct SceneHull {
  std::string Name;  // of the solid; empty where the file does not name it
  int32_t Solid = 0;
  int32_t Bone = -1;
  std::vector<Vec3> Points;
  std::vector<uint32_t> Indices;  // three a triangle
};

/// A value that steers sequences of several animations.
struct ScenePoseParameter {
  std::string Name;
  float Start = 0, End = 1;
  float Wrap = 0;  // values this far apart are the same; 0 for none
  bool Loops = false;
};

/// Flags of a layer beside those of its sequence: what its ramps follow.
inline constexpr uint32_t LayerFlagSpline = 0x40;     // ramps are eased
inline constexpr uint32_t LayerFlagCrossFade = 0x80;  // behind the tail it fades against the other layers
inline constexpr uint32_t LayerFlagNoBlend = 0x200;   // its weight is its own, not a part of its sequence's
inline constexpr uint32_t LayerFlagLocal = 0x1000;    // it belongs to its sequence alone, not to what lies below
inline constexpr uint32_t LayerFlagPose = 0x4000;     // a pose parameter takes the place of the cycle

/// A sequence that plays on top of another one. It is whole from Peak to Tail and not there ahead of Start and behind
/// End: parts of the cycle, or values of a pose parameter. All four 0: always whole.
struct SceneAutoLayer {
  int32_t Sequence = 0;
  int32_t PoseParameter = -1;  // whose value takes the place of the cycle
  float Start = 0, Peak = 0, Tail = 0, End = 0;
  uint32_t Flags = 0;
};

/// A limb whose end can be held where it is: hip, knee and foot, or the like, each below the one before.
struct SceneIkChain {
  std::string Name;
  std::array<int32_t, 3> Bones = {};
};

/// The end of a limb that goes back to where it was ahead of what moved it: wholly at weights of 1.
struct SceneIkLock {
  int32_t Chain = 0;
  float PositionWeight = 1;
  float RotationWeight = 1;
};

/// What a sequence says of itself. `Animations` has Columns x Rows numbers of Scene::Animations, row after row.
struct SceneSequence {
  std::string Name;
  std::string Activity;  // may be empty
  uint32_t Flags = 0;    // SequenceFlag bits of model/animation_records.h
  float FadeIn = 0, FadeOut = 0;
  Box Extent;
  int32_t Columns = 1, Rows = 1;
  std::array<int32_t, 2> PoseParameters = {-1, -1};  // of the columns, of the rows
  std::array<float, 2> PoseStart = {0, 0};
  std::array<float, 2> PoseEnd = {1, 1};
  std::array<std::vector<float>, 2> PoseKeys;  // where columns or rows stand unevenly: the parameter's value at each
  std::vector<int32_t> Animations;
  std::vector<float> BoneWeights;  // one a bone; empty: all 1
  bool IsPartial = false;          // it is made for some bones alone
  std::vector<SceneAutoLayer> Layers;
  std::vector<SceneIkLock> IkLocks;
  float Fps = 30;          // these two with every pose parameter at its default
  int32_t FrameCount = 1;  // at least 1

  bool IsLooping() const;
  bool IsDelta() const;
  bool IsAutoplay() const;
};

struct SceneAnimation {
  std::string Name;
  float Fps = 30;
  int32_t FrameCount = 1;
  bool IsDelta = false;
};

/// A slider that moves the face.
struct SceneFlexController {
  std::string Name;
  std::string Type;  // "phoneme", "eyelid" and so on
  float Minimum = 0, Maximum = 1;
};

/// One step of a rule: an operation of model/face_records.h.
struct SceneFlexOp {
  int32_t Op = 0;
  int32_t Index = 0;  // of a controller or a flex
  float Value = 0;    // of a constant
};

/// The formula that gives a flex its weight.
struct SceneFlexRule {
  int32_t Flex = 0;
  std::vector<SceneFlexOp> Ops;
};

/// Where one vertex goes under a flex that is whole.
struct SceneFlexDelta {
  uint32_t Vertex = 0;  // of Scene::Points
  float Side = 0;       // 0: all of the flex's own weight, 1: all of its partner's
  Vec3 Position;
  Vec3 Normal;
};

/// The vertex animation of a flex on one mesh.
struct SceneFlexShape {
  int32_t Flex = 0;
  int32_t Partner = 0;                            // the flex of the other side; 0 for none
  std::array<float, 4> Targets = {0, 1, 10, 11};  // weights at which it begins, is whole, begins to end, has ended
  int64_t FirstDelta = 0;                         // of Scene::FlexDeltas
  int64_t DeltaCount = 0;
};

class FrameSource;

/// A model with all that can be seen of it. Cheap to move; a copy shares what the animations are played from, which
/// then must stay on one thread.
struct Scene {
  std::string Path;  // of the .mdl or .smd file
  std::string Name;  // that the model calls itself
  int32_t Version = 0;
  uint32_t Flags = 0;     // ModelFlag bits
  int64_t FileBytes = 0;  // of all files that were read

  // The mesh
  std::vector<ScenePoint> Points;
  std::vector<SceneVertex> Vertices;  // as many as Points
  std::vector<uint32_t> Indices;      // three a triangle
  std::vector<SceneDraw> Draws;       // by body part, model, level, mesh
  std::vector<SceneBodyPart> BodyParts;
  std::vector<SceneLod> Lods;  // at least one

  // Materials
  std::vector<std::string> Materials;            // names, without extension; in an SMD as typed
  std::vector<std::string> MaterialDirectories;  // below "materials", in the order in which they are sought
  std::vector<std::vector<int32_t>> Skins;       // a skin: the place in Materials of each slot; at least one skin

  // The skeleton
  std::vector<SceneBone> Bones;
  /// What turns the roots of the rest pose as the model stands when it is animated.
  Quat RestTurn;
  std::vector<SceneDrivenBone> DrivenBones;
  std::vector<SceneJiggle> Jiggles;
  std::vector<SceneAttachment> Attachments;
  std::vector<SceneHitboxSet> HitboxSets;
  std::vector<SceneHull> Hulls;
  Box HullBox;  // the model's own boxes; empty where it gives none
  Box ViewBox;
  Box MeshBox;  // of the vertices of the first level at rest, turned as the model stands
  Vec3 EyePosition;
  Vec3 IllumPosition;

  // What moves
  std::vector<SceneSequence> Sequences;
  std::vector<SceneAnimation> Animations;
  std::vector<ScenePoseParameter> PoseParameters;
  std::vector<SceneIkChain> IkChains;
  std::vector<SceneIkLock> AutoplayLocks;  // of all sequences that always play
  std::vector<std::string> Included;       // the names of the other models that sequences are of, as they were read
  std::vector<std::string> Flexes;         // names
  std::vector<SceneFlexController> FlexControllers;
  std::vector<SceneFlexRule> FlexRules;
  std::vector<SceneFlexShape> FlexShapes;
  std::vector<SceneFlexDelta> FlexDeltas;
  /// Where the animations' frames come from; null without any.
  std::shared_ptr<FrameSource> Frames;

  /// The place in Materials of a draw's slot under `skin`; -1 where the slot has none. A skin that the model does not
  /// have counts as the first.
  int32_t MaterialOf(const SceneDraw& draw, int32_t skin) const;
  /// The level of detail that is shown where a unit at the model covers `unitPixels` pixels of the picture: the last
  /// one whose distance is at most 100 / unitPixels.
  int32_t LodAt(float unitPixels) const;
  /// Whether `draw` is shown with these models of the body parts (the first for one that is missing) at level `lod`.
  bool IsDrawn(const SceneDraw& draw, const std::vector<int32_t>& bodyGroups, int32_t lod) const;
  /// The sequence called `name`, whatever the case of its letters; -1 if there is none.
  int32_t FindSequence(const std::string& name) const;
  /// Bytes of the vectors above that a graphics processor would hold.
  int64_t MeshBytes() const;
};

/// What is drawn of a scene with these choices.
struct SceneCounts {
  int64_t Triangles = 0;
  int64_t Vertices = 0;
  int64_t Draws = 0;
};
SceneCounts CountsOf(const Scene& scene, const std::vector<int32_t>& bodyGroups, int32_t lod);

}  // namespace tarnwick::view
