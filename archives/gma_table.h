#pragma once

#include <cstdint>
#include <string>

#include "archives/byte_source.h"
#include "archives/file_table.h"

namespace tarnwick::archives {

/// What a GMA addon says about itself. Texts are as they stand in the file.
struct GmaInfo {
  uint8_t Version = 0;
  std::string Name;
  std::string Description;  // JSON today
  std::string Author;
  uint64_t DataEnd = 0;  // the byte behind the last file's bytes, where the CRC-32 of all before it stands
};

/// Reads the head and the list of files of a GMA addon: after `GMAD` and the version the author's number and the time
/// stamp, from version 2 on the needed content, name, description, author, the addon's version, then number, path, size
/// and CRC-32 of each file up to the number 0. The files' bytes follow in the same order. False, with `reason` and the
/// byte at which it went wrong in it, if the bytes are no addon, or the list is not whole.
bool ReadGmaTable(const ByteSource& file, GmaInfo& info, FileTable& files, std::string& reason);

}  // namespace tarnwick::archives
