#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings_table.h"

namespace tarnwick::pages {

/// How many paths a field remembers.
inline constexpr size_t RecentPathLimit = 10;

/// The paths that were used last, newest first.
std::vector<std::string> RecentPaths(const core::AppSettings& settings, const core::TextSetting& value);

/// Puts `path` in front of the kept list. An empty path is not kept, nor one that holds a line end.
void RememberPath(core::AppSettings& settings, const core::TextSetting& value, std::string_view path);

}  // namespace tarnwick::pages
