#pragma once

#include <string>
#include <string_view>

namespace tarnwick::archives {

/// The systems whose rules a file's name must keep.
enum class NameRules { Posix, Windows };
#ifdef _WIN32
inline constexpr NameRules OwnNameRules = NameRules::Windows;
#else
inline constexpr NameRules OwnNameRules = NameRules::Posix;
#endif

/// Why a file of that name in an archive must not be written below a folder; "" if it may. Refused are names that lead
/// outside (`..`, drives, from the root on), empty parts, control bytes, colons, and what Windows takes for something
/// else (devices, parts that end in a dot or a blank, its reserved characters) where its rules hold.
std::string UnsafeReason(std::string_view name, NameRules rules = OwnNameRules);

/// `name` for a terminal or a log: control bytes as \x1b.
std::string PrintableName(std::string_view name);

}  // namespace tarnwick::archives
