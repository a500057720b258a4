#include "archives/checksum.h"

#ifdef TARNWICK_HAS_LZMA
#include <lzma.h>
#else
#include <array>
#endif

namespace tarnwick::archives {

#ifdef TARNWICK_HAS_LZMA

uint32_t Crc32(std::span<const std::byte> bytes, uint32_t before) {
  return lzma_crc32(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), before);
}

#else

namespace {

constexpr std::array<uint32_t, 256> Table = [] {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? 0xEDB88320u : 0u);
    table[i] = value;
  }
  return table;
}();

}  // namespace

uint32_t Crc32(std::span<const std::byte> bytes, uint32_t before) {
  uint32_t crc = ~before;
  for (const std::byte byte : bytes) crc = crc >> 8 ^ Table[(crc ^ static_cast<uint32_t>(byte)) & 0xFF];
  return ~crc;
}

#endif

std::string CrcText(uint32_t crc) {
  std::string text(8, '0');
  for (size_t i = 8; i-- > 0; crc >>= 4) text[i] = "0123456789abcdef"[crc & 15];
  return text;
}

}  // namespace tarnwick::archives
