#include "decompiler/mesh_export.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "core/paths.h"
#include "decompiler/flex_export.h"
#include "decompiler/lod_blocks.h"
#include "decompiler/mesh_names.h"
#include "decompiler/mesh_pieces.h"
#include "decompiler/mesh_smd.h"
#include "model/vtx_tree.h"

namespace tarnwick::decompiler {

namespace {

constexpr int32_t HighestVtxVersion = 7;

/// A model with eyeballs, or with a mesh that has flexes.
bool HasFace(const JobContext& job, const core::Record<StudioModel>& model) {
  if (model->EyeballCount != 0) return true;
  const auto meshes = job.Model.View().Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return false;
  for (const auto mesh : *meshes) {
    if (mesh->FlexCount != 0) return true;
  }
  return false;
}

/// The walk over body parts, models and LODs. Each step gives false when the stage is to end.
class MeshExport {
 public:
  explicit MeshExport(JobContext& job) : m_job(job), m_header(job.Model.Header()) {}

  void Run() {
    const auto parts =
        m_job.Table<StudioBodyPart>("body part table", m_header->BodyPartOffset, m_header->BodyPartCount);
    if (!parts) return;
    m_skeleton = FormatReferenceSkeleton(m_job);
    if (m_skeleton == nullptr) return;
    if (m_job.ReadyToCompile()) FindFaces(*parts);
    for (int64_t b = 0; b < parts->Count() && ExportBodyPart((*parts)[b], b); ++b) {
    }
    m_lodBlocks.Write(m_job.Script());
  }

 private:
  /// The files and names of one model.
  struct ModelNames {
    std::string File;  // of the reference, as the script names it
    std::string Base;  // before it was made unique; its LODs are named after it
    std::string_view Stem() const { return FileStem(File); }
  };

  void FindFaces(const core::RecordArray<StudioBodyPart>& parts) {
    for (const auto part : parts) {
      const auto models = m_job.Model.View().Array<StudioModel>(part.Offset() + part->ModelOffset, part->ModelCount);
      if (!models) continue;
      for (const auto model : *models) {
        if (!m_job.Spend(int64_t{sizeof(StudioModel)})) return;
        if (HasFace(m_job, model)) m_anyFace = true;
      }
    }
  }

  bool ExportBodyPart(const core::Record<StudioBodyPart>& part, int64_t index) {
    const auto name = m_job.NameOf("body part name", part, part->NameOffset);
    if (!name) return false;
    const auto models = m_job.Table<StudioModel>("model table", part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models) return false;
    bool grouped = m_job.ReadyToCompile() && models->Count() > 1;
    for (int64_t m = 0; grouped && m < models->Count(); ++m) grouped = !HasFace(m_job, (*models)[m]);

    if (grouped) m_job.Script().Format("$bodygroup \"%s\"\n{\n", *name);
    bool goOn = true;
    for (int64_t m = 0; goOn && m < models->Count(); ++m) {
      const auto vtxModel = VtxModelAt(m_job.Model.Vtx->View(), index, m);
      if (!vtxModel) {
        m_job.Damaged(m_job.Model.Vtx->Path(), "body part table", 0,
                      "has no model " + std::to_string(m) + " in body part " + std::to_string(index));
        goOn = false;
      } else {
        goOn = ExportModel(*name, (*models)[m], *vtxModel, grouped);
      }
    }
    if (grouped) m_job.Script().Text("}\n\n");
    return goOn;
  }

  bool ExportModel(std::string_view partName, const core::Record<StudioModel>& model,
                   const core::Record<VtxModel>& vtxModel, bool grouped) {
    if (grouped && model->MeshCount == 0) {
      m_job.Script().Text("  blank\n");
      return m_job.Spend(int64_t{sizeof(StudioModel)});
    }
    ModelNames names;
    names.File = names.Base = MeshBaseName(core::FixedText(model->Name));
    if (m_job.ReadyToCompile()) {
      names.Base = CleanFileName(names.Base);
      names.File = m_job.Names.Take(FileStem(names.Base), ".smd");
    }
    const int64_t lodCount = m_job.Model.Vtx->View().At<VtxHeader>(0).value()->LodCount;
    const int64_t lodOffset = vtxModel.Offset() + vtxModel->LodOffset;
    const auto lods = m_job.Model.Vtx->View().Array<VtxModelLod>(lodOffset, std::max<int64_t>(lodCount, 0));
    if (!lods) {
      m_job.DamagedTable(m_job.Model.Vtx->Path(), "LOD table", lodOffset, lodCount, m_job.Model.Vtx->View().Size());
      return false;
    }
    for (int64_t l = 0; l < lodCount; ++l) {
      const auto lod = (*lods)[l];
      const bool goOn = l == 0 ? ExportReference(partName, model, lod, names, grouped)
                               : ExportLod(model, lod, names, static_cast<int>(l));
      if (!goOn) return false;
    }
    return true;
  }

  bool ExportReference(std::string_view partName, const core::Record<StudioModel>& model,
                       const core::Record<VtxModelLod>& lod, const ModelNames& names, bool grouped) {
    core::TextWriter& script = m_job.Script();
    if (grouped) {
      script.Format("  studio \"%s\"\n", names.File);
    } else {
      script.Format("$model \"%s\" \"%s\"", partName, names.File);
      if (HasFaceBlock(model)) {
        script.Text(" {\n");
        WriteFace(m_job, model);
        script.Text("}\n");
      } else {
        script.Text("\n");
      }
      script.Text("\n");
    }
    return WriteMeshFile(names.File, model, lod);
  }

  /// Whether the model's `$model` line carries a block of face commands.
  bool HasFaceBlock(const core::Record<StudioModel>& model) const {
    if (m_anyFace) return HasFace(m_job, model);
    return model->EyeballCount != 0 || m_header->MouthCount != 0;
  }

  bool ExportLod(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod, const ModelNames& names,
                 int index) {
    const std::string stem(names.Stem());
    if (!m_job.ReadyToCompile()) {
      WriteLodOpening(m_job.Script(), lod->SwitchDistance);
      m_job.Script().Format("  replacemodel \"%s\" \"%s\"\n}\n", stem, LodName(index, stem));
      return WriteMeshFile(LodName(index, names.File), model, lod);
    }
    if (model->MeshCount == 0) return m_job.Spend(int64_t{sizeof(VtxModelLod)});
    if (!HasStripGroups(model, lod)) {
      m_lodBlocks.Remove(index, lod->SwitchDistance, stem);
      return m_job.Spend(static_cast<int64_t>(stem.size()) + int64_t{sizeof(VtxModelLod)});
    }
    const std::string file = m_job.Names.Take(FileStem(LodName(index, names.Base)), ".smd");
    m_lodBlocks.Replace(index, lod->SwitchDistance, stem, std::string(FileStem(file)));
    return WriteMeshFile(file, model, lod);
  }

  /// Whether any mesh of the LOD has a strip group. Meshes that cannot be read count as having one: writing the file
  /// then tells what is wrong.
  bool HasStripGroups(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod) const {
    for (int64_t i = 0; i < model->MeshCount; ++i) {
      const auto mesh = VtxMeshAt(m_job.Model.Vtx->View(), lod, i);
      if (!mesh || (*mesh)->StripGroupCount > 0) return true;
    }
    return false;
  }

  bool WriteMeshFile(const std::string& name, const core::Record<StudioModel>& model,
                     const core::Record<VtxModelLod>& lod) {
    if (m_job.Stopped() ||
        !m_job.Spend(FileCost + static_cast<int64_t>(m_skeleton->NodeLines.size() + m_skeleton->BoneLines.size())))
      return false;
    const std::string path = m_job.OutputPath(name);
    std::string reason;
    auto file = m_job.Create(name, &reason);
    if (!file) {
      m_job.Log("Unable to create " + path + ": " + reason + "\r\n");
      m_job.Error("Error opening " + path + "\n", "File Error", core::TroubleKind::Unwritable, path,
                  "Error opening a mesh file");
      return false;
    }
    DecompileLog(m_job, "Creating " + path + "\r\n");
    auto pieces = std::make_shared<MeshPieces>(GatherMeshPieces(m_job, model, lod));
    if (pieces->LeftOut > 0) {
      m_job.Advise(path + " is without " + std::to_string(pieces->LeftOut) +
                   (pieces->LeftOut == 1 ? " triangle strip" : " triangle strips") +
                   "; only triangle lists are written");
    }
    if (!pieces->Complete)
      m_job.LogError(path + " is not complete, and no further mesh is written", core::TroubleKind::Lost,
                     "a mesh is not complete");
    // A source that a compiler is to take is whole or not there; the plain form keeps what could be had.
    if (!pieces->Complete && m_job.ReadyToCompile()) return false;
    m_job.WriteFile(std::move(*file),
                    [skeleton = m_skeleton, pieces, unweighted = m_job.Unweighted()](core::TextWriter& writer) {
                      WriteReferenceHead(writer, *skeleton);
                      WriteTriangles(writer, *pieces, unweighted);
                      if (pieces->Complete) writer.Text("end\n");
                      return true;
                    });
    return pieces->Complete;
  }

  JobContext& m_job;
  core::Record<StudioHeader> m_header;
  std::shared_ptr<const ReferenceSkeleton> m_skeleton;
  LodBlocks m_lodBlocks;
  bool m_anyFace = false;
};

}  // namespace

void WriteModelMeshes(JobContext& job) {
  const auto vtxHeader = job.Model.Vtx->View().At<VtxHeader>(0);
  if (!vtxHeader) {
    job.Damaged(job.Model.Vtx->Path(), "header", 0, "runs past the end of the file");
    return;
  }
  if ((*vtxHeader)->Version > HighestVtxVersion) {
    job.Error("Unknown vertex file format", "Vertex File Error", core::TroubleKind::Unknown);
    return;
  }
  job.Model.Layout = FindVtxLayout(job);
  MeshExport(job).Run();
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler
