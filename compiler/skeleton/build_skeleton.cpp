#include "compiler/skeleton/build_skeleton.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "compiler/skeleton/euler.h"
#include "compiler/skeleton/source_placement.h"
#include "core/paths.h"
#include "model/bone_math.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

using model::Matrix3x4;
using model::RigidTransform;
using model::Vec3;

namespace {

/// A box that is not above this along each axis is none.
constexpr float LeastHitbox = 1.0f;

Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vec3 Unit(const Vec3& v) {
  const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return length > 0 ? Vec3{v.x / length, v.y / length, v.z / length} : v;
}

bool GivesAngles(const Matrix3x4& matrix, const model::PitchYawRoll& typed) {
  model::PitchYawRoll angles;
  model::MatrixToAngles(matrix, angles);
  return angles.Pitch == typed.Pitch && angles.Yaw == typed.Yaw && angles.Roll == typed.Roll;
}

/// The rotation with typed angles. The two factors between degrees and radians are not quite each other's inverse:
/// where angles would come back otherwise than typed, and a rotation a hair away gives them back, that one is taken.
Matrix3x4 RotationOf(const model::PitchYawRoll& typed) {
  Matrix3x4 plain;
  model::AnglesToMatrix(typed, plain);
  if (GivesAngles(plain, typed)) return plain;
  const auto radians = [](float degrees) { return static_cast<float>(double{degrees} / model::RadiansToDegrees); };
  const model::EulerAngles angles = {radians(typed.Roll), radians(typed.Pitch), radians(typed.Yaw)};
  const Matrix3x4 near = MatrixOf(RigidTransform::Of(angles, Vec3{0, 0, 0}));
  constexpr float Hair = 2.4e-7f;
  bool isNear = true;
  for (int i = 0; i < 12; ++i) isNear = isNear && std::abs(near.m[i] - plain.m[i]) <= Hair;
  return isNear && GivesAngles(near, typed) ? near : plain;
}

Matrix3x4 Typed(const PlanAttachment& attachment) {
  Matrix3x4 placement = RotationOf(attachment.Rotation.value_or(model::PitchYawRoll{0, 0, 0}));
  model::SetMatrixColumn(placement, 3, attachment.Position);
  if (attachment.Axes) {
    const auto& a = *attachment.Axes;
    const Vec3 x = Unit({a[0], a[1], a[2]});
    const Vec3 y = Unit(Cross({a[3], a[4], a[5]}, x));
    model::SetMatrixColumn(placement, 0, x);
    model::SetMatrixColumn(placement, 1, y);
    model::SetMatrixColumn(placement, 2, Cross(x, y));
  }
  return placement;
}

/// A static model's attachments are turned with its meshes by a quarter about Z.
Matrix3x4 QuarterTurned(const Matrix3x4& placement) {
  Matrix3x4 turned = placement;
  for (int column = 0; column < 4; ++column) {
    turned.Set(0, column, -placement(1, column));
    turned.Set(1, column, placement(0, column));
  }
  return turned;
}

void BuildAttachments(CompileContext& context, ModelBones& bones, BuiltSkeleton& skeleton) {
  for (const PlanAttachment& typed : context.Plan.Attachments) {
    BuiltAttachment attachment{typed.Name, 0, Typed(typed)};
    const bool isOfModel = bones.Static || typed.Absolute || typed.Bone.empty();
    if (const auto moved = isOfModel ? PlacementOf(typed.Settings) : std::nullopt) {
      model::ConcatMatrix(MatrixOf(*moved), attachment.Placement, attachment.Placement);
    }
    if (bones.Static) {
      attachment.Placement = QuarterTurned(attachment.Placement);
    } else {
      attachment.Bone = typed.Bone.empty() ? 0 : bones.Find(typed.Bone);
      if (attachment.Bone < 0) {
        context.Warning(typed.At,
                        "no bone is called " + qc::Shown(typed.Bone) + "; the attachment hangs from the first");
        attachment.Bone = 0;
      }
      const Matrix3x4 inverse = MatrixOf(bones.Bones[static_cast<size_t>(attachment.Bone)].ToModel.Inverse());
      if (isOfModel) {
        model::ConcatMatrix(inverse, attachment.Placement, attachment.Placement);
      } else if (const model::RigidTransform* stood = bones.PlaceOfDropped(typed.Bone)) {
        model::ConcatMatrix(MatrixOf(*stood), attachment.Placement, attachment.Placement);
      }
      if (typed.WorldAlign) {
        for (int column = 0; column < 3; ++column) {
          model::SetMatrixColumn(attachment.Placement, column,
                                 {inverse(0, column), inverse(1, column), inverse(2, column)});
        }
      }
    }
    bones.Mark(attachment.Bone, model::BoneFlagAttachment);
    skeleton.Attachments.push_back(std::move(attachment));
  }
}

struct Box {
  Vec3 Least = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
                std::numeric_limits<float>::max()};
  Vec3 Most = {-Least.x, -Least.y, -Least.z};

  void Take(const Vec3& p) {
    Least = {std::min(Least.x, p.x), std::min(Least.y, p.y), std::min(Least.z, p.z)};
    Most = {std::max(Most.x, p.x), std::max(Most.y, p.y), std::max(Most.z, p.z)};
  }
};

/// The box round one that stands turned in another space.
Box Placed(const model::RigidTransform& placement, const Vec3& least, const Vec3& most) {
  Box box;
  for (const float x : {float{least.x}, float{most.x}}) {
    for (const float y : {float{least.y}, float{most.y}}) {
      for (const float z : {float{least.z}, float{most.z}}) box.Take(placement.Apply({x, y, z}));
    }
  }
  return box;
}

int32_t GroupOf(const CompileContext& context, const ModelBones& bones, int32_t bone) {
  for (; bone >= 0; bone = bones.Bones[static_cast<size_t>(bone)].Parent) {
    for (const PlanBoneNumber& group : context.Plan.HitGroups) {
      if (bones.Named(group.Bone) == bone) return group.Value;
    }
  }
  return 0;
}

std::vector<BuiltHitbox> GenerateBoxes(const CompileContext& context, const ModelBones& bones,
                                       const BuiltMeshes& meshes) {
  const size_t count = bones.Bones.size();
  std::vector<RigidTransform> toBone;
  for (const ModelBone& bone : bones.Bones) toBone.push_back(bone.ToModel.Inverse());
  std::vector<Box> boxes(count);
  for (const model::VvdVertex& vertex : meshes.Vertices) {
    for (int i = 0; i < std::min<int>(vertex.WeightCount, 3); ++i) {
      const size_t bone = vertex.Bones[i];
      if (bone < count) boxes[bone].Take(toBone[bone].Apply(vertex.Position));
    }
  }
  if (!context.Plan.SkipBonesInBoxes) {
    for (size_t i = 0; i < count; ++i) {
      boxes[i].Take({0, 0, 0});
      const int32_t parent = bones.Bones[i].Parent;
      if (parent >= 0) boxes[static_cast<size_t>(parent)].Take(bones.Bones[i].Position);
    }
  }
  std::vector<BuiltHitbox> kept;
  for (size_t i = 0; i < count; ++i) {
    const Box& box = boxes[i];
    if (!(box.Most.x - box.Least.x > LeastHitbox) || !(box.Most.y - box.Least.y > LeastHitbox) ||
        !(box.Most.z - box.Least.z > LeastHitbox)) {
      continue;
    }
    const auto bone = static_cast<int32_t>(i);
    kept.push_back({bone, GroupOf(context, bones, bone), box.Least, box.Most});
  }
  return kept;
}

void BuildHitboxes(CompileContext& context, ModelBones& bones, const BuiltMeshes& meshes, BuiltSkeleton& skeleton) {
  if (!context.Plan.GivenHitboxes) {
    skeleton.HitboxSets.push_back({"default", GenerateBoxes(context, bones, meshes)});
  }
  for (const PlanHitboxSet& typed : context.Plan.HitboxSets) {
    BuiltHitboxSet& set = skeleton.HitboxSets.emplace_back(BuiltHitboxSet{typed.Name, {}});
    for (const PlanHitbox& box : typed.Boxes) {
      const int32_t bone = bones.Find(box.Bone);
      if (bone < 0) {
        context.Warning(box.At, "no bone is called " + qc::Shown(box.Bone) + "; its hit box is left out");
        continue;
      }
      if (box.Minimum.x > box.Maximum.x || box.Minimum.y > box.Maximum.y || box.Minimum.z > box.Maximum.z) {
        context.Warning(box.At, "the hit box is inside out: nothing can hit it");
      }
      const model::RigidTransform* stood = bones.PlaceOfDropped(box.Bone);
      const Box placed = stood == nullptr ? Box{box.Minimum, box.Maximum} : Placed(*stood, box.Minimum, box.Maximum);
      set.Boxes.push_back({bone, box.Group, placed.Least, placed.Most});
    }
  }
  for (const BuiltHitboxSet& set : skeleton.HitboxSets) {
    for (const BuiltHitbox& box : set.Boxes) bones.Mark(box.Bone, model::BoneFlagHitbox);
  }
}

void BuildIk(CompileContext& context, ModelBones& bones, BuiltSkeleton& skeleton) {
  for (const PlanIkChain& typed : context.Plan.IkChains) {
    BuiltIkChain chain{typed.Name, {}};
    int32_t bone = bones.Find(typed.Bone);
    for (int i = 0; i < 3 && bone >= 0; ++i) {
      model::StudioIkLink link = {};
      link.Bone = bone;
      chain.Links.insert(chain.Links.begin(), link);
      bone = bones.Bones[static_cast<size_t>(bone)].Parent;
    }
    if (chain.Links.empty()) {
      qc::NearName near(typed.Bone);
      for (const ModelBone& other : bones.Bones) near.Offer(other.Name);
      context.Warning(typed.At, "no bone is called " + qc::Shown(typed.Bone) + "; the chain " + qc::Shown(typed.Name) +
                                    " holds nothing" + qc::DidYouMean(near.Best()));
    } else if (chain.Links.size() < 3) {
      context.Warning(typed.At, "the chain " + qc::Shown(typed.Name) + " needs a bone with two parents");
    }
    if (!chain.Links.empty()) {
      chain.Links.front().KneeDirection = typed.Knee;
      bones.Mark(chain.Links.back().Bone, model::BoneFlagAttachment);
    }
    skeleton.IkChains.push_back(std::move(chain));
  }
  for (const PlanIkLock& typed : context.Plan.AutoplayLocks) {
    const auto& chains = context.Plan.IkChains;
    const auto chain = std::ranges::find_if(
        chains, [&](const PlanIkChain& c) { return core::EqualIgnoringCase(c.Name, typed.Chain); });
    if (chain == chains.end()) {
      context.Warning(typed.At, "no $ikchain is called " + qc::Shown(typed.Chain));
      continue;
    }
    model::StudioIkLock lock = {};
    lock.Chain = static_cast<int32_t>(chain - chains.begin());
    lock.PositionWeight = typed.PositionWeight;
    lock.RotationWeight = typed.RotationWeight;
    skeleton.AutoplayLocks.push_back(lock);
  }
}

}  // namespace

void BuildSkeleton(CompileContext& context, ModelBones& bones, const BuiltMeshes& meshes, BuiltSkeleton& skeleton) {
  BuildAttachments(context, bones, skeleton);
  BuildHitboxes(context, bones, meshes, skeleton);
  BuildIk(context, bones, skeleton);
  if (!bones.Static) BuildProceduralBones(context, bones, skeleton);
}

}  // namespace tarnwick::compiler
