#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/image_view.h"
#include "decompiler/writers/model_names.h"
#include "model/face_records.h"

namespace tarnwick::decompiler::plain {

/// The names that a rule's operations can push.
struct FlexRuleNames {
  std::vector<std::string_view> Controllers;
  std::vector<std::string_view> Descriptors;
};

/// The text of a rule's small stack program, without a line end: the sum of two entries is "(a + b)", and so on; each
/// pushed entry begins with a blank. Skipped opcodes are counted in `skipped`. Nothing if the text is longer than what
/// `mostBytes` allows, which only a damaged model asks for.
[[nodiscard]] std::optional<std::string> FlexRuleText(const core::RecordArray<StudioFlexOp>& ops,
                                                      const FlexRuleNames& names, size_t mostBytes, int& skipped);

}  // namespace tarnwick::decompiler::plain
