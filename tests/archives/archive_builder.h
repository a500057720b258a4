#pragma once

#include <lzma.h>

#include <memory>
#include <string>
#include <string_view>

#include "archives/byte_source.h"
#include "archives/checksum.h"
#include "support/archive_builder.h"

namespace tarnwick::tests {

/// `bytes` in the LZMA "alone" format.
inline std::string PackedInLzma(std::string_view bytes) {
  lzma_options_lzma options;
  lzma_lzma_preset(&options, 1);
  lzma_stream stream = LZMA_STREAM_INIT;
  std::string packed;
  if (lzma_alone_encoder(&stream, &options) != LZMA_OK) return packed;
  std::string piece(size_t{1} << 16, '\0');
  stream.next_in = reinterpret_cast<const uint8_t*>(bytes.data());
  stream.avail_in = bytes.size();
  for (lzma_ret result = LZMA_OK; result == LZMA_OK;) {
    stream.next_out = reinterpret_cast<uint8_t*>(piece.data());
    stream.avail_out = piece.size();
    result = lzma_code(&stream, LZMA_FINISH);
    packed.append(piece, 0, piece.size() - stream.avail_out);
  }
  lzma_end(&stream);
  return packed;
}

/// Bytes in memory as a source.
class MemorySource : public archives::ByteSource {
 public:
  explicit MemorySource(std::string bytes) : m_bytes(std::move(bytes)) {}
  std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string&) const override {
    if (offset >= m_bytes.size()) return 0;
    const size_t size = std::min(out.size(), m_bytes.size() - static_cast<size_t>(offset));
    std::copy_n(reinterpret_cast<const std::byte*>(m_bytes.data()) + offset, size, out.begin());
    return size;
  }
  std::optional<uint64_t> Size() const override { return m_bytes.size(); }

 private:
  const std::string m_bytes;
};

}  // namespace tarnwick::tests
