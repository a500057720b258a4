#include "decompiler/sources/bone_statements.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "decompiler/sources/script_values.h"
#include "model/bone_math.h"
#include "model/script_records.h"

namespace tarnwick::decompiler::sources {

namespace {

/// How far an element of an attachment's matrix may be from that of its own angles.
constexpr float MatrixTolerance = 1e-6f;
constexpr std::string_view StaticBone = "static_prop";

bool IsStatic(const JobContext& job) {
  return (job.Model.Header()->Flags & ModelFlagStatic) != 0;
}

/// The surface property of the bone and all below it that say nothing else.
void WriteSurfaces(JobContext& job, const Skeleton& skeleton) {
  const std::string_view whole = job.Model.Name(job.Model.Header()->SurfacePropOffset).value_or("");
  std::vector<std::string_view> surfaces;
  for (const auto bone : skeleton.Bones) {
    const bool hasParent = bone->Parent >= 0 && static_cast<size_t>(bone->Parent) < surfaces.size();
    const std::string_view inherited = hasParent ? surfaces[static_cast<size_t>(bone->Parent)] : whole;
    const std::string_view own =
        bone->SurfacePropOffset == 0 ? inherited : job.Model.NameOf(bone, bone->SurfacePropOffset).value_or(inherited);
    if (own != inherited && !own.empty() && job.ScriptWithinBounds()) {
      job.Script().Text("$jointsurfaceprop " + Quoted(job, skeleton.Names[surfaces.size()]) + " " + Quoted(job, own) +
                        "\n");
    }
    surfaces.push_back(own.empty() ? inherited : own);
  }
}

void WriteContents(JobContext& job, const Skeleton& skeleton) {
  std::vector<int32_t> contents;
  for (const auto bone : skeleton.Bones) {
    const bool hasParent = bone->Parent >= 0 && static_cast<size_t>(bone->Parent) < contents.size();
    const int32_t inherited =
        hasParent ? contents[static_cast<size_t>(bone->Parent)] : int32_t{job.Model.Header()->Contents};
    const int32_t own = bone->Contents;
    const std::string_view name = skeleton.Names[contents.size()];
    contents.push_back(own);
    if (own == inherited) continue;
    if (const auto words = ContentsWords(own)) {
      job.Script().Text("$jointcontents " + Quoted(job, name) + " " + *words + "\n");
    } else {
      job.Lose("contents of bones");
    }
  }
}

/// The rotation of a matrix in degrees, through doubles.
PitchYawRoll AnglesOf(const Matrix3x4& m) {
  PitchYawRoll angles;
  MatrixToAngles(m, angles);
  Matrix3x4 again;
  AnglesToMatrix(angles, again);
  double worst = 0;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      worst = std::max(worst, std::abs(double{again(row, column)} - double{m(row, column)}));
    }
  }
  if (worst <= double{MatrixTolerance} / 4) return angles;
  const double forward = std::hypot(double{m(0, 0)}, double{m(1, 0)});
  const double pitch = std::atan2(-double{m(2, 0)}, forward) / DegreesToRadians;
  if (forward <= 0.001) {
    return {static_cast<float>(pitch),
            static_cast<float>(std::atan2(-double{m(0, 1)}, double{m(1, 1)}) / DegreesToRadians), 0};
  }
  return {static_cast<float>(pitch),
          static_cast<float>(std::atan2(double{m(1, 0)}, double{m(0, 0)}) / DegreesToRadians),
          static_cast<float>(std::atan2(double{m(2, 1)}, double{m(2, 2)}) / DegreesToRadians)};
}

bool GivesBack(const PitchYawRoll& angles, const Matrix3x4& m) {
  Matrix3x4 again;
  AnglesToMatrix(angles, again);
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      if (!(std::abs(again(row, column) - m(row, column)) <= MatrixTolerance)) return false;
    }
  }
  return true;
}

/// A static model's attachments are turned by a quarter about Z with its meshes; this turns them back.
Matrix3x4 TurnedBack(const Matrix3x4& stored) {
  Matrix3x4 turned = stored;
  for (int column = 0; column < 4; ++column) {
    turned.Set(0, column, stored(1, column));
    turned.Set(1, column, stored(0, column) == 0 ? 0.0f : -stored(0, column));
  }
  return turned;
}

/// A compile gives a static model one bone of its own, at 0, unturned.
void CountLostOfStaticBones(JobContext& job, const Skeleton& skeleton) {
  if (skeleton.Count() == 0) return;
  const StudioBone& bone = *skeleton.Bones[0];
  const Vec3 place = bone.Position;
  const EulerAngles turn = bone.Angles;
  const bool moved = place.x != 0 || place.y != 0 || place.z != 0 || turn.x != 0 || turn.y != 0 || turn.z != 0;
  if (skeleton.Count() > 1 || skeleton.Names[0] != StaticBone || moved) {
    job.Lose("bones of a static model that a compile does not give it");
  }
  if (bone.Contents != job.Model.Header()->Contents) job.Lose("contents of bones");
  const auto whole = job.Model.Name(job.Model.Header()->SurfacePropOffset);
  const auto own = bone.SurfacePropOffset == 0 ? whole : job.Model.NameOf(skeleton.Bones[0], bone.SurfacePropOffset);
  if (own && whole && !own->empty() && *own != *whole) job.Lose("surface properties of the bone of a static model");
}

/// Boxes that a compile makes of the vertices have the group that is said of their bone or of the nearest above it,
/// else 0. They stand by rising bones: what a box needs is known when the boxes of the bones above were told.
void WriteHitGroups(JobContext& job) {
  const auto header = job.Model.Header();
  const auto sets = job.Model.View().Array<StudioHitboxSet>(header->HitboxSetOffset, header->HitboxSetCount);
  const Skeleton* skeleton = GetSkeleton(job);
  if (!sets || sets->Count() == 0 || skeleton == nullptr) return;
  const auto boxes =
      job.Model.View().Array<StudioHitbox>((*sets)[0].Offset() + (*sets)[0]->HitboxOffset, (*sets)[0]->HitboxCount);
  if (!boxes) return;
  std::map<int64_t, int32_t> said;  // by bone
  for (const auto box : *boxes) {
    const int64_t bone = box->Bone;
    if (!skeleton->Bones.Holds(bone) || said.contains(bone)) continue;
    int64_t at = bone, steps = 0;
    for (; skeleton->Bones.Holds(at) && !said.contains(at) && steps < skeleton->Count(); ++steps) {
      at = skeleton->Bones[at]->Parent;
    }
    if (!job.Spend(RecordCost * (1 + steps)) || !job.ScriptWithinBounds()) return;
    const auto above = said.find(at);
    if (box->Group == (above == said.end() ? 0 : above->second)) continue;
    said[bone] = box->Group;
    job.Script().Text("$hgroup " + std::to_string(box->Group) + " " +
                      Quoted(job, skeleton->Names[static_cast<size_t>(bone)]) + "\n");
  }
}

/// The first frames that a block file keeps at hand are those of all bones, unless the script names some.
void CountLostZeroFrames(JobContext& job, const Skeleton& skeleton) {
  int64_t other = 0;
  for (const auto bone : skeleton.Bones) {
    other += ((bone->Flags ^ skeleton.Bones[0]->Flags) & BoneFlagZeroFrames) == 0 ? 0 : 1;
  }
  job.Lose("bones whose first frames are kept in another way", other);
}

void WriteAttachment(JobContext& job, std::string_view name, std::string_view bone, const Matrix3x4& placement) {
  Vec3 place;
  GetMatrixColumn(placement, 3, place);
  const PitchYawRoll angles = AnglesOf(placement);
  std::string line = "$attachment " + Quoted(job, name) + " " + Quoted(job, bone) + " " + Numbers(job, place);
  if (angles.Pitch != 0 || angles.Yaw != 0 || angles.Roll != 0) {
    line += " rotate " + Numbers(job, {angles.Pitch, angles.Yaw, angles.Roll});
  }
  if (!GivesBack(angles, placement)) job.Lose("attachment matrices that are no rotation");
  job.Script().Text(line + "\n");
}

}  // namespace

void WriteBoneStatements(JobContext& job) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return;
  if (IsStatic(job)) return CountLostOfStaticBones(job, *skeleton);
  CountLostZeroFrames(job, *skeleton);
  for (int64_t i = 0; i < skeleton->Count(); ++i) {
    if (!job.ScriptWithinBounds()) return;
    const StudioBone& bone = *skeleton->Bones[i];
    const std::string_view parent =
        skeleton->Bones.Holds(bone.Parent) ? skeleton->Names[static_cast<size_t>(bone.Parent)] : "";
    const EulerAngles angles = bone.Angles;
    core::TextWriter& script = job.Script();
    script.Text("$definebone ");
    script.Text(Quoted(job, skeleton->Names[static_cast<size_t>(i)]));
    for (const std::string& value : {Quoted(job, parent), Numbers(job, bone.Position), Degrees(job, angles.y),
                                     Degrees(job, angles.z), Degrees(job, angles.x)}) {
      script.Char(' ');
      script.Text(value);
    }
    script.Text(" 0 0 0 0 0 0\n");
    const uint32_t told = BoneFlagProcedural | BoneFlagHitbox | BoneFlagAttachment | BoneFlagVertexLods |
                          BoneFlagMerge | BoneFlagZeroFrames;
    if ((bone.Flags & ~told) != 0) job.Lose("bone flags without a statement");
    const Quat alignment = bone.Alignment;
    const bool aligned = alignment.x != 0 || alignment.y != 0 || alignment.z != 0;
    if (aligned) job.Lose("alignments of bones");
  }
  for (int64_t i = 0; i < skeleton->Count(); ++i) {
    if ((skeleton->Bones[i]->Flags & BoneFlagMerge) == 0) continue;
    job.Script().Text("$bonemerge " + Quoted(job, skeleton->Names[static_cast<size_t>(i)]) + "\n");
  }
  WriteSurfaces(job, *skeleton);
  WriteContents(job, *skeleton);
}

void WritePoseParameterStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table =
      job.Table<StudioPoseParameter>("pose parameter table", header->PoseParameterOffset, header->PoseParameterCount);
  if (!table) return;
  for (const auto pose : *table) {
    const auto name = job.NameOf("pose parameter name", pose, pose->NameOffset);
    if (!name || !job.ScriptWithinBounds()) return;
    std::string line =
        "$poseparameter " + Quoted(job, *name) + " " + Number(job, pose->Start) + " " + Number(job, pose->End);
    // The word sets the flag also where the length is 0.
    if ((pose->Flags & PoseParameterFlagLoop) != 0 || pose->Wrap != 0) line += " loop " + Number(job, pose->Wrap);
    job.Script().Text(line + "\n");
    const bool isMuteLoop = (pose->Flags & PoseParameterFlagLoop) == 0 && pose->Wrap != 0;
    if ((pose->Flags & ~PoseParameterFlagLoop) != 0 || isMuteLoop) {
      job.Lose("flags of pose parameters without a statement");
    }
  }
}

void WriteAttachmentStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioAttachment>("attachment table", header->AttachmentOffset, header->AttachmentCount);
  if (!table) return;
  for (const auto attachment : *table) {
    const auto name = job.NameOf("attachment name", attachment, attachment->NameOffset);
    const auto bone = BoneName(job, "attachment", attachment.Offset(), attachment->Bone);
    if (!name || !bone) continue;
    if (!job.ScriptWithinBounds()) return;
    WriteAttachment(job, *name, *bone, IsStatic(job) ? TurnedBack(attachment->Placement) : attachment->Placement);
    if (attachment->Flags != 0) job.Lose("attachment flags");
  }
}

void WriteHitboxStatements(JobContext& job) {
  const auto header = job.Model.Header();
  if ((header->Flags & ModelFlagGeneratedHitboxes) != 0) return WriteHitGroups(job);
  const auto sets = job.Table<StudioHitboxSet>("hit box set table", header->HitboxSetOffset, header->HitboxSetCount);
  if (!sets) return;
  for (const auto set : *sets) {
    const auto setName = job.NameOf("hit box set name", set, set->NameOffset);
    const auto boxes = job.Table<StudioHitbox>("hit box table", set.Offset() + set->HitboxOffset, set->HitboxCount);
    if (!setName || !boxes) continue;
    if (!job.ScriptWithinBounds()) return;
    job.Script().Text("$hboxset " + Quoted(job, *setName) + "\n");
    for (const auto box : *boxes) {
      const auto bone = BoneName(job, "hit box", box.Offset(), box->Bone);
      if (!bone) continue;
      if (!job.ScriptWithinBounds()) return;
      job.Script().Text("$hbox " + std::to_string(box->Group) + " " + Quoted(job, *bone) + " " +
                        Numbers(job, box->Minimum) + " " + Numbers(job, box->Maximum) + "\n");
      const auto name = box->NameOffset == 0 ? std::nullopt : job.Model.NameOf(box, box->NameOffset);
      if (name && !name->empty()) job.Lose("names of hit boxes");
    }
  }
}

}  // namespace tarnwick::decompiler::sources
