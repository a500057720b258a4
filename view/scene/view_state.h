#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "view/scene/camera.h"
#include "view/scene/scene_pose.h"

namespace tarnwick::view {

/// How the mesh is drawn.
enum class ShadingMode { Textured, Shaded, Wireframe };

/// What is drawn beside the mesh.
struct ViewExtras {
  bool Bones = false;
  bool BoneNames = false;
  bool Attachments = false;
  bool Hitboxes = false;
  bool Hulls = false;
  bool Boxes = false;  // bounding boxes of the model and of the sequence
  bool Normals = false;
  bool Grid = true;

  bool operator==(const ViewExtras&) const = default;
};

/// A colour, each part 0 to 1.
struct ViewColor {
  float Red = 0, Green = 0, Blue = 0, Alpha = 1;

  bool operator==(const ViewColor&) const = default;
};

/// A sequence that is played on top.
struct ViewLayer {
  int32_t Sequence = 0;
  float Weight = 1;

  bool operator==(const ViewLayer&) const = default;
};

/// Everything that a person can choose about how a scene is shown. Numbers that a scene does not have are harmless.
struct ViewState {
  ShadingMode Mode = ShadingMode::Textured;
  bool WireOverMesh = false;  // lines of the triangles on top of the other modes
  ViewExtras Extras;
  Camera Eye;
  float LightYaw = 30, LightPitch = 40;  // degrees, as the camera's: where the light comes from
  bool IsLightChosen = false;            // by the user; else it is the desktop's, as the background is
  std::optional<ViewColor> Background;   // nothing: the desktop's
  int32_t HighlightedMaterial = -1;      // a place in Scene::Materials that is lit up

  int32_t Skin = 0;
  std::vector<int32_t> BodyGroups;  // a model of each body part; those that are missing show the first
  std::optional<int32_t> FixedLod;  // nothing: by distance
  int32_t HitboxSet = 0;

  int32_t Sequence = -1;  // -1: the rest pose
  float Cycle = 0;        // 0 at the first frame, 1 at the last
  float Seconds = 0;      // that have been played altogether
  bool IsPlaying = true;
  float Speed = 1;
  bool Loops = true;  // one that does not loop by itself is played again too
  std::vector<ViewLayer> Layers;
  std::vector<float> PoseParameters;
  std::vector<float> FlexControllers;
  bool Ik = true;      // ends of limbs are held where sequences lock them
  bool Swings = true;  // jiggle bones do, while the sequence plays

  bool operator==(const ViewState&) const = default;
};

/// The state in which `scene` is first shown: its first sequence that is no layer plays, all values have their
/// defaults, the camera sees the whole model.
ViewState FirstViewOf(const Scene& scene, float aspect);

/// Goes on by `seconds` of real time where the state is playing. At the end of a sequence that is not to loop it stays
/// and stops.
void Advance(const Scene& scene, ViewState& state, float seconds);

/// The frame that is shown, counted from 0, and setting it.
float ShownFrame(const Scene& scene, const ViewState& state);
void ShowFrame(const Scene& scene, ViewState& state, float frame);

/// The pose of this state.
PoseRequest PoseOf(const ViewState& state);

/// The level of detail that is shown in a picture of this height.
int32_t ShownLod(const Scene& scene, const ViewState& state, float height);

}  // namespace tarnwick::view
