#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/image_view.h"
#include "decompiler/writers/model_names.h"
#include "model/face_records.h"

namespace tarnwick::decompiler {

/// The names that a rule's operations can push.
struct FlexExpressionNames {
  const std::vector<std::string_view>& Controllers;
  const std::vector<std::string_view>& Descriptors;
};

/// A rule as an expression, or the reason why there is none.
struct FlexExpression {
  std::string Text;
  std::string Problem;  // empty: Text is the expression
};

/// The expression whose compile is `ops` again: `+ - * /`, min, max and a minus ahead of an operand, with the
/// parentheses that the order needs and no other; numbers are exact. A program that no expression says (it leaves no
/// value or several, takes what is not there, has an operation without a sign) has a problem instead, as has a text
/// longer than `mostBytes`.
///
///     controller 0, constant 0.5, multiply  ->  smile * 0.5
[[nodiscard]] FlexExpression MakeFlexExpression(const core::RecordArray<StudioFlexOp>& ops,
                                                const FlexExpressionNames& names, size_t mostBytes);

/// A flex's name as a rule has it, behind its percent sign; in quotes where the rule would take it apart.
[[nodiscard]] std::string FlexWord(std::string_view name);

/// Whether a rule can be for a flex of this name: quotes hold it as it is.
[[nodiscard]] bool CanBeginRule(std::string_view name);

}  // namespace tarnwick::decompiler
