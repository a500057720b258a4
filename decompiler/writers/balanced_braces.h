#pragma once

#include <string>
#include <string_view>

namespace tarnwick::decompiler {

/// `text` without what would end a text in quotes early: quotes, line ends and other control characters go.
[[nodiscard]] std::string CleanQuoted(std::string_view text);

/// `text` with as many closing braces and quotes as it has opening ones: what closes nothing goes, what is missing
/// follows at the end.
[[nodiscard]] std::string BalanceBraces(std::string_view text);

/// `value`, or 0 for an infinity and for what is no number.
[[nodiscard]] float FiniteOrZero(float value);

}  // namespace tarnwick::decompiler
