#include "decompiler/writers/flex_expression.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

#include "core/number_text.h"

// The program becomes a tree, which is printed once at the end. Joining texts at each operation would copy the left
// side of a long sum again and again.

namespace tarnwick::decompiler {

namespace {

/// What reads rules gives up at 200 levels.
constexpr int DeepestNesting = 180;

/// How tightly a node holds together: what is looser than its place needs parentheses.
enum class Bond : int8_t { Sum, Product, Operand };

struct Node {
  std::string Text;  // of an operand; the sign with its blanks, or the function's name
  int64_t Left = -1;
  int64_t Right = -1;  // -1 of a negation
  Bond Binds = Bond::Operand;
  int Depth = 1;  // levels of operands in its text

  bool IsFunction() const { return Binds == Bond::Operand && Left >= 0 && Right >= 0; }
  bool IsNegation() const { return Left >= 0 && Right < 0; }
};

bool IsNumber(const Node& node) {
  const char first = node.Text.empty() ? '\0' : node.Text.front();
  return node.Left < 0 && (first == '-' || first == '.' || (first >= '0' && first <= '9'));
}

struct Operation {
  int32_t Code;
  std::string_view Text;
  Bond Binds;
  int Values;
};
constexpr Operation Operations[] = {
    {FlexOpAdd, " + ", Bond::Sum, 2},          {FlexOpSubtract, " - ", Bond::Sum, 2},
    {FlexOpMultiply, " * ", Bond::Product, 2}, {FlexOpDivide, " / ", Bond::Product, 2},
    {FlexOpNegate, "-", Bond::Operand, 1},     {FlexOpLarger, "max", Bond::Operand, 2},
    {FlexOpSmaller, "min", Bond::Operand, 2},
};

bool IsPlainWord(std::string_view name) {
  const auto isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
  };
  return !name.empty() && isLetter(name.front()) &&
         std::ranges::all_of(name, [&](char c) { return isLetter(c) || c == '.' || (c >= '0' && c <= '9'); });
}

std::string CleanWord(std::string_view name) {
  std::string clean(name);
  for (char& c : clean) {
    if (static_cast<unsigned char>(c) < 0x20 || c == '"' || c == 0x7F) c = '_';
  }
  return clean;
}

class Builder {
 public:
  explicit Builder(const FlexExpressionNames& names) : m_names(names) {}

  /// Takes the next operation; gives the problem, or nothing.
  std::string Take(const StudioFlexOp& op) {
    if (op.Op == FlexOpConstant) {
      const auto value = std::bit_cast<float>(+op.Operand);
      if (!std::isfinite(value)) return "it holds a number that is not finite";
      Push({core::ShortestDecimal(value)});
    } else if (op.Op == FlexOpController) {
      const auto name = NameOf(m_names.Controllers, op.Operand);
      if (!name) return "it names controller " + std::to_string(op.Operand) + ", which is not there";
      Push({IsPlainWord(*name) ? std::string(*name) : "\"" + CleanWord(*name) + "\""});
    } else if (op.Op == FlexOpFlexDesc) {
      const auto name = NameOf(m_names.Descriptors, op.Operand);
      if (!name) return "it names flex " + std::to_string(op.Operand) + ", which is not there";
      Push({FlexWord(*name)});
    } else {
      const auto found = std::find_if(std::begin(Operations), std::end(Operations),
                                      [&](const Operation& o) { return o.Code == op.Op; });
      if (found == std::end(Operations)) return "operation " + std::to_string(op.Op) + " has no sign";
      return Join(*found);
    }
    return {};
  }

  std::string Finish(size_t mostBytes, std::string& text) const {
    if (m_stack.size() != 1) {
      return m_stack.empty() ? "it is empty" : "it leaves " + std::to_string(m_stack.size()) + " values";
    }
    if (m_nodes[static_cast<size_t>(m_stack[0])].Depth > DeepestNesting) return "it is nested too deep";
    return Print(m_stack[0], mostBytes, text) ? "" : "it is longer than " + std::to_string(mostBytes) + " bytes";
  }

 private:
  struct Step {
    int64_t Node = -1;  // to be printed, or
    std::string_view Text = {};
  };

  static std::optional<std::string_view> NameOf(const std::vector<std::string_view>& names, int32_t index) {
    if (index < 0 || static_cast<size_t>(index) >= names.size()) return std::nullopt;
    return names[static_cast<size_t>(index)];
  }

  void Push(Node node) {
    m_nodes.push_back(std::move(node));
    m_stack.push_back(static_cast<int64_t>(m_nodes.size()) - 1);
  }

  const Node& At(int64_t node) const { return m_nodes[static_cast<size_t>(node)]; }

  /// Whether `child` stands in parentheses below `parent`. Right of a sign what binds as loosely needs them too, since
  /// an expression goes from left to right.
  /// A minus right ahead of a number would be read as its sign.
  bool IsWrapped(const Node& parent, const Node& child, bool right) const {
    if (parent.IsFunction()) return false;
    if (parent.IsNegation() && IsNumber(child)) return true;
    return child.Binds < parent.Binds || (right && child.Binds == parent.Binds);
  }

  std::string Join(const Operation& operation) {
    if (m_stack.size() < static_cast<size_t>(operation.Values)) return "an operation lacks its values";
    Node node{.Text = std::string(operation.Text), .Binds = operation.Binds};
    if (operation.Values == 2) {
      node.Right = m_stack.back();
      m_stack.pop_back();
    }
    node.Left = m_stack.back();
    m_stack.pop_back();
    const int own = operation.Binds == Bond::Operand ? 1 : 0;
    node.Depth = own + At(node.Left).Depth + (IsWrapped(node, At(node.Left), false) ? 1 : 0);
    if (node.Right >= 0) {
      node.Depth =
          std::max(node.Depth, own + At(node.Right).Depth + (IsWrapped(node, At(node.Right), node.Right >= 0) ? 1 : 0));
    }
    Push(std::move(node));
    return {};
  }

  /// Prints the tree from left to right without recursion: a sum can be as deep as it has operations.
  bool Print(int64_t root, size_t mostBytes, std::string& text) const {
    std::vector<Step> steps = {{root}};
    const auto wrapped = [&](const Node& parent, int64_t child, bool right) {
      const bool wrap = IsWrapped(parent, At(child), right);
      if (wrap) steps.push_back({-1, ")"});
      steps.push_back({child});
      if (wrap) steps.push_back({-1, "("});
    };
    while (!steps.empty()) {
      const Step step = steps.back();
      steps.pop_back();
      if (text.size() > mostBytes) return false;
      if (step.Node < 0) {
        text += step.Text;
        continue;
      }
      const Node& node = At(step.Node);
      if (node.Left < 0) {
        text += node.Text;
      } else if (node.IsNegation()) {
        text += node.Text;
        wrapped(node, node.Left, false);
      } else if (node.IsFunction()) {
        text += node.Text + "(";
        steps.push_back({-1, ")"});
        steps.push_back({node.Right});
        steps.push_back({-1, ", "});
        steps.push_back({node.Left});
      } else {
        wrapped(node, node.Right, true);
        steps.push_back({-1, node.Text});
        wrapped(node, node.Left, false);
      }
    }
    return text.size() <= mostBytes;
  }

  const FlexExpressionNames& m_names;
  std::vector<Node> m_nodes;
  std::vector<int64_t> m_stack;
};

}  // namespace

std::string FlexWord(std::string_view name) {
  return IsPlainWord(name) ? "%" + std::string(name) : "\"%" + CleanWord(name) + "\"";
}

bool CanBeginRule(std::string_view name) {
  return !name.empty() && CleanWord(name) == name;
}

FlexExpression MakeFlexExpression(const core::RecordArray<StudioFlexOp>& ops, const FlexExpressionNames& names,
                                  size_t mostBytes) {
  FlexExpression expression;
  Builder builder(names);
  for (const auto op : ops) {
    expression.Problem = builder.Take(*op);
    if (!expression.Problem.empty()) return expression;
  }
  expression.Problem = builder.Finish(mostBytes, expression.Text);
  if (!expression.Problem.empty()) expression.Text.clear();
  return expression;
}

}  // namespace tarnwick::decompiler
