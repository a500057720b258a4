#pragma once

#include <optional>
#include <string>

namespace tarnwick::tools {

/// Why no file can be written into the folder at `path`; nothing if one can. A folder that is missing is judged by the
/// nearest one above it that is there, since tools make the folders that they need.
std::optional<std::string> WhyNotWritable(const std::string& path);

}  // namespace tarnwick::tools
