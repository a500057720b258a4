#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::smd {

/// A material of an SMD file: the file name of its texture, and how many triangles bear it.
struct SmdMaterialCount {
  std::string Name;  // of any length; two names are one only if they are equal byte for byte
  int32_t FaceCount = 0;

  bool operator==(const SmdMaterialCount&) const = default;
};

/// The figures of an SMD file.
struct SmdSummary {
  int32_t FrameCount = 0;                   // "time" lines of the skeleton sections
  int32_t BoneCount = 0;                    // lines of the nodes sections
  int32_t TriangleCount = 0;                // material lines
  std::vector<SmdMaterialCount> Materials;  // in the order of first appearance

  bool operator==(const SmdSummary&) const = default;
};

}  // namespace tarnwick::smd
