#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "qc/messages.h"
#include "qc/words.h"

namespace tarnwick::qc {

/// A part of an expression.
struct ExpressionNode {
  enum class Kind : uint8_t { Number, Controller, Flex, Negate, Add, Subtract, Multiply, Divide, Function };

  Kind What = Kind::Number;
  Place At;
  double Value = 0;                // of a number
  std::string_view Name;           // of a controller, a flex (without its %) or a function
  std::vector<uint32_t> Operands;  // nodes of the same expression, which stand before this one
};

/// A flex rule: `%Flex = expression`. The last node is the whole expression; every node stands behind its operands, so
/// the list is the order in which a stack machine works.
struct FlexRule {
  std::string_view Flex;
  Place At;
  std::vector<ExpressionNode> Nodes;  // none: the rule was wrong, as the messages tell
};

/// Parses the words of one rule. Operators are `+ - * /` with the usual precedence, parentheses, a minus ahead of an
/// operand (a part of the number where one stands right behind it), and functions with commas; blanks between them do
/// not matter. A name in quotes may hold anything. What is wrong is told at its place.
FlexRule ParseFlexRule(std::span<const Word> words, Messages& messages);

}  // namespace tarnwick::qc
