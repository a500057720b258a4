#pragma once

#include <memory>

#include "archives/byte_source.h"

namespace tarnwick::archives {

/// The first byte of a file that is packed in the LZMA "alone" format with the usual settings.
inline constexpr std::byte PackedMark{0x5D};

/// Bytes that a packed file may unpack to. Addons are smaller by far; what unpacks to more is made to fill a disk.
inline constexpr uint64_t MostUnpackedBytes = uint64_t{4} << 30;

/// Whether this program was built with liblzma.
bool CanUnpack();

/// What `packed`, a file in the LZMA "alone" format, unpacks to, as bytes that can be read at any place. It is unpacked
/// as far as it is read. The first `keptBytes` are kept in memory; what lies behind them is unpacked in passing, so
/// whoever reads there reads on, or it begins anew. Null, with `reason`, if this program was built without liblzma.
std::unique_ptr<ByteSource> UnpackStream(std::unique_ptr<ByteSource> packed, std::string& reason,
                                         uint64_t keptBytes = uint64_t{256} << 20);

}  // namespace tarnwick::archives
