#include "decompiler/plain/meshes.h"

#include <memory>
#include <string>

#include "decompiler/plain/face.h"
#include "decompiler/stages/mesh_file.h"
#include "decompiler/stages/reference_skeleton.h"
#include "decompiler/writers/lod_blocks.h"
#include "decompiler/writers/mesh_names.h"

namespace tarnwick::decompiler::plain {

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
    for (int64_t b = 0; b < parts->Count() && ExportBodyPart((*parts)[b], b); ++b) {
    }
  }

 private:
  bool ExportBodyPart(const core::Record<StudioBodyPart>& part, int64_t index) {
    const auto name = m_job.NameOf("body part name", part, part->NameOffset);
    if (!name) return false;
    const auto models = m_job.Table<StudioModel>("model table", part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models) return false;
    for (int64_t m = 0; m < models->Count(); ++m) {
      const auto lods = LodsOf(m_job, index, m);
      if (!lods || !ExportModel(*name, (*models)[m], *lods)) return false;
    }
    return true;
  }

  bool ExportModel(std::string_view partName, const core::Record<StudioModel>& model,
                   const core::RecordArray<VtxModelLod>& lods) {
    const std::string file = MeshBaseName(core::FixedText(model->Name));
    for (int64_t l = 0; l < lods.Count(); ++l) {
      const bool goOn = l == 0 ? ExportReference(partName, model, lods[l], file)
                               : ExportLod(model, lods[l], file, static_cast<int>(l));
      if (!goOn) return false;
    }
    return true;
  }

  bool ExportReference(std::string_view partName, const core::Record<StudioModel>& model,
                       const core::Record<VtxModelLod>& lod, const std::string& file) {
    core::TextWriter& script = m_job.Script();
    script.Format("$model \"%s\" \"%s\"", partName, file);
    if (model->EyeballCount != 0 || m_header->MouthCount != 0) {
      script.Text(" {\n");
      WriteFace(m_job, model);
      script.Text("}\n");
    } else {
      script.Text("\n");
    }
    script.Text("\n");
    return WriteMeshFile(m_job, m_skeleton, file, model, lod);
  }

  bool ExportLod(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod, const std::string& file,
                 int index) {
    const std::string stem(FileStem(file));
    WriteLodOpening(m_job.Script(), lod->SwitchDistance);
    m_job.Script().Format("  replacemodel \"%s\" \"%s\"\n}\n", stem, LodName(index, stem));
    return WriteMeshFile(m_job, m_skeleton, LodName(index, file), model, lod);
  }

  JobContext& m_job;
  core::Record<StudioHeader> m_header;
  std::shared_ptr<const smd::SkeletonText> m_skeleton;
};

}  // namespace

void WriteModelMeshes(JobContext& job) {
  if (!PrepareVtx(job)) return;
  MeshExport(job).Run();
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::plain
