#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archives/byte_source.h"
#include "archives/file_table.h"

namespace tarnwick::archives {

#pragma pack(push, 1)

/// The head of a VPK directory file.
struct VpkHeader {
  uint32_t Signature;  // VpkSignature
  uint32_t Version;    // 1 or 2
  uint32_t TreeSize;   // bytes of the tree behind the header
};
static_assert(sizeof(VpkHeader) == 12);

/// What version 2 adds to it: the bytes of the sections behind the tree.
struct VpkHeader2 {
  VpkHeader Start;
  uint32_t FileDataSize;
  uint32_t ArchiveMd5Size;
  uint32_t OtherMd5Size;   // 48
  uint32_t SignatureSize;  // 0 or 296
};
static_assert(sizeof(VpkHeader2) == 28);

/// What stands behind a file's name in the tree.
struct VpkEntry {
  uint32_t Crc;          // CRC-32 of the whole file
  uint16_t PreloadSize;  // bytes of it that follow this entry
  uint16_t Part;         // the archive; OwnPart: behind the tree of this file
  uint32_t Offset;       // in that archive
  uint32_t Size;         // bytes there
  uint16_t End;          // VpkEntryEnd
};
static_assert(sizeof(VpkEntry) == 18);

#pragma pack(pop)

inline constexpr uint32_t VpkSignature = 0x55AA1234;
inline constexpr uint16_t VpkEntryEnd = 0xFFFF;

/// Reads the tree of a VPK directory file into `files` and gives the version. The tree lists extensions, in each the
/// folders, in each the names; an empty string ends each list, a single blank stands for none. Nothing, with `reason`
/// and the byte at which it went wrong in it, if the file is no VPK directory or its tree is not whole.
std::optional<uint32_t> ReadVpkTable(const ByteSource& file, FileTable& files, std::string& reason);

}  // namespace tarnwick::archives
