#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace tarnwick::core {

/// The path of `name`, a relative path, below `folder`, as a text; "" is the current folder. An absolute name stays as
/// it is.
std::string PathBelow(std::string_view folder, std::string_view name);

/// Where `path` really leads, without links and in the usual form: what opens it takes NativePath of its text. Fails
/// where nothing is.
std::filesystem::path RealPath(const std::filesystem::path& path, std::error_code& error);

/// The same of a path whose last parts need not exist: those stay as they are.
std::filesystem::path RealPathOfNew(const std::filesystem::path& path, std::error_code& error);

}  // namespace tarnwick::core
