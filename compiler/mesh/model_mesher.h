#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/mesh/corner_vertices.h"
#include "compiler/mesh/mesh_vertex.h"
#include "compiler/mesh/texture_table.h"
#include "compiler/mesh/vertex_join.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// A mesh of one model while it is put together.
struct MeshDraft {
  std::vector<MeshVertex> Vertices;
  std::vector<uint8_t> Lods;  // of a vertex: the highest level that uses it
  std::array<std::vector<MeshTriangle>, MostLods> Triangles;
};

/// Which texture each material of a source wears at a level of detail; -1 for those that are not drawn.
using MaterialTextures = std::vector<int32_t>;

/// Puts the sources of one model's levels of detail together, from the finest on: a mesh for each texture, whose
/// vertices are shared by the levels.
class ModelMesher {
 public:
  explicit ModelMesher(const CompileOptions& options);

  /// Lets the normals of the corners that wear a texture point away from `middle`, in what is added from here on.
  void PointAway(int32_t texture, const model::Vec3& middle) { m_middles.insert_or_assign(texture, middle); }

  /// Adds the triangles of level `lod`. `used` learns the bones that its vertices follow.
  void Add(const smd::SmdSource& source, const SourceUse& use, const ModelBones& bones, size_t lod,
           const MaterialTextures& textures, std::array<bool, 256>& used);

  /// The meshes by their textures, with their vertices in the file's order: the highest level first, then by `ranks`,
  /// then in the order of first use.
  std::map<int32_t, MeshDraft> Take();

 private:
  struct Part {
    explicit Part(const JoinRule& rule) : Joiner(rule) {}
    VertexJoiner Joiner;
    std::vector<uint8_t> Lods;
    std::array<std::vector<MeshTriangle>, MostLods> Triangles;
    std::unordered_set<uint64_t> Met;  // triangles of the level that is being added
    uint32_t FinerVertices = 0;        // vertices of the levels before it
  };
  uint32_t VertexOf(Part& part, const MeshVertex& corner, size_t lod);

  const CompileOptions& m_options;
  std::map<int32_t, Part> m_parts;
  std::map<int32_t, model::Vec3> m_middles;  // by texture
};

/// Puts the vertices of a mesh in the order of the file, the highest level of detail first and those of one level by
/// `ranks` (as many as vertices, or none), and lets its triangles follow.
void SortVertices(MeshDraft& mesh, std::span<const uint32_t> ranks);

}  // namespace tarnwick::compiler
