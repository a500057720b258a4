#pragma once

#include <map>
#include <string>

#include "core/text_writer.h"

namespace tarnwick::decompiler {

/// Writes the line that opens a LOD's block: `$shadowlod` for a switch distance of exactly -1, else `$lod` with the
/// distance truncated to a whole number.
void WriteLodOpening(core::TextWriter& script, float switchDistance);

/// The LOD commands of all models, gathered into one block for each LOD: the compiler takes only one.
class LodBlocks {
 public:
  /// The model `stem` shows `lodName` at LOD `lod`. The switch distance of the first line of a LOD counts.
  void Replace(int lod, float switchDistance, const std::string& stem, const std::string& lodName);
  /// The model `stem` is not shown at LOD `lod`.
  void Remove(int lod, float switchDistance, const std::string& stem);
  /// Adds a line of other words to the block of a LOD that has one.
  void Add(int lod, const std::string& line);

  /// Writes the blocks in rising order of their LODs.
  void Write(core::TextWriter& script) const;

 private:
  struct Block {
    float SwitchDistance;
    std::string Lines;
  };
  std::string& LinesOf(int lod, float switchDistance);

  std::map<int, Block> m_blocks;
};

}  // namespace tarnwick::decompiler
