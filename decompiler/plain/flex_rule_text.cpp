#include "decompiler/plain/flex_rule_text.h"

#include <bit>

#include "core/text_writer.h"

// An expression is kept as a tree and printed once at the end. Joining texts at each operation would copy the left
// side of a long sum again and again.

namespace tarnwick::decompiler::plain {

namespace {

/// A pushed text, or two nodes with an operator between them.
struct Node {
  std::string Text;
  int64_t Left = -1;
  int64_t Right = -1;
  char Operator = 0;
};

char OperatorOf(int32_t op) {
  switch (op) {
    case FlexOpAdd:
      return '+';
    case FlexOpSubtract:
      return '-';
    case FlexOpMultiply:
      return '*';
    case FlexOpDivide:
      return '/';
    default:
      return 0;
  }
}

std::string NameOr(const std::vector<std::string_view>& names, int32_t index, std::string_view prefix,
                   std::string_view unknown) {
  if (index < 0 || static_cast<size_t>(index) >= names.size()) return std::string(unknown);
  return std::string(prefix) + std::string(names[static_cast<size_t>(index)]);
}

std::string ConstantText(int32_t bits) {
  char text[core::LongestNumberText];
  return " " + std::string(text, core::WriteFixed<3>(text, std::bit_cast<float>(bits)));
}

/// Prints the tree below `root`, from left to right, without recursion: a rule can be as deep as it has operations.
std::optional<std::string> Print(const std::vector<Node>& nodes, int64_t root, size_t mostBytes) {
  struct Step {
    int64_t Node = -1;  // to be printed, or
    std::string_view Text;
  };
  std::string text;
  std::vector<Step> steps = {{root, {}}};
  const auto between = [](char op) -> std::string_view {
    return op == '+' ? " + " : op == '-' ? " - " : op == '*' ? " * " : " / ";
  };
  while (!steps.empty()) {
    const Step step = steps.back();
    steps.pop_back();
    if (step.Node < 0) {
      text += step.Text;
      continue;
    }
    const Node& node = nodes[static_cast<size_t>(step.Node)];
    if (node.Operator == 0) {
      text += node.Text;
    } else {
      text += '(';
      steps.push_back({-1, ")"});
      steps.push_back({node.Right, {}});
      steps.push_back({-1, between(node.Operator)});
      steps.push_back({node.Left, {}});
    }
    if (text.size() > mostBytes) return std::nullopt;
  }
  return text;
}

}  // namespace

std::optional<std::string> FlexRuleText(const core::RecordArray<StudioFlexOp>& ops, const FlexRuleNames& names,
                                        size_t mostBytes, int& skipped) {
  std::vector<Node> nodes;
  std::vector<int64_t> slots;  // node of each stack entry; those at and above `depth` are left over
  size_t depth = 0;
  const auto put = [&](size_t slot, Node node) {
    nodes.push_back(std::move(node));
    if (slots.size() <= slot) slots.resize(slot + 1, -1);
    slots[slot] = static_cast<int64_t>(nodes.size()) - 1;
  };
  for (const auto op : ops) {
    if (op->Op == FlexOpConstant) {
      put(depth++, {ConstantText(op->Operand)});
    } else if (op->Op == FlexOpController) {
      put(depth++, {NameOr(names.Controllers, op->Operand, " ", " unKnownFlexController!")});
    } else if (op->Op == FlexOpFlexDesc) {
      put(depth++, {NameOr(names.Descriptors, op->Operand, " %", " unKnownFlexDesc!")});
    } else if (const char sign = OperatorOf(op->Op); sign != 0) {
      if (depth > 1) {
        put(depth - 2, {{}, slots[depth - 2], slots[depth - 1], sign});
        --depth;
      } else {
        put(depth, {"BADSTACK"});
      }
    } else {
      ++skipped;
    }
  }
  if (depth > 1) return "Bad stack";
  if (slots.empty() || slots[0] < 0) return "";
  return Print(nodes, slots[0], mostBytes);
}

}  // namespace tarnwick::decompiler::plain
