#pragma once

#include "support/model_builder.h"

namespace tarnwick::samples {

// The bundled sample: a small walking figure, 72 units tall, that faces +X.

/// Its bones, in the order of the figure's bone table.
enum WalkerBone : uint8_t {
  Pelvis,
  Spine,
  Head,
  RightArm,
  RightForearm,
  LeftArm,
  LeftForearm,
  RightThigh,
  RightCalf,
  RightFoot,
  LeftThigh,
  LeftCalf,
  LeftFoot,
  Plume,
};

/// Its materials.
enum WalkerMaterial { Cloth, Skin, RightEye, LeftEye, RedCloth };

/// Its flexes.
enum WalkerFlex { UpperLidRight, LowerLidRight, UpperLidLeft, LowerLidLeft, SmileRight, SmileLeft, MouthOpen };

/// Where the parts of the head are, in pose space.
inline constexpr float MouthHeight = 61.5f;
inline constexpr float EyeHeight = 65;
inline constexpr float EyeForward = 4.2f;
inline constexpr float EyeSide = 1.7f;
/// Where the head's bone begins; it is not turned.
inline constexpr float HeadBoneHeight = 58;

std::vector<tests::BoneDescription> WalkerBones();
/// Body, head and eyes, each with a LOD for near, for far, and for the shadow. The vertices of each mesh stand LOD
/// after LOD; `counts` gets how many each mesh has in each LOD.
std::vector<tests::MeshDescription> WalkerMeshes(std::vector<std::vector<int32_t>>& counts);
/// Adds flexes to the head's mesh, and eyes, controllers and rules to the model.
void AddWalkerFace(tests::ModelBuilder& model);
/// Adds the animations and sequences.
void AddWalkerMotion(tests::ModelBuilder& model);

/// What falls when the figure falls: a part for each bone but the feet.
tests::PhyBuilder WalkerPhysics(const std::vector<tests::BoneDescription>& bones);

/// The whole figure.
tests::ModelBuilder Walker();

}  // namespace tarnwick::samples
