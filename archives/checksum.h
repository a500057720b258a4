#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tarnwick::archives {

/// The CRC-32 (the polynomial of zlib) of bytes that follow those whose CRC-32 is `before`.
uint32_t Crc32(std::span<const std::byte> bytes, uint32_t before = 0);

/// A CRC as eight hexadecimal digits.
std::string CrcText(uint32_t crc);

}  // namespace tarnwick::archives
