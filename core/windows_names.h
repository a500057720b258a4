#pragma once

#include <string>
#include <string_view>

namespace tarnwick::core {

/// Whether Windows takes `name`, a part of a path, for a device, whatever its extension: con, nul, com1, ...
[[nodiscard]] bool IsDeviceName(std::string_view name);

/// Why Windows cannot hold a file of this name, a part of a path, or would give it another; "" if it can.
[[nodiscard]] std::string WindowsNameTrouble(std::string_view name);

}  // namespace tarnwick::core
