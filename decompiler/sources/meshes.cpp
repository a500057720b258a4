#include "decompiler/sources/meshes.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "core/paths.h"
#include "decompiler/sources/face.h"
#include "decompiler/sources/lod_bones.h"
#include "decompiler/sources/repeated_meshes.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/stages/mesh_file.h"
#include "decompiler/stages/reference_skeleton.h"
#include "decompiler/writers/lod_blocks.h"
#include "decompiler/writers/mesh_names.h"
#include "model/vtx_layout.h"
#include "model/vtx_tree.h"

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
    m_faces = ReadFaceNames(m_job);
    FindSharedPlace(*parts);
    for (int64_t b = 0; b < parts->Count() && !m_job.Stopped() && m_job.ScriptWithinBounds(); ++b) {
      ExportBodyPart((*parts)[b], b);
    }
    FinishLods();
    m_lodBlocks.Write(m_job.Script());
    if (!m_sharedWritten) LoseSharedFace(m_job);
  }

 private:
  /// The files and names of one model.
  struct ModelNames {
    std::string File;   // of the reference
    std::string Typed;  // as the script names it: a compile keeps that as the model's name
  };

  /// What the file holds once for all faces stands in the last block of one: a rule may name any flex ahead of it.
  /// Where no model has a face of its own, in the block of the last one that can have one.
  void FindSharedPlace(const core::RecordArray<StudioBodyPart>& parts) {
    bool faceFound = false;
    for (int64_t b = 0; b < parts.Count(); ++b) {
      const auto part = parts[b];
      const auto models = m_job.Model.View().Array<StudioModel>(part.Offset() + part->ModelOffset, part->ModelCount);
      if (!m_job.Spend(int64_t{sizeof(StudioModel)})) return;
      if (!models || models->Count() != 1 || (*models)[0]->MeshCount == 0) continue;
      const bool hasFace = HasFace(m_job, (*models)[0]);
      if (faceFound && !hasFace) continue;
      faceFound = hasFace;
      m_sharedPart = b;
    }
    if (!faceFound && !HasSharedFace(m_job)) m_sharedPart = -1;
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
        if (!ExportEmptyModel(model)) m_job.Script().Text("  blank\n");
        continue;
      }
      const auto lods = LodsOf(m_job, index, m);
      const bool isRead = lods && lods->Count() > 0;
      if (const std::string* file = isRead ? m_repeated.FindSame(m_job, model, *lods) : nullptr) {
        const bool isShared = !grouped && m_faces && index == m_sharedPart;
        const std::string statement = isShared ? "$model " : "$body ";
        m_job.Script().Text((grouped ? "  studio " : statement + Quoted(m_job, *name) + " ") +
                            Quoted(m_job, TypedName(core::FixedText(model->Name), *file)) + (isShared ? " {\n" : "\n"));
        if (isShared) {
          WriteSharedFace(m_job, *m_faces);
          m_job.Script().Text("}\n");
          m_sharedWritten = true;
        }
      } else if (!isRead || !ExportModel(*name, model, *lods, grouped ? -1 : index)) {
        LeaveOut("  ", "model", m);
      }
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
    constexpr std::string_view Extension = ".smd";
    const std::string_view stored = core::FixedText(model->Name);
    const std::string base = CleanFileName(MeshBaseName(stored));
    ModelNames names;
    std::string stem(FileStem(base));
    std::string extension(Extension);
    if (core::LowerAscii(stem).ends_with(Extension) && stem.size() > Extension.size()) {
      extension = stem.substr(stem.size() - Extension.size());  // ".SMD" stays as it was typed
      stem.resize(stem.size() - Extension.size());
    }
    names.File = m_job.Names.Take(stem, extension);
    names.Typed = TypedName(stored, names.File);
    return names;
  }

  /// How the script names a file such that the model gets the name that is stored.
  std::string TypedName(std::string_view stored, const std::string& file) {
    constexpr std::string_view NoMesh = "blank";  // the word for none
    const std::string stem(FileStem(file));
    const bool isBare = stored == stem && stem.find('.') == std::string::npos;
    std::string typed = isBare && !core::EqualIgnoringCase(stem, NoMesh) ? stem : file;
    // A compile cuts what the record has no room for, as the one that made the model did.
    if (stored != std::string_view(typed).substr(0, sizeof(StudioModel::Name))) {
      m_job.Lose("names of meshes that no file can have");
    }
    return typed;
  }

  /// A model without meshes that has a name was made of a file without triangles. False if it has none, or if the file
  /// cannot be written.
  bool ExportEmptyModel(const core::Record<StudioModel>& model) {
    if (core::FixedText(model->Name).empty()) return false;
    if (!m_job.Spend(FileCost + static_cast<int64_t>(m_skeleton->NodeLines.size() + m_skeleton->BoneLines.size()))) {
      return false;
    }
    const ModelNames names = NamesOf(model);
    std::string reason;
    auto file = m_job.Create(names.File, &reason);
    if (!file) {
      m_job.Error("Error opening " + m_job.OutputPath(names.File) + ": " + reason, "File Error",
                  core::TroubleKind::Unwritable, m_job.OutputPath(names.File), "Error opening a mesh file");
      return false;
    }
    m_job.WriteFile(std::move(*file), [skeleton = m_skeleton](core::TextWriter& writer) {
      smd::WriteReferenceHead(writer, *skeleton);
      writer.Text("end\n");
      return true;
    });
    m_job.Script().Text("  studio " + Quoted(m_job, names.Typed) + "\n");
    return true;
  }

  /// `part` is the number of the body part that the model is all of; -1 where a group offers it.
  bool ExportModel(std::string_view partName, const core::Record<StudioModel>& model,
                   const core::RecordArray<VtxModelLod>& lods, int64_t part) {
    const ModelNames names = NamesOf(model);
    if (!WriteMeshFile(m_job, m_skeleton, names.File, model, lods[0])) return false;
    if (m_job.FirstMesh.empty()) m_job.FirstMesh = names.Typed;
    m_repeated.Add(m_job, model, lods, names.File);
    core::TextWriter& script = m_job.Script();
    if (part < 0) {
      script.Text("  studio " + Quoted(m_job, names.Typed) + "\n");
      LoseModelFace(m_job, model);
    } else if (m_faces && (part == m_sharedPart || HasFace(m_job, model))) {
      script.Text("$model " + Quoted(m_job, partName) + " " + Quoted(m_job, names.Typed) + " {\n");
      if (HasFace(m_job, model)) WriteModelFace(m_job, model, *m_faces);
      if (part == m_sharedPart) WriteSharedFace(m_job, *m_faces);
      m_sharedWritten = m_sharedWritten || part == m_sharedPart;
      script.Text("}\n");
    } else {
      script.Text("$body " + Quoted(m_job, partName) + " " + Quoted(m_job, names.Typed) + "\n");
      if (!m_faces) LoseModelFace(m_job, model);
    }
    for (int64_t l = 1; l < lods.Count(); ++l) {
      const auto index = static_cast<int>(l);
      ExportLod(model, lods[l], names, index);
      CountFlexedGroups(model, lods[0], lods[l], index);
      const auto replaced = FindReplacedBones(m_job, model, lods[0], lods[l], index);
      m_replacedBones[index].insert(replaced.begin(), replaced.end());
    }
    return true;
  }

  void ExportLod(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod, const ModelNames& names,
                 int index) {
    if (!HasStripGroups(m_job, model, lod)) {
      if (m_job.Spend(static_cast<int64_t>(names.Typed.size()) + int64_t{sizeof(VtxModelLod)})) {
        m_lodBlocks.Remove(index, lod->SwitchDistance, names.Typed);
      }
      return;
    }
    const std::string file = m_job.Names.Take(LodName(index, FileStem(names.File)), ".smd");
    if (WriteMeshFile(m_job, m_skeleton, file, model, lod)) {
      m_lodBlocks.Replace(index, lod->SwitchDistance, names.Typed, file);
    } else {
      m_job.Lose("levels of detail that cannot be read");
    }
  }

  bool HasFlexedGroups(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& lod) const {
    const core::ImageView vtx = m_job.Model.Vtx->View();
    for (int64_t i = 0; i < model->MeshCount; ++i) {
      const auto mesh = VtxMeshAt(vtx, lod, i);
      for (int64_t g = 0; mesh && g < (*mesh)->StripGroupCount; ++g) {
        const auto group = StripGroupAt(vtx, m_job.Model.Layout, *mesh, g);
        if (!group || !m_job.Spend(RecordCost)) return false;
        if (((*group)->Flags & StripGroupFlagsFlexed) != 0) return true;
      }
    }
    return false;
  }

  /// Notes whether a model whose flexes move it drops them at a level of detail.
  void CountFlexedGroups(const core::Record<StudioModel>& model, const core::Record<VtxModelLod>& reference,
                         const core::Record<VtxModelLod>& lod, int index) {
    if (!HasFace(m_job, model) || !HasStripGroups(m_job, model, lod) || !HasFlexedGroups(model, reference)) return;
    (HasFlexedGroups(model, lod) ? m_facial : m_faceless)[index] += 1;
  }

  void FinishLods() {
    for (const auto& [lod, count] : m_faceless) {
      if (m_facial.contains(lod)) {
        m_job.Lose("models that alone drop their faces at a level of detail", count);
      } else {
        m_lodBlocks.Add(lod, "nofacial");
      }
    }
    const Skeleton* skeleton = GetSkeleton(m_job);
    for (const auto& [lod, bones] : m_replacedBones) {
      for (const auto& [bone, other] : bones) {
        m_lodBlocks.Add(lod, "replacebone " + Quoted(m_job, skeleton->Names[static_cast<size_t>(bone)]) + " " +
                                 Quoted(m_job, skeleton->Names[static_cast<size_t>(other)]));
      }
    }
    CountReplacedMaterials();
  }

  void CountReplacedMaterials() {
    const core::ImageView vtx = m_job.Model.Vtx->View();
    const auto header = vtx.At<VtxHeader>(0);
    if (!header) return;
    const int64_t offset = (*header)->MaterialListOffset;
    const auto lists = vtx.Array<VtxMaterialList>(offset, (*header)->LodCount);
    if (offset < int64_t{sizeof(VtxHeader)} || !lists || !m_job.Spend(lists->Count() * RecordCost)) return;
    for (const auto list : *lists) m_job.Lose("materials that a level of detail replaces", list->Count);
  }

  JobContext& m_job;
  core::Record<StudioHeader> m_header;
  std::shared_ptr<const smd::SkeletonText> m_skeleton;
  LodBlocks m_lodBlocks;
  RepeatedMeshes m_repeated;
  std::optional<FaceNames> m_faces;
  int64_t m_sharedPart = -1;  // the body part whose block holds what all faces share
  bool m_sharedWritten = false;
  std::map<int, int64_t> m_facial, m_faceless;                // models that keep and drop their flexes, by LOD
  std::map<int, std::map<int32_t, int32_t>> m_replacedBones;  // by LOD: which bone another one replaces
};

}  // namespace

void WriteModelMeshes(JobContext& job) {
  if (!PrepareVtx(job)) return;
  MeshExport(job).Run();
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::sources
