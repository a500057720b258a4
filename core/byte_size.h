#pragma once

#include <cstdint>
#include <string>

namespace tarnwick::core {

/// A size as file managers write it: three digits of the largest unit of 1,024 that fits, the rest cut off.
///
///     FormatByteSize(532)    // 532 bytes
///     FormatByteSize(23506)  // 22.9 KB
std::string FormatByteSize(uint64_t bytes);

}  // namespace tarnwick::core
