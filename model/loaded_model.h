#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_image.h"
#include "core/file_source.h"
#include "core/image_view.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"

namespace tarnwick::model {

/// Longest name that is taken from a model, in bytes; a longer one is damage. Names of files and folders, the longest
/// that models hold, end at 260 in the tools that make them.
inline constexpr size_t LongestName = 4096;

/// A model's bones, checked: the table lies inside the file and every bone has a name.
struct Skeleton {
  core::RecordArray<StudioBone> Bones;
  std::vector<std::string_view> Names;

  int64_t Count() const { return Bones.Count(); }
};

/// The vertices of a model in the order in which its meshes number them.
struct VertexImage {
  core::FileImage File;
  std::vector<VvdVertex> Rebuilt;         // only for a file with fix-ups
  core::RecordArray<VvdVertex> Vertices;  // in File or in Rebuilt; as many as there are
  bool HasVertices = false;               // the id is right and the file names vertex data
};

/// An animation block file, upgraded to version 48.
struct AnimBlockImage {
  core::FileImage File;
};

/// The files of one model. The images stay as they were read; what is found out about them stands beside them.
struct LoadedModel {
  core::FileImage Mdl;
  std::optional<core::FileImage> Vtx;  // absent for a model without body parts
  VtxLayout Layout;                    // sizes of the .vtx file's records

  std::optional<VertexImage> Vertices;  // loaded on first need
  bool VerticesSought = false;
  std::optional<AnimBlockImage> AnimBlocks;  // loaded on first need
  bool AnimBlocksSought = false;
  std::optional<Skeleton> Bones;  // checked on first need
  bool BonesSought = false;

  core::ImageView View() const { return Mdl.View(); }
  /// The header; the driver has checked that the file holds it.
  core::Record<StudioHeader> Header() const { return *Mdl.View().At<StudioHeader>(0); }

  /// The name at `offset` from the file's start: inside the file, ended by a NUL, at most LongestName bytes.
  [[nodiscard]] std::optional<std::string_view> Name(int64_t offset) const;
  /// The name that `record` (a field of which is `nameOffset`) has.
  template <typename T>
  [[nodiscard]] std::optional<std::string_view> NameOf(const core::Record<T>& record, int32_t nameOffset) const {
    return Name(record.Offset() + nameOffset);
  }
};

/// The whole .mdl file at `path` of `files`; nothing if it cannot be read.
[[nodiscard]] std::optional<core::FileImage> LoadModelFile(const std::string& path, std::string* reason = nullptr,
                                                           const core::FileSource& files = core::DiskFiles());
/// The whole .vtx file at `path` of `files`; nothing if it cannot be read.
[[nodiscard]] std::optional<core::FileImage> LoadVtxFile(const std::string& path, std::string* reason = nullptr,
                                                         const core::FileSource& files = core::DiskFiles());

/// The name of texture number `index`, which must be a record inside the file; nothing (not told) otherwise.
[[nodiscard]] std::optional<std::string_view> TextureName(const LoadedModel& model, int64_t index);

}  // namespace tarnwick::model
