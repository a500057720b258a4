#include <algorithm>
#include <bit>

#include "model/animation_records.h"
#include "model/face_records.h"
#include "model/procedural_records.h"
#include "model/rigid_transform.h"
#include "model/script_records.h"
#include "view/scene/model_parts.h"
#include "view/scene/model_values.h"

namespace tarnwick::view {

namespace {

using model::ModelReader;

/// An animation of more frames plays its first ones; the number is one that a float counts exactly.
constexpr int32_t MostFrames = 1 << 24;
/// Blends on an axis, more than any sequence has.
constexpr int32_t MostBlends = 64;
/// Springs are less stiff, and bones shorter, in every sound file.
constexpr float LargestOfJiggle = 1e4f;

/// The records of a table, paid for; none for one that is damaged.
template <typename T>
core::RecordArray<T> TableOf(ModelReader& reader, std::string_view what, int64_t offset, int64_t count) {
  const auto table = reader.Table<T>(what, offset, count);
  if (!table || !reader.Spend(table->Count() * model::RecordCost)) return {};
  return *table;
}

void TakeDrivenBone(ModelReader& reader, const core::Record<model::StudioBone>& bone, size_t number, size_t count,
                    Scene& scene) {
  const auto driven = reader.Model.View().At<model::StudioDrivenBone>(bone.Offset() + bone->ProceduralOffset);
  if (!driven || BoneOrNone((*driven)->Driver, count) < 0) return;
  SceneDrivenBone taken{static_cast<int32_t>(number), (*driven)->Driver, {}};
  for (const auto trigger : TableOf<model::StudioTrigger>(
           reader, "trigger table", driven->Offset() + (*driven)->TriggerOffset, (*driven)->TriggerCount)) {
    taken.Triggers.push_back({Finite(trigger->InverseTolerance), Finite(trigger->DriverRotation),
                              Finite(trigger->Position), Finite(trigger->Rotation)});
  }
  if (!taken.Triggers.empty()) scene.DrivenBones.push_back(std::move(taken));
}

void TakeJiggle(ModelReader& reader, const core::Record<model::StudioBone>& bone, size_t number, Scene& scene) {
  const auto record = reader.Model.View().At<model::StudioJiggleBone>(bone.Offset() + bone->ProceduralOffset);
  if (!record) return;
  const auto value = [](float raw) { return std::clamp(Finite(raw), 0.0f, LargestOfJiggle); };
  const auto limit = [](float minimum, float maximum, float bounce) {
    return SceneJiggleLimit{std::clamp(Finite(minimum), -LargestOfJiggle, LargestOfJiggle),
                            std::clamp(Finite(maximum), -LargestOfJiggle, LargestOfJiggle), Finite(bounce)};
  };
  const model::StudioJiggleBone says = **record;
  SceneJiggle& taken = scene.Jiggles.emplace_back();
  taken.Bone = static_cast<int32_t>(number);
  taken.Flags = says.Flags;
  taken.Length = value(says.Length);
  taken.TipMass = value(says.TipMass);
  taken.YawStiffness = value(says.YawStiffness), taken.YawDamping = value(says.YawDamping);
  taken.PitchStiffness = value(says.PitchStiffness), taken.PitchDamping = value(says.PitchDamping);
  taken.AlongStiffness = value(says.AlongStiffness), taken.AlongDamping = value(says.AlongDamping);
  taken.AngleLimit = std::clamp(Finite(says.AngleLimit), 0.0f, 3.14159265f);
  taken.Yaw = limit(says.Yaw.Minimum, says.Yaw.Maximum, says.Yaw.Bounce);
  taken.Pitch = limit(says.Pitch.Minimum, says.Pitch.Maximum, says.Pitch.Bounce);
  taken.BaseMass = value(says.BaseMass);
  taken.BaseStiffness = value(says.BaseStiffness), taken.BaseDamping = value(says.BaseDamping);
  taken.BaseLimits[0] = limit(says.Left.Minimum, says.Left.Maximum, 0);
  taken.BaseLimits[1] = limit(says.Up.Minimum, says.Up.Maximum, 0);
  taken.BaseLimits[2] = limit(says.Forward.Minimum, says.Forward.Maximum, 0);
}

void TakeHitboxes(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto set :
       TableOf<model::StudioHitboxSet>(reader, "hitbox sets", header->HitboxSetOffset, header->HitboxSetCount)) {
    SceneHitboxSet taken{TextOf(reader, set, set->NameOffset), {}};
    for (const auto box :
         TableOf<model::StudioHitbox>(reader, "hitbox table", set.Offset() + set->HitboxOffset, set->HitboxCount)) {
      taken.Boxes.push_back({box->NameOffset != 0 ? TextOf(reader, box, box->NameOffset) : std::string(),
                             BoneOrNone(box->Bone, scene.Bones.size()), box->Group, BoxOf(box->Minimum, box->Maximum)});
    }
    scene.HitboxSets.push_back(std::move(taken));
  }
}

void TakeAttachments(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto one : TableOf<model::StudioAttachment>(reader, "attachment table", header->AttachmentOffset,
                                                         header->AttachmentCount)) {
    scene.Attachments.push_back(
        {TextOf(reader, one, one->NameOffset), BoneOrNone(one->Bone, scene.Bones.size()), Finite(one->Placement)});
  }
}

/// Chains of three bones, each of which hangs below the one before.
void TakeIkChains(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto chain :
       TableOf<model::StudioIkChain>(reader, "ik chain table", header->IkChainOffset, header->IkChainCount)) {
    SceneIkChain& taken = scene.IkChains.emplace_back();
    taken.Name = TextOf(reader, chain, chain->NameOffset);
    taken.Bones.fill(-1);
    const int32_t count = chain->LinkCount;
    const auto links = TableOf<model::StudioIkLink>(reader, "ik link table", chain.Offset() + chain->LinkOffset,
                                                    std::clamp(count, 0, 3));
    for (int64_t i = 0; i < links.Count(); ++i) {
      taken.Bones[static_cast<size_t>(i)] = BoneOrNone(links[i]->Bone, scene.Bones.size());
    }
    for (size_t i = 1; i < taken.Bones.size(); ++i) {
      int32_t above = taken.Bones[i];
      do {
        above = above < 0 ? -1 : scene.Bones[static_cast<size_t>(above)].Parent;
      } while (above >= 0 && above != taken.Bones[i - 1]);
      if (above < 0) taken.Bones.front() = -1;  // no limb
    }
  }
}

/// Locks of chains that are limbs.
std::vector<SceneIkLock> LocksAt(ModelReader& reader, int64_t offset, int64_t count, const Scene& scene) {
  std::vector<SceneIkLock> locks;
  for (const auto lock : TableOf<model::StudioIkLock>(reader, "ik lock table", offset, count)) {
    const int32_t chain = lock->Chain;
    if (chain < 0 || static_cast<size_t>(chain) >= scene.IkChains.size()) continue;
    if (scene.IkChains[static_cast<size_t>(chain)].Bones.front() < 0) continue;
    locks.push_back({chain, std::clamp(Finite(lock->PositionWeight), 0.0f, 1.0f),
                     std::clamp(Finite(lock->RotationWeight), 0.0f, 1.0f)});
  }
  return locks;
}

/// The values of a float table, all finite; none for a table that is damaged.
std::vector<float> FloatsAt(ModelReader& reader, int64_t offset, int64_t count) {
  const core::ImageView mdl = reader.Model.View();
  if (!mdl.Fits(offset, count, sizeof(float)) || !reader.Spend(count * int64_t{sizeof(float)})) return {};
  std::vector<float> values;
  values.reserve(static_cast<size_t>(count));
  for (int64_t i = 0; i < count; ++i) {
    values.push_back(Finite(*mdl.Value<float>(offset + i * int64_t{sizeof(float)})));
  }
  return values;
}

void TakeBlends(ModelReader& reader, const core::Record<model::StudioSeqDesc>& record, Scene& scene,
                SceneSequence& sequence) {
  sequence.Columns = std::clamp(int32_t{record->BlendSize[0]}, 1, MostBlends);
  sequence.Rows = std::clamp(int32_t{record->BlendSize[1]}, 1, MostBlends);
  const int64_t count = int64_t{sequence.Columns} * sequence.Rows;
  const auto animations = static_cast<int32_t>(scene.Animations.size());
  const auto table = reader.Model.View().Array<model::StudioShort>(record.Offset() + record->BlendOffset, count);
  if (animations > 0 && table && reader.Spend(count * 2)) {
    for (const auto number : *table) {
      sequence.Animations.push_back(number->Value >= 0 && number->Value < animations ? number->Value : 0);
    }
  } else {
    sequence.Columns = sequence.Rows = 1;
  }
  for (size_t axis = 0; axis < 2; ++axis) {
    const int32_t parameter = record->PoseParameter[axis];
    const bool has = parameter >= 0 && static_cast<size_t>(parameter) < scene.PoseParameters.size();
    sequence.PoseParameters[axis] = has ? parameter : -1;
    sequence.PoseStart[axis] = Finite(record->PoseStart[axis]);
    sequence.PoseEnd[axis] = Finite(record->PoseEnd[axis]);
  }
  if (record->PoseKeyOffset == 0 || count == 1) return;
  const std::vector<float> keys =
      FloatsAt(reader, record.Offset() + record->PoseKeyOffset, int64_t{sequence.Columns} + sequence.Rows);
  if (keys.empty()) return;
  const auto rows = keys.begin() + sequence.Columns;
  sequence.PoseKeys = {std::vector<float>(keys.begin(), rows), std::vector<float>(rows, keys.end())};
}

void TakeLayers(ModelReader& reader, const core::Record<model::StudioSeqDesc>& record, Scene& scene,
                SceneSequence& sequence) {
  for (const auto layer : TableOf<model::StudioAutoLayer>(reader, "layer table", record.Offset() + record->LayerOffset,
                                                          record->LayerCount)) {
    const bool byPose = (layer->Flags & LayerFlagPose) != 0 && layer->PoseParameter >= 0 &&
                        static_cast<size_t>(layer->PoseParameter) < scene.PoseParameters.size();
    sequence.Layers.push_back({layer->Sequence, byPose ? layer->PoseParameter : -1, Finite(layer->Start),
                               Finite(layer->Peak), Finite(layer->Tail), Finite(layer->End), layer->Flags});
  }
}

void TakeAnimations(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto animation :
       TableOf<model::StudioAnimDesc>(reader, "animation table", header->AnimOffset, header->AnimCount)) {
    scene.Animations.push_back({TextOf(reader, animation, animation->NameOffset), Finite(animation->Fps),
                                std::clamp(int32_t{animation->FrameCount}, 1, MostFrames),
                                (animation->Flags & model::AnimFlagDelta) != 0});
  }
}

void TakePoseParameters(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto one : TableOf<model::StudioPoseParameter>(reader, "pose parameter table", header->PoseParameterOffset,
                                                            header->PoseParameterCount)) {
    scene.PoseParameters.push_back({TextOf(reader, one, one->NameOffset), Finite(one->Start), Finite(one->End),
                                    std::max(0.0f, Finite(one->Wrap)),
                                    (one->Flags & model::PoseParameterFlagLoop) != 0});
  }
}

}  // namespace

void TakeSkeleton(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  const model::Skeleton* skeleton = model::GetSkeleton(reader);
  if (skeleton != nullptr && reader.Spend(skeleton->Count() * model::RecordCost)) {
    const auto count = static_cast<size_t>(skeleton->Count());
    scene.Bones.reserve(count);
    for (size_t i = 0; i < count; ++i) {
      const auto bone = skeleton->Bones[static_cast<int64_t>(i)];
      if (!reader.Spend(static_cast<int64_t>(skeleton->Names[i].size()))) break;
      SceneBone& taken = scene.Bones.emplace_back();
      taken.Name = skeleton->Names[i];
      taken.Parent = bone->Parent < static_cast<int32_t>(i) ? std::max(int32_t{bone->Parent}, -1) : -1;
      taken.Position = Finite(bone->Position);
      taken.Rotation = Finite(bone->Rotation);
      taken.PoseToBone = Finite(bone->PoseToBone);
      taken.Flags = bone->Flags;
      if (bone->ProceduralOffset != 0 && bone->ProceduralType == model::BoneProcedureJiggle) {
        TakeJiggle(reader, bone, i, scene);
      }
      if (bone->ProceduralOffset != 0 && bone->ProceduralType == model::BoneProcedureDriven) {
        TakeDrivenBone(reader, bone, i, count, scene);
      }
    }
  }
  TakeIkChains(reader, scene);
  scene.AutoplayLocks = LocksAt(reader, header->IkLockOffset, header->IkLockCount, scene);
  TakeAttachments(reader, scene);
  TakeHitboxes(reader, scene);
  scene.HullBox = BoxOf(header->HullMinimum, header->HullMaximum);
  scene.ViewBox = BoxOf(header->ViewMinimum, header->ViewMaximum);
  scene.EyePosition = Finite(header->EyePosition);
  scene.IllumPosition = Finite(header->IllumPosition);
}

void TakeMaterials(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto texture :
       TableOf<model::StudioTexture>(reader, "texture table", header->TextureOffset, header->TextureCount)) {
    scene.Materials.push_back(TextOf(reader, texture, texture->NameOffset));
  }
  for (const auto directory : TableOf<model::StudioOffset>(
           reader, "material directory table", header->MaterialDirectoryOffset, header->MaterialDirectoryCount)) {
    scene.MaterialDirectories.push_back(TextAt(reader, directory->Offset));
  }
  const int64_t slots = header->SkinReferenceCount;
  const int64_t families = header->SkinFamilyCount;
  const auto table = slots > 0 && families > 0
                         ? TableOf<model::StudioShort>(reader, "skin table", header->SkinOffset, slots * families)
                         : core::RecordArray<model::StudioShort>();
  for (int64_t f = 0; table.Count() > 0 && f < families; ++f) {
    std::vector<int32_t>& skin = scene.Skins.emplace_back();
    for (int64_t s = 0; s < slots; ++s) {
      const int32_t material = table[f * slots + s]->Value;
      skin.push_back(material >= 0 && static_cast<size_t>(material) < scene.Materials.size() ? material : -1);
    }
  }
}

void TakeSequences(ModelReader& reader, Scene& scene) {
  TakePoseParameters(reader, scene);
  TakeAnimations(reader, scene);
  const auto header = reader.Model.Header();
  const size_t bones = scene.Bones.size();
  for (const auto record :
       TableOf<model::StudioSeqDesc>(reader, "sequence table", header->SequenceOffset, header->SequenceCount)) {
    SceneSequence& sequence = scene.Sequences.emplace_back();
    sequence.Name = TextOf(reader, record, record->LabelOffset);
    sequence.Activity = TextOf(reader, record, record->ActivityOffset);
    sequence.Flags = record->Flags;
    sequence.FadeIn = Finite(record->FadeIn);
    sequence.FadeOut = Finite(record->FadeOut);
    sequence.Extent = BoxOf(record->Minimum, record->Maximum);
    if ((record->Flags & model::SequenceFlagDeclared) != 0) continue;
    TakeBlends(reader, record, scene, sequence);
    TakeLayers(reader, record, scene, sequence);
    sequence.IkLocks = LocksAt(reader, record.Offset() + record->IkLockOffset, record->IkLockCount, scene);
    if (record->WeightOffset != 0) {
      sequence.BoneWeights = FloatsAt(reader, record.Offset() + record->WeightOffset, static_cast<int64_t>(bones));
      // Nearly all sequences move all bones; they need no table.
      if (std::all_of(sequence.BoneWeights.begin(), sequence.BoneWeights.end(), [](float w) { return w == 1; })) {
        sequence.BoneWeights.clear();
      }
      sequence.IsPartial = !sequence.BoneWeights.empty();
    }
  }
}

void TakeFace(ModelReader& reader, Scene& scene) {
  const auto header = reader.Model.Header();
  for (const auto flex :
       TableOf<model::StudioFlexDesc>(reader, "flex descriptor table", header->FlexDescOffset, header->FlexDescCount)) {
    scene.Flexes.push_back(TextOf(reader, flex, flex->NameOffset));
  }
  for (const auto controller : TableOf<model::StudioFlexController>(
           reader, "flex controller table", header->FlexControllerOffset, header->FlexControllerCount)) {
    scene.FlexControllers.push_back({TextOf(reader, controller, controller->NameOffset),
                                     TextOf(reader, controller, controller->TypeOffset), Finite(controller->Minimum),
                                     Finite(controller->Maximum, 1)});
  }
  for (const auto rule :
       TableOf<model::StudioFlexRule>(reader, "flex rule table", header->FlexRuleOffset, header->FlexRuleCount)) {
    if (rule->FlexDesc < 0 || static_cast<size_t>(rule->FlexDesc) >= scene.Flexes.size()) continue;
    SceneFlexRule taken{rule->FlexDesc, {}};
    for (const auto op :
         TableOf<model::StudioFlexOp>(reader, "flex operation table", rule.Offset() + rule->OpOffset, rule->OpCount)) {
      const int32_t bits = op->Operand;
      taken.Ops.push_back({op->Op, bits, Finite(std::bit_cast<float>(bits))});
    }
    scene.FlexRules.push_back(std::move(taken));
  }
}

}  // namespace tarnwick::view
