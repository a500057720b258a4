#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/report.h"

namespace tarnwick::smd {

/// A material to be renamed throughout an SMD file.
struct MaterialReplacement {
  std::string Path;
  std::string OldName;
  std::string NewName;
};

/// The caption of the question below.
inline constexpr std::string_view ReplacementCaption = "Replace Material";

/// Whether all three are given; if not, the first that is missing is shown in a box.
[[nodiscard]] bool CheckReplacement(const MaterialReplacement& replacement, core::Report& report);

/// What the user is asked, with OK and Cancel, before anything is changed.
[[nodiscard]] std::string ReplacementQuestion(const MaterialReplacement& replacement);

/// Replaces every occurrence of the old name in the file by the new one, byte for byte and case-sensitive, wherever it
/// stands: also inside a longer word, a bone's name or a number. The file may be of any size. The new text takes the
/// old file's place in one step and gets its permissions; a file without the old name is not touched.
///
/// Gives the number of occurrences; nothing, after a box, with the file as it was, if it cannot be read, is empty, or
/// cannot be written. The trouble's details tell the system's reason. Call `CheckReplacement` first.
[[nodiscard]] std::optional<uint64_t> ReplaceMaterial(const MaterialReplacement& replacement, core::Report& report);

}  // namespace tarnwick::smd
