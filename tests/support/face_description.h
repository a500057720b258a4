#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "model/bone_math_types.h"
#include "model/face_records.h"

namespace tarnwick::tests {

// The face of a model of the model writer.

struct VertAnimDescription {
  int16_t Vertex = 0;  // within the mesh
  model::Vec3 PositionDelta = {0, 0, 0};
  model::Vec3 NormalDelta = {0, 0, 0};
  uint8_t Speed = 255;
  uint8_t Side = 0;
};

struct FlexDescription {
  int32_t FlexDesc = 0;
  std::vector<VertAnimDescription> VertAnims = {VertAnimDescription{}};
  int32_t Partner = 0;
  std::array<float, 4> Targets = {0, 1, 10, 11};
  bool Wrinkles = false;  // its vertex animations drive wrinkles too
};

struct EyeballDescription {
  int32_t Bone = 0;
  model::Vec3 Origin = {0, 0, 0};
  float ForwardOffset = 0;
  float Radius = 0.5f;
  int32_t Texture = 0;
  float IrisScale = 1;
  model::Vec3 Up = {0, 0, 1};
  model::Vec3 Forward = {0, -1, 0};
  float UpperTarget[3] = {-0.5f, 0, 0.5f};  // lowered, neutral, raised
  float LowerTarget[3] = {-0.5f, 0, 0.5f};
  int32_t UpperLidFlexDesc = 0;
  int32_t LowerLidFlexDesc = 0;
};

struct MouthDescription {
  int32_t Bone = 0;
  model::Vec3 Forward = {1, 0, 0};
  int32_t FlexDesc = 0;
};

struct FlexControllerDescription {
  std::string Type = "mouth";
  std::string Name = "smile";
  float Minimum = 0;
  float Maximum = 1;
};

struct FlexRuleDescription {
  int32_t FlexDesc = 0;
  std::vector<model::StudioFlexOp> Ops = {};
};

/// An operation that pushes a constant.
inline model::StudioFlexOp Constant(float value) {
  return {model::FlexOpConstant, std::bit_cast<int32_t>(value)};
}

}  // namespace tarnwick::tests
