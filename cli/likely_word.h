#pragma once

#include <string>
#include <vector>

namespace tarnwick::cli {

/// The one of `words` that whoever typed `typed` is likely to have meant: the nearest one by letters that were left
/// out, added, changed or swapped, as long as those are few for its length. Empty if there is none.
std::string LikelyWord(const std::string& typed, const std::vector<std::string>& words);

}  // namespace tarnwick::cli
