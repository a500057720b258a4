#include "compiler/face/face_names.h"

#include <bit>
#include <cmath>
#include <optional>
#include <utility>

#include "core/paths.h"
#include "qc/messages.h"

namespace tarnwick::compiler {

int32_t FaceNames::Find(const Table& table, std::string_view name) {
  const auto exact = table.Exact.find(std::string(name));
  if (exact != table.Exact.end()) return exact->second;
  const auto lower = table.Lower.find(core::LowerAscii(name));
  return lower == table.Lower.end() ? -1 : lower->second;
}

void FaceNames::Add(Table& table, std::string_view name, size_t number) {
  table.Exact.try_emplace(std::string(name), static_cast<int32_t>(number));
  table.Lower.try_emplace(core::LowerAscii(name), static_cast<int32_t>(number));
}

int32_t FaceNames::Descriptor(std::string_view name) {
  const int32_t known = FindDescriptor(name);
  if (known >= 0) return known;
  Add(m_descriptors, name, m_face.Descriptors.size());
  m_face.Descriptors.emplace_back(name);
  return static_cast<int32_t>(m_face.Descriptors.size()) - 1;
}

bool FaceNames::AddController(BuiltFlexController controller) {
  if (FindController(controller.Name) >= 0) return false;
  Add(m_controllers, controller.Name, m_face.Controllers.size());
  m_face.Controllers.push_back(std::move(controller));
  return true;
}

namespace {

using Kind = qc::ExpressionNode::Kind;

/// The operation of a node that works on what stands on the stack; 0 for none.
int32_t OperationOf(const qc::ExpressionNode& node) {
  switch (node.What) {
    case Kind::Add:
      return model::FlexOpAdd;
    case Kind::Subtract:
      return model::FlexOpSubtract;
    case Kind::Multiply:
      return model::FlexOpMultiply;
    case Kind::Divide:
      return model::FlexOpDivide;
    case Kind::Negate:
      return model::FlexOpNegate;
    case Kind::Function:
      return node.Name == "max" ? model::FlexOpLarger : node.Name == "min" ? model::FlexOpSmaller : 0;
    default:
      return 0;
  }
}

model::StudioFlexOp Constant(double value) {
  return {model::FlexOpConstant, std::bit_cast<int32_t>(static_cast<float>(value))};
}

std::string NotAController(std::string_view name, const BuiltFace& face) {
  qc::NearName near(name);
  for (const BuiltFlexController& controller : face.Controllers) near.Offer(controller.Name);
  return qc::Shown(name) + " is no flexcontroller of the script" + qc::DidYouMean(near.Best());
}

}  // namespace

bool AddFlexRule(CompileContext& context, const qc::FlexRule& rule, FaceNames& names, BuiltFace& face) {
  if (rule.Nodes.empty()) return false;
  BuiltFlexRule built;
  built.Descriptor = names.Descriptor(rule.Flex);
  built.Operations.reserve(rule.Nodes.size());
  for (const qc::ExpressionNode& node : rule.Nodes) {
    if (node.What == Kind::Number) {
      built.Operations.push_back(Constant(node.Value));
    } else if (node.What == Kind::Controller) {
      const int32_t controller = names.FindController(node.Name);
      if (controller < 0) {
        context.Error(node.At, NotAController(node.Name, face), core::TroubleKind::Missing);
        return false;
      }
      built.Operations.push_back({model::FlexOpController, controller});
    } else if (node.What == Kind::Flex) {
      if (names.FindDescriptor(node.Name) < 0) {
        context.Warning(node.At, "nothing drives the flex " + qc::Shown(node.Name), core::TroubleKind::Missing);
      }
      built.Operations.push_back({model::FlexOpFlexDesc, names.Descriptor(node.Name)});
    } else if (const int32_t operation = OperationOf(node); operation != 0) {
      built.Operations.push_back({operation, 0});
    } else {
      context.Warning(node.At,
                      "the function " + qc::Shown(node.Name) + " is not built; the rule of " + qc::Shown(rule.Flex) +
                          " is left out",
                      core::TroubleKind::Lost);
      return false;
    }
  }
  face.Rules.push_back(std::move(built));
  return true;
}

std::vector<BuiltFlexControl> ControlsOf(const std::vector<BuiltFlexController>& controllers) {
  constexpr std::string_view Right = "right_", Left = "left_";
  const auto restOf = [](std::string_view name, std::string_view side) -> std::optional<std::string_view> {
    if (name.size() <= side.size() || !core::EqualIgnoringCase(name.substr(0, side.size()), side)) return std::nullopt;
    return name.substr(side.size());
  };
  std::vector<BuiltFlexControl> controls;
  for (size_t i = 0; i < controllers.size(); ++i) {
    const auto number = static_cast<int32_t>(i);
    if (i + 1 < controllers.size()) {
      const std::string_view first = controllers[i].Name, second = controllers[i + 1].Name;
      const auto right = restOf(first, Right), thenLeft = restOf(second, Left);
      const auto left = restOf(first, Left), thenRight = restOf(second, Right);
      if (right && thenLeft && core::EqualIgnoringCase(*right, *thenLeft)) {
        controls.push_back({std::string(*right), {number + 1, number}});
        ++i;
        continue;
      }
      if (left && thenRight && core::EqualIgnoringCase(*left, *thenRight)) {
        controls.push_back({std::string(*left), {number, number + 1}});
        ++i;
        continue;
      }
    }
    controls.push_back({controllers[i].Name, {number, -1}});
  }
  return controls;
}

}  // namespace tarnwick::compiler
