#pragma once

#include <string>

namespace tarnwick::core {

/// The directory of the running program, without a separator at its end; empty if the system does not tell. The
/// programs that belong to this one lie there.
std::string ProgramDirectory();

}  // namespace tarnwick::core
