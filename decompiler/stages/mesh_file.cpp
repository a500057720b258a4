#include "decompiler/stages/mesh_file.h"

#include <algorithm>
#include <utility>

#include "decompiler/writers/mesh_smd.h"
#include "model/mesh_pieces.h"
#include "model/vtx_layout.h"
#include "model/vtx_tree.h"

namespace tarnwick::decompiler {

namespace {

constexpr int32_t HighestVtxVersion = 7;

/// Puts the names that materials have in the sources in place of their textures'.
void NameMaterials(const JobContext& job, const core::Record<StudioModel>& model, MeshPieces& pieces) {
  const auto meshes = job.Model.View().Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return;
  for (MeshPiece& piece : pieces.Meshes) {
    piece.Material = job.MaterialName((*meshes)[piece.Number]->Material).value_or(piece.Material);
  }
}

/// The lines of the vertices that the job's vertex file, if it was had, says that it holds.
std::shared_ptr<MeshLines> LinesOf(const JobContext& job) {
  const bool isStatic = (job.Model.Header()->Flags & ModelFlagStatic) != 0;
  const MeshSmdForm form{job.Unweighted(), job.ReadyToCompile(), job.ReadyToCompile() && isStatic};
  const auto& image = job.Model.Vertices;
  if (!image || !image->HasVertices) return std::make_shared<MeshLines>(core::RecordArray<VvdVertex>(), 0, form);
  int64_t count = image->Vertices.Count();
  const auto header = image->File.View().At<VvdHeader>(0);
  // Without fix-ups the array goes on to the end of the file, over what stands behind the vertices.
  if (image->Rebuilt.empty() && header) count = std::clamp<int64_t>((*header)->LodVertexCount[0], 0, count);
  return std::make_shared<MeshLines>(image->Vertices, count, form);
}

}  // namespace

bool PrepareVtx(JobContext& job) {
  const auto header = job.Model.Vtx->View().At<VtxHeader>(0);
  if (!header) {
    job.Damaged(job.Model.Vtx->Path(), "header", 0, "runs past the end of the file");
    return false;
  }
  if ((*header)->Version > HighestVtxVersion) {
    job.Error("Unknown vertex file format", "Vertex File Error", core::TroubleKind::Unknown);
    return false;
  }
  job.Model.Layout = FindVtxLayout(job);
  return true;
}

std::optional<core::RecordArray<VtxModelLod>> LodsOf(JobContext& job, int64_t part, int64_t model) {
  const core::FileImage& vtx = *job.Model.Vtx;
  const auto record = VtxModelAt(vtx.View(), part, model);
  if (!record) {
    job.Damaged(vtx.Path(), "body part table", 0,
                "has no model " + std::to_string(model) + " in body part " + std::to_string(part));
    return std::nullopt;
  }
  const int64_t count = vtx.View().At<VtxHeader>(0).value()->LodCount;
  const int64_t offset = record->Offset() + (*record)->LodOffset;
  const auto lods = vtx.View().Array<VtxModelLod>(offset, std::max<int64_t>(count, 0));
  if (!lods) job.DamagedTable(vtx.Path(), "LOD table", offset, count, vtx.View().Size());
  return lods;
}

bool HasFace(const JobContext& job, const core::Record<StudioModel>& model) {
  if (model->EyeballCount != 0) return true;
  const auto meshes = job.Model.View().Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return false;
  for (const auto mesh : *meshes) {
    if (mesh->FlexCount != 0) return true;
  }
  return false;
}

bool HasStripGroups(const JobContext& job, const core::Record<StudioModel>& model,
                    const core::Record<VtxModelLod>& lod) {
  for (int64_t i = 0; i < model->MeshCount; ++i) {
    const auto mesh = VtxMeshAt(job.Model.Vtx->View(), lod, i);
    if (!mesh || (*mesh)->StripGroupCount > 0) return true;
  }
  return false;
}

bool WriteMeshFile(JobContext& job, const std::shared_ptr<const smd::SkeletonText>& skeleton, const std::string& name,
                   const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod) {
  if (job.Stopped() ||
      !job.Spend(FileCost + static_cast<int64_t>(skeleton->NodeLines.size() + skeleton->BoneLines.size()))) {
    return false;
  }
  const std::string path = job.OutputPath(name);
  std::string reason;
  auto file = job.Create(name, &reason);
  if (!file) {
    DecompileLog(job, "Unable to create " + path + ": " + reason + "\r\n");
    job.Error("Error opening " + path + "\n", "File Error", core::TroubleKind::Unwritable, path,
              "Error opening a mesh file");
    return false;
  }
  DecompileLog(job, "Creating " + path + "\r\n");
  auto pieces = std::make_shared<MeshPieces>(GatherMeshPieces(job, model, lod));
  if (!job.MaterialNames.empty()) NameMaterials(job, model, *pieces);
  if (pieces->LeftOut > 0) {
    job.Advise(path + " is without " + std::to_string(pieces->LeftOut) +
               (pieces->LeftOut == 1 ? " triangle strip" : " triangle strips") + "; only triangle lists are written");
  }
  if (!pieces->Complete) {
    job.LogError(
        path + " is not complete" + (job.ReadyToCompile() ? "; it is left out" : ", and no further mesh is written"),
        core::TroubleKind::Lost, "a mesh is not complete");
  }
  if (!pieces->Complete && job.ReadyToCompile()) return false;
  if (job.Lines == nullptr) job.Lines = LinesOf(job);
  job.WriteFile(std::move(*file), [skeleton, pieces, lines = job.Lines](core::TextWriter& writer) {
    smd::WriteReferenceHead(writer, *skeleton);
    WriteTriangles(writer, *pieces, *lines);
    if (pieces->Complete) writer.Text("end\n");
    return true;
  });
  return pieces->Complete;
}

}  // namespace tarnwick::decompiler
