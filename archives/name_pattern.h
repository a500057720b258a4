#pragma once

#include <string>
#include <string_view>

namespace tarnwick::archives {

/// Whether `name`, a file in an archive, is meant by `pattern`, without regard to ASCII case and slash. `*` stands for
/// any characters but a slash, `**` for any at all, `?` for one that is no slash. A pattern without a slash is for the
/// last part of a name (`*.mdl`), any other for the whole name; one that means a folder means all that lies below it
/// (`models/props`).
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace tarnwick::archives
