#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/text_writer.h"
#include "smd/smd_values.h"

namespace tarnwick::smd {

/// A skeleton as reference and VTA files hold it, formatted once, with the platform's line ends.
struct SkeletonText {
  std::string NodeLines;       // number, name, parent
  std::string BoneLines;       // number, position and rotation at rest: one frame
  uint64_t BoneNonFinite = 0;  // infinities and not-a-numbers in BoneLines
};

[[nodiscard]] SkeletonText FormatSkeleton(std::span<const Node> nodes);

/// Writes what every reference file begins with: nodes, the skeleton at rest, and the line that begins the triangles.
void WriteReferenceHead(core::TextWriter& writer, const SkeletonText& skeleton);

/// All lines of an animation file before its first frame. Numbers of nodes stand in three columns there.
[[nodiscard]] std::string AnimationHead(std::span<const Node> nodes);

}  // namespace tarnwick::smd
