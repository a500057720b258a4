#pragma once

#include <optional>
#include <vector>

#include "model/model_reader.h"

namespace tarnwick::model {

/// The vertices of one mesh inside the vertex image.
struct MeshVertexData {
  core::RecordArray<VvdVertex> Vertices;  // of the whole image
  int64_t First = 0;                      // the mesh's vertex 0
};

/// The vertex image of the reader's model: the .vvd file beside it, its vertices put in order if the file has fix-ups.
/// Read once, at the first call. Nothing if there is no such file or its tables are damaged; the log then says
/// so, once.
[[nodiscard]] const VertexImage* LoadVvdFile(ModelReader& reader);

/// The same of `file`, which was had elsewhere; nothing for none. To be called ahead of LoadVvdFile, which then gives
/// this image.
const VertexImage* UseVvdFile(ModelReader& reader, std::optional<core::FileImage> file);

/// Where the tangents of `image` stand, in the order of its vertices: places in the file of four floats each. Empty if
/// the file does not hold one for each of the first `count` vertices.
[[nodiscard]] std::vector<int64_t> TangentPlaces(const VertexImage& image, int64_t count);

/// Access to the vertices of `mesh`, whose owner is found through its back offset. Nothing if there is no vertex image,
/// if the image's id or its vertex offset says that it holds none, or if the owner lies outside the file.
[[nodiscard]] std::optional<MeshVertexData> GetMeshVertexData(ModelReader& reader,
                                                              const core::Record<StudioMesh>& mesh);

/// Access to the vertices of a whole model; as GetMeshVertexData.
[[nodiscard]] std::optional<MeshVertexData> GetModelVertexData(ModelReader& reader,
                                                               const core::Record<StudioModel>& model);

/// The mesh's vertex `index`; nothing if the image holds no such vertex.
inline const VvdVertex* GetMeshVertex(const MeshVertexData& data, int64_t index) {
  const int64_t entry = data.First + index;
  return data.Vertices.Holds(entry) ? &*data.Vertices[entry] : nullptr;
}

}  // namespace tarnwick::model
