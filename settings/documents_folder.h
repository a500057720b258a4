#pragma once

#include <string>

namespace tarnwick::settings {

/// The user's documents folder, without a separator at its end.
std::string DocumentsFolder();

}  // namespace tarnwick::settings
