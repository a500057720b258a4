#pragma once

#include <string>
#include <string_view>

namespace tarnwick::decompiler {

/// The base name of a model's files: its own name, or "UnknownModelName" for an empty one, with ".smd" behind it unless
/// the last four characters are just that, and slashes for backslashes.
[[nodiscard]] std::string MeshBaseName(std::string_view modelName);

/// `name` with characters removed from its end up to and including its last full stop; `name` itself if it has none.
[[nodiscard]] std::string_view FileStem(std::string_view name);

/// "lod%d_%s".
[[nodiscard]] std::string LodName(int lod, std::string_view name);

}  // namespace tarnwick::decompiler
