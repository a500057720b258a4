#pragma once

#include <string>
#include <string_view>

namespace tarnwick::images {

/// The part of `path` behind its last slash or backslash. One at the very start of the text is no separator here.
std::string_view ImageFileName(std::string_view path);

/// Where the TGA file of the image `source` belongs: `directory`, "/", the image's name in small letters with "tga" for
/// everything behind its last dot. A name without a dot gets ".tga" behind it.
std::string TgaPath(std::string_view source, std::string_view directory);

/// `path` with every backslash as a slash, and in small letters where the platform's files know no case.
std::string SourceText(std::string_view path);

/// Whether both paths name the same file: the same text but for case and the kind of slash, or, where both exist, one
/// file reached in two ways (a link, a ".." on the way).
bool IsSameFile(const std::string& a, const std::string& b);

}  // namespace tarnwick::images
