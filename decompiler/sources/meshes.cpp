#include "decompiler/sources/meshes.h"

#include <memory>
#include <string>

#include "decompiler/sources/script_values.h"
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
    for (int64_t b = 0; b < parts->Count() && !m_job.Stopped() && m_job.ScriptWithinBounds(); ++b) {
      ExportBodyPart((*parts)[b], b);
    }
    m_lodBlocks.Write(m_job.Script());
  }

 private:
  /// The files and names of one model.
  struct ModelNames {
    std::string File;   // of the reference
    std::string Typed;  // as the script names it: a compile keeps that as the model's name
    std::string Base;   // before it was made unique; its LODs are named after it
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

  void ExportBodyPart(const core::Record<StudioBodyPart>& part, int64_t index) {
    const auto name = m_job.NameOf("body part name", part, part->NameOffset);
    const auto models = m_job.Table<StudioModel>("model table", part.Offset() + part->ModelOffset, part->ModelCount);
    if (!name || !models) return LeaveOut("", "body part", index);
    const bool grouped = models->Count() != 1 || (*models)[0]->MeshCount == 0;
    if (grouped) m_job.Script().Text("$bodygroup " + Quoted(m_job, *name) + " {\n");
    for (int64_t m = 0; m < models->Count(); ++m) {
      const auto model = (*models)[m];
      if (!m_job.Spend(int64_t{sizeof(StudioModel)}) || m_job.Stopped()) break;
      if (model->MeshCount == 0) {
        m_job.Script().Text("  blank\n");
        if (!core::FixedText(model->Name).empty()) m_job.Lose("names of empty models");
        continue;
      }
      const auto lods = LodsOf(m_job, index, m);
      if (!lods || lods->Count() == 0 || !ExportModel(*name, model, *lods, grouped)) LeaveOut("  ", "model", m);
    }
    if (grouped) m_job.Script().Text("}\n");
  }

  void LeaveOut(std::string_view indent, std::string_view what, int64_t number) {
    m_job.Script().Text(std::string(indent) + "// a " + std::string(what) +
                        " is left out, since it cannot be read: number " + std::to_string(number) + "\n");
    m_job.Lose(std::string(what) + "s that cannot be read");
  }

  /// Gives the model's files their names. The script types the name that the model has, where a file straight in the
  /// folder can have it.
  ModelNames NamesOf(const core::Record<StudioModel>& model) {
    const std::string_view stored = core::FixedText(model->Name);
    ModelNames names;
    names.Base = CleanFileName(MeshBaseName(stored));
    names.File = m_job.Names.Take(FileStem(names.Base), ".smd");
    const std::string stem(FileStem(names.File));
    names.Typed = stored == stem && stem.find('.') == std::string::npos ? stem : names.File;
    if (stored != names.Typed) m_job.Lose("names of meshes that no file can have");
    return names;
  }

  bool ExportModel(std::string_view partName, const core::Record<StudioModel>& model,
                   const core::RecordArray<VtxModelLod>& lods, bool grouped) {
    const ModelNames names = NamesOf(model);
    if (!WriteMeshFile(m_job, m_skeleton, names.File, model, lods[0])) return false;
    core::TextWriter& script = m_job.Script();
    if (grouped) {
      script.Text("  studio " + Quoted(m_job, names.Typed) + "\n");
      if (HasFace(m_job, model)) m_job.Lose("faces of models that a body group offers");
    } else if (HasFaceBlock(model)) {
      script.Text("$model " + Quoted(m_job, partName) + " " + Quoted(m_job, names.Typed) + " {\n");
      WriteFace(m_job, model);
      script.Text("}\n");
    } else {
      script.Text("$body " + Quoted(m_job, partName) + " " + Quoted(m_job, names.Typed) + "\n");
    }
    for (int64_t l = 1; l < lods.Count(); ++l) ExportLod(model, lods[l], names, static_cast<int>(l));
    return true;
  }

  /// Whether the model's `$model` line carries a block of face commands.
  bool HasFaceBlock(const core::Record<StudioModel>& model) const {
    if (m_anyFace) return HasFace(m_job, model);
    return model->EyeballCount != 0 || m_header->MouthCount != 0;
  }

  void ExportLod(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod, const ModelNames& names,
                 int index) {
    if (!HasStripGroups(m_job, model, lod)) {
      if (m_job.Spend(static_cast<int64_t>(names.Typed.size()) + int64_t{sizeof(VtxModelLod)})) {
        m_lodBlocks.Remove(index, lod->SwitchDistance, names.Typed);
      }
      return;
    }
    const std::string file = m_job.Names.Take(FileStem(LodName(index, names.Base)), ".smd");
    if (WriteMeshFile(m_job, m_skeleton, file, model, lod)) {
      m_lodBlocks.Replace(index, lod->SwitchDistance, names.Typed, file);
    } else {
      m_job.Lose("levels of detail that cannot be read");
    }
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
