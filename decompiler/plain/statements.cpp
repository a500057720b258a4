#include "decompiler/plain/statements.h"

#include <algorithm>
#include <string>

#include "model/bone_math.h"
#include "model/script_records.h"

namespace tarnwick::decompiler::plain {

namespace {

/// The name of bone `index`; nothing, told, if the model has no such bone. `user` is who names it.
std::optional<std::string_view> BoneName(JobContext& job, std::string_view user, int64_t userOffset, int64_t index) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return std::nullopt;
  if (skeleton->Bones.Holds(index)) return skeleton->Names[static_cast<size_t>(index)];
  job.Damaged(job.Model.Mdl.Path(), user, userOffset,
              "names bone " + std::to_string(index) + " of " + std::to_string(skeleton->Count()));
  return std::nullopt;
}

/// The name of the texture at entry `index` of the skin table; nothing, told, if there is none.
std::optional<std::string_view> SkinTextureName(JobContext& job, const core::RecordArray<StudioShort>& skins,
                                                int64_t index) {
  const auto name = TextureName(job.Model, skins[index]->Value);
  if (!name) {
    job.Damaged(job.Model.Mdl.Path(), "skin table entry", skins[index].Offset(),
                "names texture " + std::to_string(skins[index]->Value) + ", which is not in the file");
  }
  return name;
}

void WritePosition(JobContext& job, core::TextPattern<float, float, float> pattern, const Vec3& position) {
  if (position.x == 0 && position.y == 0 && position.z == 0) return;
  job.Script().Format(pattern, float{position.x}, float{position.y}, float{position.z});
}

}  // namespace

void WritePoseParameters(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table =
      job.Table<StudioPoseParameter>("pose parameter table", header->PoseParameterOffset, header->PoseParameterCount);
  if (!table) return;
  for (const auto pose : *table) {
    const auto name = job.NameOf("pose parameter name", pose, pose->NameOffset);
    if (!name || !job.ScriptWithinBounds()) return;
    job.Script().Format("$poseparameter %s %2.2f %2.2f", *name, float{pose->Start}, float{pose->End});
    if (pose->Wrap != 0) {
      job.Script().Format(" %2.2f\n", float{pose->Wrap});
    } else {
      job.Script().Text("\n");
    }
  }
}

void WriteMaterialDirectories(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioOffset>("material directory table", header->MaterialDirectoryOffset,
                                             header->MaterialDirectoryCount);
  if (!table) return;
  for (const auto entry : *table) {
    const auto name = job.Model.Name(entry->Offset);
    if (!name) return job.DamagedName("material directory", entry->Offset);
    if (!job.ScriptWithinBounds()) return;
    job.Script().Format("$cdmaterials \"%s\"\n", *name);
  }
}

void WriteSkinFamilies(JobContext& job) {
  const auto header = job.Model.Header();
  const int64_t families = header->SkinFamilyCount;
  const int64_t references = std::max<int64_t>(header->SkinReferenceCount, 0);
  if (families <= 1) return;
  const auto skins = job.Table<StudioShort>("skin table", header->SkinOffset, references * families);
  if (!skins) return;
  // An equal number of both means one texture that each family replaces.
  const bool square = families == references;
  const int64_t shown = square ? 1 : (references + families - 1) / families;
  core::TextWriter& script = job.Script();
  script.Text("$texturegroup skinfamilies\n{\n");
  for (int64_t family = 0; family < families && job.ScriptWithinBounds(); ++family) {
    if (!square) script.Text("\t{");
    for (int64_t entry = 0; entry < shown; ++entry) {
      const auto name = SkinTextureName(job, *skins, family * references + entry);
      if (!name) return script.Text(square ? "}\n" : "}\n}\n");
      if (square) {
        script.Format("\t{ \"%s.vmt\" }\n", *name);
      } else {
        script.Format("%s\"%s.vmt\"\n", entry == 0 ? "" : " ", *name);
      }
    }
    if (!square) script.Text("}\n ");
  }
  script.Text("}\n");
}

void WriteHitboxes(JobContext& job) {
  const auto header = job.Model.Header();
  const auto sets = job.Table<StudioHitboxSet>("hit box set table", header->HitboxSetOffset, header->HitboxSetCount);
  if (!sets) return;
  for (const auto set : *sets) {
    const auto setName = job.NameOf("hit box set name", set, set->NameOffset);
    if (!setName || !job.ScriptWithinBounds()) return;
    job.Script().Format("$hboxset \"%s\"\n", *setName);
    const auto boxes = job.Table<StudioHitbox>("hit box table", set.Offset() + set->HitboxOffset, set->HitboxCount);
    if (!boxes) return;
    for (const auto box : *boxes) {
      const auto bone = BoneName(job, "hit box", box.Offset(), box->Bone);
      if (!bone || !job.ScriptWithinBounds()) return;
      job.Script().Format("$hbox %d \"%s\" %2.3f  %2.3f  %2.3f  %2.3f  %2.3f  %2.3f\n", int32_t{box->Group}, *bone,
                          float{box->Minimum.x}, float{box->Minimum.y}, float{box->Minimum.z}, float{box->Maximum.x},
                          float{box->Maximum.y}, float{box->Maximum.z});
    }
  }
}

void WriteAttachments(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioAttachment>("attachment table", header->AttachmentOffset, header->AttachmentCount);
  if (!table) return;
  for (const auto attachment : *table) {
    const auto name = job.NameOf("attachment name", attachment, attachment->NameOffset);
    if (!name) return;
    const auto bone = BoneName(job, "attachment", attachment.Offset(), attachment->Bone);
    if (!bone || !job.ScriptWithinBounds()) return;
    const Matrix3x4 placement = attachment->Placement;
    PitchYawRoll angles;
    MatrixToAngles(placement, angles);
    job.Script().Format("$attachment \"%s\" \"%s\" %2.2f %2.2f %2.2f rotate %2.2f %2.2f %2.2f\n", *name, *bone,
                        float{placement(0, 3)}, float{placement(1, 3)}, float{placement(2, 3)}, float{angles.Pitch},
                        float{angles.Yaw}, float{angles.Roll});
  }
}

void WriteIncludeModels(JobContext& job) {
  // Names begin with "models/", which the command puts before them again.
  constexpr size_t PrefixLength = 7;
  const auto header = job.Model.Header();
  const auto table =
      job.Table<StudioIncludeModel>("included model table", header->IncludeModelOffset, header->IncludeModelCount);
  if (!table) return;
  for (const auto model : *table) {
    const auto name = job.NameOf("included model name", model, model->NameOffset);
    if (!name || !job.ScriptWithinBounds()) return;
    job.Script().Format("$includemodel \"%s\"\n", name->substr(std::min(PrefixLength, name->size())));
  }
}

void WriteSurfaceProp(JobContext& job) {
  const auto name = job.Model.Name(job.Model.Header()->SurfacePropOffset);
  if (!name) return job.DamagedName("surface property name", job.Model.Header()->SurfacePropOffset);
  job.Script().Format("$surfaceprop \"%s\"\n", *name);
}

void WriteKeyValues(JobContext& job) {
  constexpr std::string_view Stored = "mdlkeyvalue";
  constexpr std::string_view Command = "$keyvalues ";
  const auto header = job.Model.Header();
  if (header->KeyValueSize == 0) return;
  const auto bytes = job.Model.View().Bytes(header->KeyValueOffset, header->KeyValueSize);
  if (!bytes) {
    return job.DamagedTable(job.Model.Mdl.Path(), "key value text", header->KeyValueOffset, header->KeyValueSize,
                            job.Model.View().Size());
  }
  std::string text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  text.resize(std::min(text.find('\0'), text.size()));
  if (text.starts_with(Stored)) text.replace(0, Stored.size(), Command);
  std::replace(text.begin(), text.end(), '\n', ' ');
  job.Script().Format("%s\n", text);
}

void WritePositions(JobContext& job) {
  WritePosition(job, "$eyeposition %2.3f %2.3f %2.3f\n", job.Model.Header()->EyePosition);
  WritePosition(job, "$illumposition %2.3f %2.3f %2.3f\n", job.Model.Header()->IllumPosition);
}

void WriteIkChains(JobContext& job) {
  constexpr int32_t LinksOfALimb = 3;  // other chains have no statement
  const auto header = job.Model.Header();
  const auto chains = job.Table<StudioIkChain>("IK chain table", header->IkChainOffset, header->IkChainCount);
  if (!chains) return;
  for (const auto chain : *chains) {
    if (chain->LinkCount != LinksOfALimb) continue;
    const auto name = job.NameOf("IK chain name", chain, chain->NameOffset);
    const auto links = job.Table<StudioIkLink>("IK link table", chain.Offset() + chain->LinkOffset, chain->LinkCount);
    if (!name || !links) return;
    const auto bone = BoneName(job, "IK link", (*links)[2].Offset(), (*links)[2]->Bone);
    if (!bone || !job.ScriptWithinBounds()) return;
    const Vec3 knee = (*links)[0]->KneeDirection;
    job.Script().Format("$ikchain %s %s knee  %2.3f %2.3f %2.3f\n", *name, *bone, float{knee.x}, float{knee.y},
                        float{knee.z});
  }
}

}  // namespace tarnwick::decompiler::plain
