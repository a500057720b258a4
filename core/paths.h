#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::core {

/// The separator that the program itself puts into a path it opens.
#ifdef _WIN32
inline constexpr char PathSeparator = '\\';
#else
inline constexpr char PathSeparator = '/';
#endif

/// `path` as this platform opens it: on Linux each backslash is a separator, on Windows it is UTF-8 of any length.
/// The text shown to the user and written to files stays as it was; only the call that opens a file uses this.
std::filesystem::path NativePath(std::string_view path);

/// The text of a path in the form that the rest of the program handles (on Windows UTF-8).
std::string PathText(const std::filesystem::path& path);

/// The part of `path` behind its last slash or backslash, on Windows also behind a drive's letter and colon.
std::string_view LastComponent(std::string_view path);

/// What stands in `path` before its last component.
std::string_view DirectoryWithSeparator(std::string_view path);

/// ASCII capitals to small letters; other bytes stay. Locale plays no part.
std::string LowerAscii(std::string_view text);
/// ASCII small letters to capitals; other bytes stay.
std::string UpperAscii(std::string_view text);
/// Whether two texts are the same but for the case of ASCII letters.
bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Whether a regular file or anything else that can be opened for reading stands at `path`.
[[nodiscard]] bool FileExists(const std::string& path);

/// The file at `path`, or, where there is none, the one file of the same folder whose name differs from it in case
/// only. Nothing if there is none or more than one. The result is a path with the name as the folder has it.
[[nodiscard]] std::optional<std::string> FindIgnoringCase(const std::string& path);

}  // namespace tarnwick::core
