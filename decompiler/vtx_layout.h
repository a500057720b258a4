#pragma once

#include <cstdint>

#include "core/image_view.h"

namespace tarnwick::decompiler {

/// The sizes of a .vtx file's records that differ between branches of the engine.
struct VtxLayout {
  int64_t StripGroupSize = 25;
  int64_t StripSize = 27;

  bool operator==(const VtxLayout&) const = default;
};

}  // namespace tarnwick::decompiler
