#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::controls {

/// The name of the application command that `address` asks for: what follows `APP:` (in any case, also behind a double
/// quote) without the quotes round it. Nothing if it asks for none.
std::optional<std::string> AppCommandName(std::string_view address);

/// `address` as the system's handler takes it: without the blanks and double quotes round it.
std::string OpenableAddress(std::string_view address);

}  // namespace tarnwick::controls
