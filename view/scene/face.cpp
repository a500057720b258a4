#include "view/scene/face.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "model/face_records.h"

namespace tarnwick::view {

namespace {

/// Values that a rule holds at a time; the deepest of real models needs a handful.
constexpr size_t DeepestStack = 64;

float Operate(int32_t op, float a, float b) {
  switch (op) {
    case model::FlexOpAdd:
      return a + b;
    case model::FlexOpSubtract:
      return a - b;
    case model::FlexOpMultiply:
      return a * b;
    case model::FlexOpDivide:
      return b > 0.0001f || b < -0.0001f ? a / b : 0;
    case model::FlexOpLarger:
      return std::max(a, b);
    default:
      return std::min(a, b);
  }
}

/// Runs a rule. Nothing for one that is not sound.
bool Run(const Scene& scene, const SceneFlexRule& rule, std::span<const float> controllers,
         const std::vector<float>& weights, float& result) {
  std::array<float, DeepestStack> stack;
  size_t height = 0;
  for (const SceneFlexOp& op : rule.Ops) {
    const auto index = static_cast<size_t>(std::max(op.Index, 0));
    switch (op.Op) {
      case model::FlexOpConstant:
      case model::FlexOpController:
      case model::FlexOpFlexDesc: {
        if (height == stack.size()) return false;
        float value = op.Value;
        if (op.Op == model::FlexOpController) {
          if (op.Index < 0 || index >= scene.FlexControllers.size()) return false;
          value =
              index < controllers.size() ? controllers[index] : DefaultControllerValue(scene.FlexControllers[index]);
        } else if (op.Op == model::FlexOpFlexDesc) {
          if (op.Index < 0 || index >= weights.size()) return false;
          value = weights[index];
        }
        stack[height++] = value;
        break;
      }
      case model::FlexOpNegate:
        if (height < 1) return false;
        stack[height - 1] = -stack[height - 1];
        break;
      case model::FlexOpAdd:
      case model::FlexOpSubtract:
      case model::FlexOpMultiply:
      case model::FlexOpDivide:
      case model::FlexOpLarger:
      case model::FlexOpSmaller:
        if (height < 2) return false;
        --height;
        stack[height - 1] = Operate(op.Op, stack[height - 1], stack[height]);
        break;
      default:
        return false;
    }
  }
  if (height == 0 || !std::isfinite(stack[0])) return false;
  result = stack[0];
  return true;
}

/// How much of a shape is there when its flex has `weight`.
float ShareOf(const SceneFlexShape& shape, float weight) {
  const auto [start, whole, ending, end] = shape.Targets;
  if (!(weight > start) || !(weight < end)) return 0;
  if (weight < whole) return (weight - start) / (whole - start);
  return weight > ending ? (end - weight) / (end - ending) : 1;
}

}  // namespace

float DefaultControllerValue(const SceneFlexController& controller) {
  const auto [low, high] = std::minmax(controller.Minimum, controller.Maximum);
  return std::clamp(0.0f, low, high);
}

std::vector<float> FlexWeights(const Scene& scene, std::span<const float> controllers) {
  std::vector<float> weights(scene.Flexes.size());
  for (const SceneFlexRule& rule : scene.FlexRules) {
    float result = 0;
    if (Run(scene, rule, controllers, weights, result)) weights[static_cast<size_t>(rule.Flex)] = result;
  }
  return weights;
}

PointRange FlexedRange(const Scene& scene) {
  if (scene.FlexDeltas.empty()) return {};
  const auto [low, high] =
      std::minmax_element(scene.FlexDeltas.begin(), scene.FlexDeltas.end(),
                          [](const SceneFlexDelta& a, const SceneFlexDelta& b) { return a.Vertex < b.Vertex; });
  return {low->Vertex, int64_t{high->Vertex} - low->Vertex + 1};
}

void FlexPoints(const Scene& scene, std::span<const float> weights, std::vector<ScenePoint>& points) {
  if (points.size() != scene.Points.size()) {
    points = scene.Points;
  } else {
    for (const SceneFlexDelta& delta : scene.FlexDeltas) points[delta.Vertex] = scene.Points[delta.Vertex];
  }
  const auto weightOf = [&](int32_t flex) {
    return static_cast<size_t>(flex) < weights.size() ? weights[static_cast<size_t>(flex)] : 0.0f;
  };
  for (const SceneFlexShape& shape : scene.FlexShapes) {
    const float own = ShareOf(shape, weightOf(shape.Flex));
    const float other = shape.Partner != 0 ? ShareOf(shape, weightOf(shape.Partner)) : own;
    if (own == 0 && other == 0) continue;
    for (int64_t i = shape.FirstDelta; i < shape.FirstDelta + shape.DeltaCount; ++i) {
      const SceneFlexDelta& delta = scene.FlexDeltas[static_cast<size_t>(i)];
      const float share = own + (other - own) * delta.Side;
      ScenePoint& point = points[delta.Vertex];
      point.Position = point.Position + delta.Position * share;
      point.Normal = point.Normal + delta.Normal * share;
    }
  }
  // A vertex may stand in several shapes: its normal is made of unit length when all have been added.
  for (const SceneFlexDelta& delta : scene.FlexDeltas) {
    ScenePoint& point = points[delta.Vertex];
    if (point.Normal != scene.Points[delta.Vertex].Normal) point.Normal = Unit(point.Normal);
  }
}

}  // namespace tarnwick::view
