// The .mdl file, table by table in the order of the file.

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "compiler/files/animation_tables.h"
#include "compiler/files/byte_writer.h"
#include "compiler/files/face_tables.h"
#include "compiler/files/model_parts.h"
#include "compiler/skeleton/euler.h"
#include "core/paths.h"
#include "model/bone_math.h"
#include "model/script_records.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

namespace {

using model::StudioBone;
using model::StudioHeader;
using model::StudioSecondHeader;

constexpr int32_t OldVersion = 44;  // without a second header, whole animations, 48-bit rotations
constexpr size_t JiggleBoneSize = 140;

void CopyName(char* to, size_t size, const std::string& name) {
  name.copy(to, size - 1);  // zeros follow: the record was made of them
}

class MdlWriter {
 public:
  MdlWriter(CompileContext& context, const ModelParts& parts)
      : m_context(context), m_plan(context.Plan), m_parts(parts), m_new(context.Options.Version > OldVersion) {}

  std::optional<MdlFiles> Write() {
    m_writer.Reserve<StudioHeader>(1);
    if (m_new) m_second = m_writer.Reserve<StudioSecondHeader>(1);
    WriteHead();
    WriteBones();
    WriteBoneTables();
    AnimationTables animations(m_context, m_parts, m_scales, m_writer, m_texts, m_header, m_blocks);
    if (!animations.Write()) return std::nullopt;
    WriteBodies();
    WriteEnd();
    m_texts.Write(m_writer);
    m_header.Length = static_cast<int32_t>(m_writer.Size());
    m_writer.Put(0, HeaderWithTexts());
    if (m_writer.Size() > INT32_MAX) {
      m_context.Error({0, 1, 1, 0}, "the model is larger than its format can tell", core::TroubleKind::Limit);
      return std::nullopt;
    }
    return MdlFiles{m_writer.Take(), m_blocks.Take(m_header.Version)};
  }

 private:
  int32_t Here() const { return static_cast<int32_t>(m_writer.Size()); }
  static constexpr int64_t Field(size_t offset) { return static_cast<int64_t>(offset); }

  /// The texts of the header were filled in where it stands; the other fields come from the record.
  StudioHeader HeaderWithTexts() {
    std::string bytes = m_writer.Take();
    StudioHeader stored;
    std::memcpy(&stored, bytes.data(), sizeof stored);
    m_header.SurfacePropOffset = stored.SurfacePropOffset;
    m_header.AnimBlockNameOffset = stored.AnimBlockNameOffset;
    if (m_new) {
      StudioSecondHeader second;
      std::memcpy(&second, bytes.data() + m_second, sizeof second);
      m_secondHeader.NameOffset = second.NameOffset;
      std::memcpy(bytes.data() + m_second, &m_secondHeader, sizeof m_secondHeader);
    }
    m_writer.AppendBytes(bytes);
    return m_header;
  }

  void WriteHead() {
    StudioHeader& h = m_header;
    std::memcpy(h.Id, "IDST", 4);
    h.Version = m_context.Options.Version;
    const std::string& name = m_plan.InternalName.empty() ? m_plan.ModelName : m_plan.InternalName;
    CopyName(h.Name, sizeof h.Name, name);
    const auto turned = [](const model::Vec3& v) { return model::Vec3{-v.y, v.x, v.z}; };
    if (m_plan.EyePosition) h.EyePosition = turned(*m_plan.EyePosition);
    h.IllumPosition = m_plan.IllumPosition ? turned(IllumPlace()) : m_parts.MiddleOfFirstBox;
    if (!m_parts.Motion.Sequences.empty()) {
      h.HullMinimum = m_parts.Motion.Sequences[0].Box[0];
      h.HullMaximum = m_parts.Motion.Sequences[0].Box[1];
    }
    if (m_plan.HullBox) {
      h.HullMinimum = (*m_plan.HullBox)[0];
      h.HullMaximum = (*m_plan.HullBox)[1];
    }
    if (m_plan.ViewBox) {
      h.ViewMinimum = (*m_plan.ViewBox)[0];
      h.ViewMaximum = (*m_plan.ViewBox)[1];
    }
    h.Flags = m_plan.Flags | (m_plan.GivenHitboxes ? 0 : model::ModelFlagGeneratedHitboxes) |
              (m_parts.Meshes.ShadowLod ? model::ModelFlagShadowLod : 0);
    h.Mass = m_parts.Physics ? m_parts.Physics->Mass : 1.0f;
    h.Contents = m_plan.Contents;
    h.AllowedRootLods = static_cast<uint8_t>(m_plan.AllowedRootLods.value_or(0));
    if (m_new) h.SecondHeaderOffset = static_cast<int32_t>(m_second);
    m_texts.Name(offsetof(StudioHeader, AnimBlockNameOffset), 0, "");
    if (m_new) {
      m_texts.Name(m_second + Field(offsetof(StudioSecondHeader, NameOffset)), m_second, name);
      if (m_plan.MaxEyeDeflection) {
        constexpr double Degree = 3.14159265358979323846 / 180;
        m_secondHeader.MaxEyeDeflection = static_cast<float>(std::cos(double{*m_plan.MaxEyeDeflection} * Degree));
      }
    }
    m_texts.Name(offsetof(StudioHeader, SurfacePropOffset), 0, m_plan.SurfaceProp);
  }

  /// The place of $illumposition in the model's space: typed so, or in the space of a bone.
  model::Vec3 IllumPlace() const {
    const model::Vec3 typed = *m_plan.IllumPosition;
    const int32_t bone = m_plan.IllumBone.empty() || m_parts.Bones.Static ? -1 : m_parts.Bones.Find(m_plan.IllumBone);
    if (bone < 0) return typed;
    const model::RigidTransform* stood = m_parts.Bones.PlaceOfDropped(m_plan.IllumBone);
    return m_parts.Bones.Bones[static_cast<size_t>(bone)].ToModel.Apply(stood != nullptr ? stood->Apply(typed) : typed);
  }

  std::string BlockFileName() const {
    const std::string& name = m_plan.ModelName;
    return "models/" + name.substr(0, name.size() - std::string_view(".mdl").size()) + ".ani";
  }

  // Bones

  std::string SurfaceOf(size_t bone) const {
    for (auto at = static_cast<int32_t>(bone); at >= 0; at = m_parts.Bones.Bones[static_cast<size_t>(at)].Parent) {
      for (auto typed = m_plan.BoneSurfaces.rbegin(); typed != m_plan.BoneSurfaces.rend(); ++typed) {
        if (!m_parts.Bones.Static && m_parts.Bones.Named(typed->Bone) == at) return typed->Text;
      }
    }
    return m_plan.SurfaceProp;
  }
  int32_t ContentsOf(size_t bone) const {
    for (auto at = static_cast<int32_t>(bone); at >= 0; at = m_parts.Bones.Bones[static_cast<size_t>(at)].Parent) {
      for (auto typed = m_plan.BoneContents.rbegin(); typed != m_plan.BoneContents.rend(); ++typed) {
        if (!m_parts.Bones.Static && m_parts.Bones.Named(typed->Bone) == at) return typed->Value;
      }
    }
    return m_plan.Contents;
  }

  void WriteBones() {
    const auto& bones = m_parts.Bones.Bones;
    m_scales = MeasureScales(m_parts.Bones, m_parts.Motion.Animations);
    m_header.BoneCount = static_cast<int32_t>(bones.size());
    m_header.BoneOffset = static_cast<int32_t>(m_writer.Reserve<StudioBone>(bones.size()));
    for (size_t i = 0; i < bones.size(); ++i) {
      StudioBone bone = {};
      const int64_t at = BonePlace(i);
      bone.Parent = bones[i].Parent;
      std::fill(std::begin(bone.Controllers), std::end(bone.Controllers), -1);
      bone.Position = bones[i].Position;
      bone.Angles = bones[i].Angles;
      model::EulerToQuat(bones[i].Angles, bone.Rotation);
      bone.PositionScale = {m_scales[i][0], m_scales[i][1], m_scales[i][2]};
      bone.RotationScale = {m_scales[i][3], m_scales[i][4], m_scales[i][5]};
      bone.PoseToBone = MatrixOf(bones[i].ToModel.Inverse());
      bone.Flags = bones[i].Flags;
      if (m_parts.Physics && i < m_parts.Physics->BoneSolids.size()) bone.PhysicsSolid = m_parts.Physics->BoneSolids[i];
      bone.Contents = ContentsOf(i);
      m_boneRecords.push_back(bone);
      m_texts.Name(at + Field(offsetof(StudioBone, NameOffset)), at, bones[i].Name);
      m_texts.Name(at + Field(offsetof(StudioBone, SurfacePropOffset)), at, SurfaceOf(i));
    }
    WriteProcedures();
    for (size_t i = 0; i < bones.size(); ++i) m_writer.Put(BonePlace(i), m_boneRecords[i]);
  }
  int64_t BonePlace(size_t bone) const {
    return m_header.BoneOffset + static_cast<int64_t>(bone) * int64_t{sizeof(StudioBone)};
  }
  void SetProcedure(int32_t bone, int32_t type, int64_t at) {
    StudioBone& record = m_boneRecords[static_cast<size_t>(bone)];
    record.ProceduralType = type;
    record.ProceduralOffset = static_cast<int32_t>(at - BonePlace(static_cast<size_t>(bone)));
  }
  void WriteProcedures() {
    const auto& driven = m_parts.Skeleton.DrivenBones;
    const int64_t records = m_writer.Reserve<model::StudioDrivenBone>(driven.size());
    for (size_t i = 0; i < driven.size(); ++i) {
      const int64_t at = records + static_cast<int64_t>(i * sizeof(model::StudioDrivenBone));
      model::StudioDrivenBone record = {};
      record.Driver = driven[i].Driver;
      record.TriggerCount = static_cast<int32_t>(driven[i].Triggers.size());
      record.TriggerOffset = static_cast<int32_t>(m_writer.Size() - at);
      for (const model::StudioTrigger& trigger : driven[i].Triggers) m_writer.Append(trigger);
      m_writer.Put(at, record);
      SetProcedure(driven[i].Bone, model::BoneProcedureDriven, at);
    }
    for (const BuiltJiggleBone& jiggle : m_parts.Skeleton.JiggleBones) {
      const int64_t at = m_writer.Append(jiggle.Record);
      m_writer.AppendBytes(std::string(JiggleBoneSize - sizeof(model::StudioJiggleBone), '\0'));
      SetProcedure(jiggle.Bone, model::BoneProcedureJiggle, at);
    }
  }

  void WriteBoneTables() {
    m_header.BoneControllerOffset = Here();
    const auto& attachments = m_parts.Skeleton.Attachments;
    m_header.AttachmentCount = static_cast<int32_t>(attachments.size());
    m_header.AttachmentOffset = Here();
    for (const BuiltAttachment& attachment : attachments) {
      model::StudioAttachment record = {};
      record.Bone = attachment.Bone;
      record.Placement = attachment.Placement;
      const int64_t at = m_writer.Append(record);
      m_texts.Name(at, at, attachment.Name);
    }
    WriteHitboxes();
    m_header.BoneNameTableOffset = Here();
    std::vector<size_t> byName(m_parts.Bones.Bones.size());
    std::iota(byName.begin(), byName.end(), size_t{0});
    std::ranges::stable_sort(byName, [&](size_t a, size_t b) {
      return core::LowerAscii(m_parts.Bones.Bones[a].Name) < core::LowerAscii(m_parts.Bones.Bones[b].Name);
    });
    for (const size_t bone : byName) m_writer.Append(static_cast<uint8_t>(bone));
    m_writer.Align(4);
  }
  void WriteHitboxes() {
    const auto& sets = m_parts.Skeleton.HitboxSets;
    m_header.HitboxSetCount = static_cast<int32_t>(sets.size());
    m_header.HitboxSetOffset = static_cast<int32_t>(m_writer.Reserve<model::StudioHitboxSet>(sets.size()));
    for (size_t i = 0; i < sets.size(); ++i) {
      const int64_t at = m_header.HitboxSetOffset + static_cast<int64_t>(i * sizeof(model::StudioHitboxSet));
      model::StudioHitboxSet record = {};
      record.HitboxCount = static_cast<int32_t>(sets[i].Boxes.size());
      record.HitboxOffset = static_cast<int32_t>(m_writer.Size() - at);
      m_writer.Put(at, record);
      m_texts.Name(at, at, sets[i].Name);
      for (const BuiltHitbox& box : sets[i].Boxes) {
        model::StudioHitbox hitbox = {};
        hitbox.Bone = box.Bone;
        hitbox.Group = box.Group;
        hitbox.Minimum = box.Minimum;
        hitbox.Maximum = box.Maximum;
        const int64_t place = m_writer.Append(hitbox);
        m_texts.Name(place + Field(offsetof(model::StudioHitbox, NameOffset)), place, "");
      }
    }
  }

  // Bodies, faces, meshes

  void WriteBodies() {
    const auto& parts = m_parts.Meshes.BodyParts;
    m_header.BodyPartCount = static_cast<int32_t>(parts.size());
    m_header.BodyPartOffset = static_cast<int32_t>(m_writer.Reserve<model::StudioBodyPart>(parts.size()));
    int32_t base = 1;
    std::vector<int64_t> modelPlaces;
    for (size_t i = 0; i < parts.size(); ++i) {
      const int64_t at = m_header.BodyPartOffset + static_cast<int64_t>(i * sizeof(model::StudioBodyPart));
      model::StudioBodyPart record = {};
      record.ModelCount = static_cast<int32_t>(parts[i].Models.size());
      record.Base = base;
      base = static_cast<int32_t>(std::min<int64_t>(int64_t{base} * std::max(record.ModelCount, 1), INT32_MAX));
      record.ModelOffset = static_cast<int32_t>(m_writer.Size() - at);
      m_writer.Put(at, record);
      m_texts.Name(at, at, parts[i].Name);
      for (size_t k = 0; k < parts[i].Models.size(); ++k)
        modelPlaces.push_back(m_writer.Reserve<model::StudioModel>(1));
    }
    FaceTables face(m_parts.Face, m_writer, m_texts, m_header);
    face.WriteShared(m_new);
    WriteIk();
    face.WriteMouths();
    WritePoseParameters();
    size_t number = 0;
    int32_t meshNumber = 0;
    for (const BuiltBodyPart& part : parts) {
      for (const BuiltModel& model : part.Models) {
        WriteModel(model, modelPlaces[number], meshNumber, face, number);
        ++number;
      }
    }
  }
  void WriteModel(const BuiltModel& model, int64_t at, int32_t& meshNumber, FaceTables& face, size_t number) {
    model::StudioModel record = {};
    model.Name.copy(record.Name, sizeof record.Name);  // a long one fills the field
    record.MeshCount = static_cast<int32_t>(model.Meshes.size());
    record.VertexCount = model.VertexCount;
    record.VertexByteOffset = model.FirstVertex * 48;
    record.TangentByteOffset = model.FirstVertex * 16;
    const int64_t meshes = m_writer.Reserve<model::StudioMesh>(model.Meshes.size());
    record.MeshOffset = static_cast<int32_t>(meshes - at);
    record.EyeballOffset = static_cast<int32_t>(m_writer.Size() - at);
    record.EyeballCount = face.WriteEyeballs(number);
    m_writer.Put(at, record);
    for (size_t i = 0; i < model.Meshes.size(); ++i) {
      const BuiltMesh& mesh = model.Meshes[i];
      const int64_t place = meshes + static_cast<int64_t>(i * sizeof(model::StudioMesh));
      model::StudioMesh out = {};
      out.Material = mesh.Texture;
      out.ModelOffset = static_cast<int32_t>(at - place);
      out.VertexCount = mesh.VertexCount;
      out.FirstVertex = mesh.FirstVertex;
      out.Kind = mesh.Eyeball >= 0 ? model::MeshKindEyeball : 0;
      out.Eyeball = std::max(mesh.Eyeball, 0);
      out.Number = meshNumber++;
      for (size_t lod = 0; lod < mesh.LodVertexCounts.size(); ++lod) {
        out.LodVertexCounts[lod] = mesh.LodVertexCounts[lod];
      }
      out.FlexOffset = static_cast<int32_t>(m_writer.Size() - place);
      out.FlexCount = face.WriteFlexes(number, i);
      m_writer.Put(place, out);
    }
  }

  void WriteIk() {
    const auto& chains = m_parts.Skeleton.IkChains;
    m_header.IkChainCount = static_cast<int32_t>(chains.size());
    m_header.IkChainOffset = static_cast<int32_t>(m_writer.Reserve<model::StudioIkChain>(chains.size()));
    for (size_t i = 0; i < chains.size(); ++i) {
      const int64_t at = m_header.IkChainOffset + static_cast<int64_t>(i * sizeof(model::StudioIkChain));
      model::StudioIkChain record = {};
      record.LinkCount = static_cast<int32_t>(chains[i].Links.size());
      record.LinkOffset = static_cast<int32_t>(m_writer.Size() - at);
      m_writer.Put(at, record);
      m_texts.Name(at, at, chains[i].Name);
      for (const model::StudioIkLink& link : chains[i].Links) m_writer.Append(link);
    }
    m_header.IkLockCount = static_cast<int32_t>(m_parts.Skeleton.AutoplayLocks.size());
    m_header.IkLockOffset = Here();
    for (const model::StudioIkLock& lock : m_parts.Skeleton.AutoplayLocks) m_writer.Append(lock);
  }
  void WritePoseParameters() {
    m_header.PoseParameterCount = static_cast<int32_t>(m_parts.Motion.PoseParameters.size());
    m_header.PoseParameterOffset = Here();
    for (const BuiltPoseParameter& pose : m_parts.Motion.PoseParameters) {
      const model::StudioPoseParameter record = {0, pose.Loops ? model::PoseParameterFlagLoop : 0, pose.Start, pose.End,
                                                 pose.Wrap};
      const int64_t at = m_writer.Append(record);
      m_texts.Name(at, at, pose.Name);
    }
  }

  // The rest

  void WriteEnd() {
    m_header.IncludeModelCount = static_cast<int32_t>(m_plan.IncludedModels.size());
    m_header.IncludeModelOffset = Here();
    for (const std::string& name : m_plan.IncludedModels) {
      const int64_t at = m_writer.Append(model::StudioIncludeModel{});
      m_texts.Name(at + Field(offsetof(model::StudioIncludeModel, NameOffset)), at, name);
    }
    m_header.AnimBlockOffset = Here();
    m_header.AnimBlockCount = static_cast<int32_t>(m_blocks.Blocks().size());
    for (const model::StudioAnimBlock& block : m_blocks.Blocks()) m_writer.Append(block);
    if (m_header.AnimBlockCount > 0) m_texts.Name(offsetof(StudioHeader, AnimBlockNameOffset), 0, BlockFileName());
    WriteMaterials();
    m_header.KeyValueOffset = Here();
    if (!m_plan.KeyValues.empty()) {
      m_writer.AppendBytes(m_plan.KeyValues);
      m_writer.AppendBytes(std::string(1, '\0'));
      m_header.KeyValueSize = static_cast<int32_t>(m_plan.KeyValues.size() + 1);
      m_writer.Align(4);
    }
    WriteSourceBones();
    if (m_new && m_boneRecords.size() > 1) WriteBoneColumns();
    if (!m_new) m_header.FlexControlOffset = 0;
  }
  /// How a realignment turns bones as sources have them: what is taken off the parent, and what is added to the bone.
  void WriteSourceBones() {
    m_secondHeader.SourceBoneOffset = Here();
    if (!m_new) return;
    const auto& bones = m_parts.Bones.Bones;
    for (const ModelBone& bone : bones) {
      const ModelBone* parent = bone.Parent < 0 ? nullptr : &bones[static_cast<size_t>(bone.Parent)];
      if (!bone.Realigned && (parent == nullptr || !parent->Realigned)) continue;
      model::StudioSourceBone record = {};
      record.Matrices[0] =
          MatrixOf(parent != nullptr && parent->Realigned ? parent->Realigned->Inverse() : model::RigidTransform());
      record.Matrices[1] = MatrixOf(bone.Realigned.value_or(model::RigidTransform()));
      const int64_t at = m_writer.Append(record);
      m_texts.Name(at, at, bone.Name);
      ++m_secondHeader.SourceBoneCount;
    }
  }
  void WriteMaterials() {
    const BuiltMeshes& meshes = m_parts.Meshes;
    m_header.TextureCount = static_cast<int32_t>(meshes.Textures.size());
    m_header.TextureOffset = Here();
    for (const std::string& name : meshes.Textures) {
      const int64_t at = m_writer.Append(model::StudioTexture{});
      m_texts.Name(at, at, name);
    }
    m_header.MaterialDirectoryCount = static_cast<int32_t>(m_plan.MaterialFolders.size());
    m_header.MaterialDirectoryOffset = Here();
    for (const std::string& folder : m_plan.MaterialFolders) {
      m_texts.Name(m_writer.Append(model::StudioOffset{}), 0, folder);
    }
    m_header.SkinReferenceCount = static_cast<int32_t>(meshes.Textures.size());
    m_header.SkinFamilyCount = static_cast<int32_t>(meshes.Skins.size());
    m_header.SkinOffset = Here();
    for (const std::vector<int16_t>& family : meshes.Skins) {
      for (const int16_t texture : family) m_writer.Append(texture);
    }
    m_writer.Align(4);
  }
  /// Fields of all bones, column by column.
  void WriteBoneColumns() {
    m_secondHeader.BoneColumnOffset = static_cast<int32_t>(m_writer.Size() - m_second);
    struct Column {
      size_t Offset, Size;
    };
    constexpr Column Columns[] = {{offsetof(StudioBone, Flags), 4},          {offsetof(StudioBone, Parent), 4},
                                  {offsetof(StudioBone, Position), 12},      {offsetof(StudioBone, Rotation), 16},
                                  {offsetof(StudioBone, Angles), 12},        {offsetof(StudioBone, PoseToBone), 48},
                                  {offsetof(StudioBone, PositionScale), 12}, {offsetof(StudioBone, RotationScale), 12},
                                  {offsetof(StudioBone, Alignment), 16}};
    constexpr int32_t HeadSize = 64;
    int32_t head[HeadSize / sizeof(int32_t)] = {static_cast<int32_t>(m_boneRecords.size())};
    int32_t offset = HeadSize;
    size_t slot = 1;
    for (const Column& column : Columns) {
      head[slot++] = offset;
      offset += static_cast<int32_t>(column.Size * m_boneRecords.size());
    }
    m_writer.Append(head);
    for (const Column& column : Columns) {
      for (const StudioBone& bone : m_boneRecords) {
        m_writer.AppendBytes({reinterpret_cast<const char*>(&bone) + column.Offset, column.Size});
      }
    }
  }

  CompileContext& m_context;
  const CompilePlan& m_plan;
  const ModelParts& m_parts;
  bool m_new;
  BlockFile m_blocks{m_plan.AnimBlockSize};
  ByteWriter m_writer;
  TextPool m_texts;
  StudioHeader m_header = {};
  StudioSecondHeader m_secondHeader = {};
  int64_t m_second = 0;
  std::vector<StudioBone> m_boneRecords;
  std::vector<BoneScales> m_scales;
};

}  // namespace

std::optional<MdlFiles> WriteMdl(CompileContext& context, const ModelParts& parts) {
  return MdlWriter(context, parts).Write();
}

}  // namespace tarnwick::compiler
