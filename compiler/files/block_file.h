#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/studio_records.h"

namespace tarnwick::compiler {

/// The animation block file: tracks in blocks of about one size, of which a game loads those that it plays.
class BlockFile {
 public:
  /// Where a piece stands.
  struct Place {
    int32_t Block = 0;   // from 1 on
    int32_t Offset = 0;  // from the block's start
  };

  /// `blockSize` in bytes; 0 or less for no file.
  explicit BlockFile(int64_t blockSize) : m_blockSize(blockSize) {}

  bool IsWanted() const { return m_blockSize > 0; }
  /// Adds a piece to the block that is being filled, or to the next where that has no room. One that is larger than a
  /// block has one of its own.
  Place Add(std::string_view piece);

  /// The table of blocks, whose first is unused; empty if nothing was added.
  const std::vector<model::StudioAnimBlock>& Blocks() const { return m_blocks; }
  /// The bytes of the file, its checksum 0; empty if nothing was added.
  std::string Take(int32_t version);

 private:
  int64_t m_blockSize;
  std::string m_bytes;
  std::vector<model::StudioAnimBlock> m_blocks;
};

}  // namespace tarnwick::compiler
