#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "project/project_keys.h"

namespace tarnwick::project {

/// Why `value` is none of the key's kind, with `name` for the key: no number, none of an index's values, a text that no
/// project file can hold. Nothing if it is good.
std::optional<std::string> CheckProjectValue(const ProjectKey& key, std::string_view name, std::string_view value);

}  // namespace tarnwick::project
