#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "model/face_records.h"
#include "model/model_reader.h"

namespace tarnwick::model {

/// One flex of a mesh, with the mesh's number in its model.
struct MeshFlex {
  int64_t Mesh = 0;
  core::Record<StudioFlex> Flex;
};

/// The flexes of a model by descriptor, each descriptor's in the order of the meshes and of their tables.
struct ModelFlexes {
  core::RecordArray<StudioMesh> Meshes;
  std::vector<std::vector<MeshFlex>> ByDescriptor;
  /// Bytes from one ordinary vertex animation to the next: those of StudioVertAnim, unless the tables tell otherwise.
  int64_t VertAnimSize = sizeof(StudioVertAnim);

  /// Bytes from one vertex animation of `flex` to the next; each begins with a StudioVertAnim.
  int64_t VertAnimSizeOf(const StudioFlex& flex) const {
    return flex.VertAnimKind == VertAnimWrinkle ? int64_t{sizeof(StudioWrinkleVertAnim)} : VertAnimSize;
  }
};

/// Gathers the flexes of `model`. Nothing, told, if its tables are damaged.
[[nodiscard]] std::optional<ModelFlexes> GatherFlexes(ModelReader& reader, const core::Record<StudioModel>& model,
                                                      size_t descriptorCount);

}  // namespace tarnwick::model
