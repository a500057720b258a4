#pragma once

#include <cstdint>

#include "core/image_view.h"
#include "model/model_reader.h"
#include "model/vtx_records.h"

namespace tarnwick::model {

/// The layout that a model of `version` should have: strip groups of 33 bytes at version 49, of 25 at all others.
[[nodiscard]] VtxLayout LayoutOfVersion(int32_t version);

/// The layout that the model's .vtx file really has: that of the model's version if the file's strip groups and strips
/// fit each other in it, else the first known one in which they do (a log line says so), else that of the version.
[[nodiscard]] VtxLayout FindVtxLayout(ModelReader& reader);

/// Strip group number `index` of `mesh`; nothing if it does not lie inside the file.
[[nodiscard]] std::optional<core::Record<VtxStripGroup>> StripGroupAt(const core::ImageView& vtx,
                                                                      const VtxLayout& layout,
                                                                      const core::Record<VtxMesh>& mesh, int64_t index);
/// Strip number `index` of `group`; nothing if it does not lie inside the file.
[[nodiscard]] std::optional<core::Record<VtxStrip>> StripAt(const core::ImageView& vtx, const VtxLayout& layout,
                                                            const core::Record<VtxStripGroup>& group, int64_t index);

}  // namespace tarnwick::model
