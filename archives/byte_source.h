#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tarnwick::archives {

/// Bytes that are read where they are needed: a file on the disk, or what a packed one unpacks to. Several threads may
/// read at once.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Fills `out` with the bytes from `offset` on and tells how many there were: fewer than asked for at the end of the
  /// source only. Nothing if they cannot be had; then `reason` tells why.
  virtual std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const = 0;

  /// The bytes of the whole source; nothing where that is not known without unpacking it.
  virtual std::optional<uint64_t> Size() const = 0;

  /// Whether what is on the disk is no longer what was opened: another file, one that was written since, or none.
  virtual bool HasChanged() const { return false; }
};

}  // namespace tarnwick::archives
