#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "decompiler/job_context.h"
#include "model/face_records.h"
#include "model/vertex_file.h"

namespace tarnwick::decompiler {

/// What the commands of one model's face share.
struct FlexTables {
  std::vector<int32_t> Frame;           // of each flex descriptor in the VTA file, 0 for none
  std::vector<bool> Used;               // whether a frame or a partner makes the descriptor known
  std::vector<std::string_view> Names;  // of each descriptor
  std::string VtaName;                  // file name of the VTA file
};

/// One flex of a mesh, with the mesh's number in its model.
struct MeshFlex {
  int64_t Mesh = 0;
  core::Record<StudioFlex> Flex;
};

/// The flexes of a model by descriptor, each descriptor's in the order of the meshes and of their tables.
struct ModelFlexes {
  core::RecordArray<StudioMesh> Meshes;
  std::vector<std::vector<MeshFlex>> ByDescriptor;
  /// Bytes from one StudioVertAnim to the next: its own size, unless the file says otherwise.
  int64_t VertAnimSize = sizeof(StudioVertAnim);
};

/// Empty tables with the descriptors' names. Nothing, told, if the descriptor table is damaged.
std::optional<FlexTables> MakeFlexTables(JobContext& job);

/// Gathers the flexes of `model`. Nothing, told, if its tables are damaged.
std::optional<ModelFlexes> GatherFlexes(JobContext& job, const core::Record<StudioModel>& model,
                                        size_t descriptorCount);

}  // namespace tarnwick::decompiler
