#pragma once

#include <string>
#include <string_view>

namespace tarnwick::project {

/// `path` with every backslash replaced by a forward slash.
std::string SlashedPath(std::string_view path);

/// Whether the name behind the last slash or backslash of `referenceSmd` holds a full stop, so that a script can be
/// named after it.
bool HasStem(std::string_view referenceSmd);

/// The script's path: the slashed path up to its last full stop, and "qc" behind it. "C:\mods\crate.smd" gives
/// "C:/mods/crate.qc". `HasStem` must hold.
std::string QcPathOf(std::string_view referenceSmd);

/// The file name of the reference SMD: the slashed path behind its last slash. A slash at the very start does not
/// count, so "/crate.smd" stays whole.
std::string ReferenceName(std::string_view referenceSmd);

/// Whether `collisionName` is a script to be included rather than a mesh: what lies behind its last full stop is "qc"
/// or "qci", in small letters. A full stop at the very start does not count.
bool IsCollisionScript(std::string_view collisionName);

}  // namespace tarnwick::project
