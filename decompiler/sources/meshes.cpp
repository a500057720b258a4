#include "decompiler/sources/meshes.h"

#include <memory>
#include <string>

#include "decompiler/stages/face.h"
#include "decompiler/stages/mesh_file.h"
#include "decompiler/stages/reference_skeleton.h"
#include "decompiler/writers/lod_blocks.h"
#include "decompiler/writers/mesh_names.h"

namespace tarnwick::decompiler::sources {

namespace {

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
    FindFaces(*parts);
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
    bool grouped = models->Count() > 1;
    for (int64_t m = 0; grouped && m < models->Count(); ++m) grouped = !HasFace(m_job, (*models)[m]);

    if (grouped) m_job.Script().Format("$bodygroup \"%s\"\n{\n", *name);
    bool goOn = true;
    for (int64_t m = 0; goOn && m < models->Count(); ++m) {
      const auto model = (*models)[m];
      if (grouped && model->MeshCount == 0) {
        m_job.Script().Text("  blank\n");
        goOn = m_job.Spend(int64_t{sizeof(StudioModel)});
        continue;
      }
      const auto lods = LodsOf(m_job, index, m);
      goOn = lods && ExportModel(*name, model, *lods, grouped);
    }
    if (grouped) m_job.Script().Text("}\n\n");
    return goOn;
  }

  bool ExportModel(std::string_view partName, const core::Record<StudioModel>& model,
                   const core::RecordArray<VtxModelLod>& lods, bool grouped) {
    ModelNames names;
    names.Base = CleanFileName(MeshBaseName(core::FixedText(model->Name)));
    names.File = m_job.Names.Take(FileStem(names.Base), ".smd");
    for (int64_t l = 0; l < lods.Count(); ++l) {
      const bool goOn = l == 0 ? ExportReference(partName, model, lods[l], names, grouped)
                               : ExportLod(model, lods[l], names, static_cast<int>(l));
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
    return WriteMeshFile(m_job, m_skeleton, names.File, model, lod);
  }

  /// Whether the model's `$model` line carries a block of face commands.
  bool HasFaceBlock(const core::Record<StudioModel>& model) const {
    if (m_anyFace) return HasFace(m_job, model);
    return model->EyeballCount != 0 || m_header->MouthCount != 0;
  }

  bool ExportLod(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod, const ModelNames& names,
                 int index) {
    const std::string stem(names.Stem());
    if (model->MeshCount == 0) return m_job.Spend(int64_t{sizeof(VtxModelLod)});
    if (!HasStripGroups(m_job, model, lod)) {
      m_lodBlocks.Remove(index, lod->SwitchDistance, stem);
      return m_job.Spend(static_cast<int64_t>(stem.size()) + int64_t{sizeof(VtxModelLod)});
    }
    const std::string file = m_job.Names.Take(FileStem(LodName(index, names.Base)), ".smd");
    m_lodBlocks.Replace(index, lod->SwitchDistance, stem, std::string(FileStem(file)));
    return WriteMeshFile(m_job, m_skeleton, file, model, lod);
  }

  JobContext& m_job;
  core::Record<StudioHeader> m_header;
  std::shared_ptr<const smd::SkeletonText> m_skeleton;
  LodBlocks m_lodBlocks;
  bool m_anyFace = false;
};

}  // namespace

void WriteModelMeshes(JobContext& job) {
  if (!PrepareVtx(job)) return;
  MeshExport(job).Run();
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::sources
