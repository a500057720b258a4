#pragma once

#include <cstdint>
#include <string>

#include "core/sanitized.h"

namespace tarnwick::images {

/// Whether the address space of this build can be limited.
inline constexpr bool LimitsMemory = TARNWICK_SANITIZED == 0;

/// Closes every file but the standard ones, asks to die with the program that started this one, and sets the limits on
/// memory, computing time and the size of files. False, with `reason`, if the system refuses.
bool LimitResources(std::string& reason);

/// Leaves the process `bytes` of memory beyond what it has now. False, with `reason`, if the system refuses.
bool LimitFurtherMemory(int64_t bytes, std::string& reason);

/// Gives up for good what is left: from here on this process can compute, take memory that is not executable, read and
/// write the files that are open, and end. Every other call of the system fails with EPERM: no further file, no
/// network, no program, no other process. False, with `reason`, if the system refuses; nothing must be read then.
bool EnterJail(std::string& reason);

}  // namespace tarnwick::images
