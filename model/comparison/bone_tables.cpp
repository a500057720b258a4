#include <array>

#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/procedural_records.h"

namespace tarnwick::model {

namespace {

/// The step of a track that turns by up to half a turn. A bone that points straight up has many sets of angles for one
/// rotation; which of them a track holds says nothing, and no step up to this one shows in its frames.
constexpr double RotationScaleGrain = 9.6e-5;

constexpr RecordField BoneFields[] = {
    {"parent", offsetof(StudioBone, Parent)},
    {"controllers", offsetof(StudioBone, Controllers), 6},
    {"position scale", offsetof(StudioBone, PositionScale), 3, TextGrain},
    {"rotation scale", offsetof(StudioBone, RotationScale), 3, RotationScaleGrain},
    {"procedure", offsetof(StudioBone, ProceduralType)},
    {"contents", offsetof(StudioBone, Contents)},
};

constexpr uint32_t SayableBoneFlags =
    BoneFlagProcedural | BoneFlagHitbox | BoneFlagAttachment | BoneFlagVertexLods | BoneFlagMerge;

constexpr RecordField PoseFields[] = {
    {"position", offsetof(StudioBone, Position), 3, TextGrain},
    {"rotation", offsetof(StudioBone, Rotation), 4, TextGrain},
    {"angles", offsetof(StudioBone, Angles), 3, AngleGrain},
    {"pose to bone", offsetof(StudioBone, PoseToBone), 12, AngleGrain},
    {"alignment", offsetof(StudioBone, Alignment), 4, AngleGrain},
};

constexpr RecordField TriggerFields[] = {
    {"tolerance of a trigger", offsetof(StudioTrigger, InverseTolerance), 1, AngleGrain},
    {"driver's rotation of a trigger", offsetof(StudioTrigger, DriverRotation), 4, AngleGrain},
    {"position of a trigger", offsetof(StudioTrigger, Position), 3, TextGrain},
    {"rotation of a trigger", offsetof(StudioTrigger, Rotation), 4, AngleGrain},
};

constexpr size_t FloatsBehindFlags = (sizeof(StudioJiggleBone) - offsetof(StudioJiggleBone, Length)) / sizeof(float);

using BoneRecord = core::Record<StudioBone>;

void CompareJiggleBones(const ComparedModels& models, const BoneRecord& first, const BoneRecord& second,
                        const std::string& name) {
  const auto a = models.First.Model.View().At<StudioJiggleBone>(first.Offset() + first->ProceduralOffset);
  const auto b = models.Second.Model.View().At<StudioJiggleBone>(second.Offset() + second->ProceduralOffset);
  if (!a || !b) return;
  const auto where = [&] { return name; };
  models.Differences.Whole(ModelTable::ProceduralBones, "flags", where, (*a)->Flags, (*b)->Flags);
  const auto values = [](const StudioJiggleBone& bone) {
    std::array<float, FloatsBehindFlags> floats{};
    std::memcpy(floats.data(), reinterpret_cast<const char*>(&bone) + offsetof(StudioJiggleBone, Length),
                sizeof floats);
    return floats;
  };
  const auto one = values(**a);
  const auto other = values(**b);
  for (size_t i = 0; i < one.size(); ++i) {
    models.Differences.Numbers(
        ModelTable::ProceduralBones, "jiggle value", [&] { return name + ", value " + std::to_string(i); },
        {&one[i], 1}, {&other[i], 1}, AngleGrain);
  }
}

void CompareDrivenBones(const ComparedModels& models, const BoneRecord& first, const BoneRecord& second,
                        const std::string& name) {
  const auto a = models.First.Model.View().At<StudioDrivenBone>(first.Offset() + first->ProceduralOffset);
  const auto b = models.Second.Model.View().At<StudioDrivenBone>(second.Offset() + second->ProceduralOffset);
  if (!a || !b) return;
  const auto where = [&] { return name; };
  models.Differences.Whole(ModelTable::ProceduralBones, "driver", where, (*a)->Driver, (*b)->Driver);
  CompareTables<StudioTrigger>(
      models, ModelTable::ProceduralBones, "triggers", where, {a->Offset() + (*a)->TriggerOffset, (*a)->TriggerCount},
      {b->Offset() + (*b)->TriggerOffset, (*b)->TriggerCount}, [&](const auto& one, const auto& other, int64_t i) {
        CompareFields(models.Differences, ModelTable::ProceduralBones, TriggerFields, *one, *other,
                      [&] { return name + ", trigger " + std::to_string(i); });
      });
}

}  // namespace

void CompareBones(const ComparedModels& models) {
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  CompareTables<StudioBone>(
      models, ModelTable::Bones, "bones", {a->BoneOffset, a->BoneCount}, {b->BoneOffset, b->BoneCount},
      [&](const BoneRecord& first, const BoneRecord& second, int64_t i) {
        const std::string name = Place("bone", TextOf(models.First, first, first->NameOffset), i);
        const auto where = [&] { return std::string(name); };
        DifferenceList& differences = models.Differences;
        differences.Text(ModelTable::Bones, "name", where, TextOf(models.First, first, first->NameOffset),
                         TextOf(models.Second, second, second->NameOffset));
        differences.Text(ModelTable::Bones, "surface property", where,
                         TextOf(models.First, first, first->SurfacePropOffset),
                         TextOf(models.Second, second, second->SurfacePropOffset));
        CompareFields(differences, ModelTable::Bones, BoneFields, *first, *second, where);
        differences.Flags(ModelTable::Bones, "flags", where, first->Flags, second->Flags, SayableBoneFlags);
        if (first->PhysicsSolid != second->PhysicsSolid) {
          differences.Add(ModelTable::Bones, "physics solid", name, std::to_string(first->PhysicsSolid),
                          std::to_string(second->PhysicsSolid), 0, false, models.LostWithPhysics());
        }
        CompareFields(differences, ModelTable::Poses, PoseFields, *first, *second, where);
        if (first->ProceduralType != second->ProceduralType) return;
        if (first->ProceduralType == BoneProcedureJiggle) CompareJiggleBones(models, first, second, name);
        if (first->ProceduralType == BoneProcedureDriven) CompareDrivenBones(models, first, second, name);
      });
}

}  // namespace tarnwick::model
