#pragma once

#include <string>
#include <string_view>

namespace tarnwick::core {

/// What `--version` of a program says: "`program` 1.2.3", the commit, the compiler, and behind them `libraries` such as
/// "Qt 6.4.2" where the program has any. One line each, the last without an end.
std::string VersionText(std::string_view program, std::string_view libraries = {});

}  // namespace tarnwick::core
