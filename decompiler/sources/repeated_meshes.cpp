#include "decompiler/sources/repeated_meshes.h"

#include <algorithm>

#include "core/paths.h"
#include "core/same_bytes.h"
#include "decompiler/stages/mesh_file.h"
#include "model/mesh_pieces.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Models of one name with different meshes are files of one name from several folders; nobody has many.
constexpr size_t MostOfAName = 8;

std::string KeyOf(const core::Record<StudioModel>& model) {
  constexpr std::string_view Ending = ".smd";
  std::string key = core::LowerAscii(core::LastComponent(core::FixedText(model->Name)));
  if (key.ends_with(Ending)) key.resize(key.size() - Ending.size());
  return key;
}

/// Whether each mesh has a texture: what is wrong with the others is told when they are written.
bool HasTextures(const JobContext& job, const core::Record<StudioModel>& model) {
  const auto meshes = job.Model.View().Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return false;
  for (const auto mesh : *meshes) {
    if (mesh->Material < 0 || mesh->Material >= job.Model.Header()->TextureCount) return false;
  }
  return true;
}

/// Whether two models wear the same textures, mesh by mesh: two textures may have one name.
bool SameTextures(const JobContext& job, const core::Record<StudioModel>& a, const core::Record<StudioModel>& b) {
  const core::ImageView view = job.Model.View();
  const auto one = view.Array<StudioMesh>(a.Offset() + a->MeshOffset, a->MeshCount);
  const auto other = view.Array<StudioMesh>(b.Offset() + b->MeshOffset, b->MeshCount);
  bool same = one && other && one->Count() == other->Count();
  for (int64_t i = 0; same && i < one->Count(); ++i) same = +(*one)[i]->Material == +(*other)[i]->Material;
  return same;
}

bool SameCorners(const MeshPiece& a, const MeshPiece& b) {
  if (a.Material != b.Material || a.Strips.size() != b.Strips.size()) return false;
  for (size_t s = 0; s < a.Strips.size(); ++s) {
    const StripPiece &one = a.Strips[s], &other = b.Strips[s];
    if (one.IndexCount != other.IndexCount) return false;
    for (int64_t k = 0; k < one.IndexCount; ++k) {
      const uint16_t i = one.Indices[k]->Vertex, j = other.Indices[k]->Vertex;
      const VvdVertex* x = GetMeshVertex(a.Vertices, one.GroupVertices[i]->MeshVertex);
      const VvdVertex* y = GetMeshVertex(b.Vertices, other.GroupVertices[j]->MeshVertex);
      if (x != y && (x == nullptr || y == nullptr || !core::HasSameBytes(*x, *y))) return false;
    }
  }
  return true;
}

bool SameTriangles(const MeshPieces& a, const MeshPieces& b) {
  if (!a.Complete || !b.Complete || a.LeftOut != b.LeftOut || a.Meshes.size() != b.Meshes.size()) return false;
  for (size_t i = 0; i < a.Meshes.size(); ++i) {
    if (!SameCorners(a.Meshes[i], b.Meshes[i])) return false;
  }
  return true;
}

}  // namespace

void RepeatedMeshes::Add(const JobContext& job, const core::Record<StudioModel>& model,
                         const core::RecordArray<VtxModelLod>& lods, const std::string& file) {
  if (core::FixedText(model->Name).empty() || HasFace(job, model) || !HasTextures(job, model)) return;
  std::vector<Written>& known = m_written[KeyOf(model)];
  if (known.size() < MostOfAName) known.push_back({model, lods, file});
}

const std::string* RepeatedMeshes::FindSame(JobContext& job, const core::Record<StudioModel>& model,
                                            const core::RecordArray<VtxModelLod>& lods) const {
  const auto known = m_written.find(KeyOf(model));
  if (known == m_written.end() || HasFace(job, model) || !HasTextures(job, model)) return nullptr;
  for (const Written& other : known->second) {
    if (other.Model->MeshCount != model->MeshCount || other.Lods.Count() != lods.Count()) continue;
    bool same = SameTextures(job, other.Model, model);
    for (int64_t l = 0; same && l < lods.Count(); ++l) {
      same = SameTriangles(GatherMeshPieces(job, other.Model, other.Lods[l]), GatherMeshPieces(job, model, lods[l]));
    }
    if (same) return &other.File;
  }
  return nullptr;
}

}  // namespace tarnwick::decompiler::sources
