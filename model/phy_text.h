#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/trouble.h"

namespace tarnwick::model {

/// An entry of the text at the end of a .phy file: a pair of key and value, or a block with entries of its own. The
/// texts lie in the file.
struct PhyEntry {
  std::string_view Key;
  std::string_view Value = {};  // of a pair
  bool IsBlock = false;
  std::vector<PhyEntry> Entries = {};  // of a block, in the order of the file

  /// The value of the first pair named `key`, in letters of either case; nothing if there is none.
  std::optional<std::string_view> Find(std::string_view key) const;
};

/// Reads the text: words bare or in quotes, blocks in braces, up to the first NUL or the end. Every entry is kept in
/// its order, whatever its name. Text that does not fit the form (a brace too many, a key without a value, a quote or
/// block that is never closed, more entries or deeper blocks than any model has) is told as a warning about `file` and
/// costs what cannot be told apart, no more. `offset` is where `text` begins in the file.
std::vector<PhyEntry> ReadPhyText(std::string_view text, const std::string& file, int64_t offset,
                                  core::TroubleSink& troubles);

}  // namespace tarnwick::model
