#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/vector_code.h"
#include "smd/smd_source.h"

namespace tarnwick::smd {

/// Bounds of what a source may hold.
inline constexpr size_t MostSourceNodes = 4096;
inline constexpr size_t MostSourcePoses = 16 << 20;  // nodes times frames

/// Reads the text of an SMD or VTA file: `nodes`, `skeleton`, `triangles` and `vertexanimation`, in any order, with
/// line ends of any kind. `//`, `#` and `;` begin a comment but in material lines and in quotes. A bone that a frame
/// leaves out stands as in the frame before, in the first frame at 0 0 0. A word that is no finite number counts as 0
/// and is told. Nothing bad ends the reading; the messages, 50 at most, tell what was left out.
std::vector<SourceMessage> ReadSource(std::string_view text, std::string path, SmdSource& source,
                                      core::VectorLevel level = core::HighestVectorLevel());

}  // namespace tarnwick::smd
