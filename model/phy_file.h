#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/image_view.h"
#include "core/trouble.h"
#include "model/phy_solid.h"
#include "model/phy_text.h"

namespace tarnwick::model {

/// What a .phy file holds. The texts lie in the file's bytes, which must stay.
struct PhyFile {
  uint32_t Checksum = 0;  // of the .mdl file that it belongs to
  /// By number; nothing for one that is damaged or of an unknown kind.
  std::vector<std::optional<PhySolid>> Solids = {};
  std::vector<PhyEntry> Text = {};
};

/// Reads the .phy file `image`, named `file` in what is told. Nothing in it is trusted: every record must lie inside
/// its solid's surface, tree nodes and pieces belong to one place each, points are finite and near. A damaged solid is
/// told as an error and costs that solid alone; a damaged header, or a solid whose size is, costs the file (nothing is
/// returned). Time and memory grow with the file's size, whatever its numbers are.
[[nodiscard]] std::optional<PhyFile> ReadPhyFile(core::ImageView image, const std::string& file,
                                                 core::TroubleSink& troubles);

}  // namespace tarnwick::model
