#pragma once

#include <string>
#include <string_view>

namespace tarnwick::decompiler {

/// `text` with as many closing braces and quotes as it has opening ones: what closes nothing goes, what is missing
/// follows at the end.
[[nodiscard]] std::string BalanceBraces(std::string_view text);

}  // namespace tarnwick::decompiler
