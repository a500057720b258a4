#pragma once

#include <string>
#include <string_view>

namespace tarnwick::decompiler {

/// `name` as one word of a script that is to be compiled: a name that the script would break apart or lose (it holds a
/// blank, a semicolon, a brace or a comment's two slashes, or it is empty) stands in quotes.
[[nodiscard]] std::string ScriptWord(std::string_view name);

}  // namespace tarnwick::decompiler
