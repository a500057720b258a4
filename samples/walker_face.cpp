#include <cmath>

#include "walker.h"

namespace tarnwick::samples {

namespace {

using model::Vec3;
using tests::FlexDescription;
using tests::MeshDescription;

/// The flex that moves the front points of the near head at the height of `height` by `delta`. `side` is -1 for the
/// right half, 1 for the left one, 0 for both.
FlexDescription MakeFlex(const MeshDescription& mesh, int32_t nearCount, int32_t flex, float height, int side,
                         const Vec3& delta) {
  FlexDescription made{.FlexDesc = flex, .VertAnims = {}};
  for (int32_t i = 0; i < nearCount; ++i) {
    const Vec3& point = mesh.Vertices[static_cast<size_t>(i)].Position;
    const bool isFront = point.x > 1 && std::abs(point.z - height) < 0.1f;
    if (!isFront || (side != 0 && point.y * static_cast<float>(side) <= 0)) continue;
    made.VertAnims.push_back({.Vertex = static_cast<int16_t>(i), .PositionDelta = delta});
  }
  return made;
}

/// An eye; compiled models place it in its bone's space.
tests::EyeballDescription MakeEye(float side, int32_t texture, int32_t upperLid, int32_t lowerLid) {
  return {.Bone = Head,
          .Origin = {EyeForward - 0.8f, side, EyeHeight - HeadBoneHeight},
          .ForwardOffset = 0.05f,
          .Radius = 1,
          .Texture = texture,
          .IrisScale = 1.5f,
          .UpperLidFlexDesc = upperLid,
          .LowerLidFlexDesc = lowerLid};
}

}  // namespace

void AddWalkerFace(tests::ModelBuilder& model) {
  tests::ModelDescription& figure = model.BodyParts[0].Models[0];
  MeshDescription& head = figure.Meshes[Skin];
  const int32_t nearCount = head.Lods[1][0][0].Vertices[0];  // the far LOD's vertices begin behind the near one's
  const float above = 67, below = 63.5f;
  head.Flexes = {MakeFlex(head, nearCount, UpperLidRight, above, -1, {0.1f, 0, -0.4f}),
                 MakeFlex(head, nearCount, LowerLidRight, below, -1, {0.1f, 0, 0.2f}),
                 MakeFlex(head, nearCount, UpperLidLeft, above, 1, {0.1f, 0, -0.4f}),
                 MakeFlex(head, nearCount, LowerLidLeft, below, 1, {0.1f, 0, 0.2f}),
                 MakeFlex(head, nearCount, SmileRight, MouthHeight, 0, {-0.2f, 0, 0.6f}),
                 MakeFlex(head, nearCount, MouthOpen, 59, 0, {-0.3f, 0, -0.8f})};
  head.Flexes[4].Partner = SmileLeft;
  figure.Meshes[RightEye].Eyeball = 0;
  figure.Meshes[LeftEye].Eyeball = 1;
  figure.Eyeballs = {MakeEye(-EyeSide, RightEye, UpperLidRight, LowerLidRight),
                     MakeEye(EyeSide, LeftEye, UpperLidLeft, LowerLidLeft)};

  model.FlexDescs = {"upper_right", "lower_right", "upper_left", "lower_left", "smileR", "smileL", "mouth_open"};
  model.FlexControllers = {{.Type = "eyelid", .Name = "blink"},
                           {.Type = "mouth", .Name = "smile"},
                           {.Type = "mouth", .Name = "jaw_drop", .Minimum = -0.2f}};
  using model::FlexOpController;
  using model::FlexOpMultiply;
  for (const int32_t lid : {UpperLidRight, LowerLidRight, UpperLidLeft, LowerLidLeft}) {
    model.FlexRules.push_back({lid, {{FlexOpController, 0}}});
  }
  model.FlexRules.push_back({SmileRight, {{FlexOpController, 1}}});
  model.FlexRules.push_back({SmileLeft, {{FlexOpController, 1}}});
  model.FlexRules.push_back({MouthOpen, {{FlexOpController, 2}, tests::Constant(0.8f), {FlexOpMultiply, 0}}});
  model.Mouths = {{.Bone = Head, .Forward = {1, 0, 0}, .FlexDesc = MouthOpen}};
}

}  // namespace tarnwick::samples
