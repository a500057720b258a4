#include "model/pose_decoder.h"

#include <optional>

#include "model/bone_math.h"

namespace tarnwick::model {

namespace {

bool IsDelta(const AnimRecord& anim) {
  return (anim->Flags & AnimIsDelta) != 0;
}

/// The values of the three axes whose runs stand at `triple`.
Vec3 RunValues(const AnimRecord& anim, int64_t triple, int32_t frame, const Vec3& scale) {
  return {DecodeRunValue(frame, RunsOfAxis(anim.Image, triple, 0), scale.x),
          DecodeRunValue(frame, RunsOfAxis(anim.Image, triple, 1), scale.y),
          DecodeRunValue(frame, RunsOfAxis(anim.Image, triple, 2), scale.z)};
}

}  // namespace

Quat DefaultRotation(const StudioBone& bone, bool delta) {
  return delta ? Quat{0, 0, 0, 1} : bone.Rotation;
}

Vec3 DefaultPosition(const StudioBone& bone, bool delta) {
  return delta ? Vec3{0, 0, 0} : bone.Position;
}

Quat DecodeBoneRotation(int32_t frame, const StudioBone& bone, const AnimRecord& anim) {
  Quat result = DefaultRotation(bone, IsDelta(anim));
  if ((anim->Flags & AnimRawRotation48) != 0) {
    if (const auto packed = anim.Image.At<PackedQuat48>(anim.Payload())) DecodeQuat48(**packed, result);
  } else if ((anim->Flags & AnimRawRotation64) != 0) {
    if (const auto packed = anim.Image.At<PackedQuat64>(anim.Payload())) DecodeQuat64(**packed, result);
  } else if ((anim->Flags & AnimRunRotation) != 0) {
    const Vec3 turned = RunValues(anim, anim.Payload(), frame, bone.RotationScale);
    EulerAngles angles{turned.x, turned.y, turned.z};
    if (!IsDelta(anim)) angles = {angles.x + bone.Angles.x, angles.y + bone.Angles.y, angles.z + bone.Angles.z};
    EulerToQuat(angles, result);
    if (!IsDelta(anim) && (bone.Flags & BoneFlagFixedAlignment) != 0) AlignQuat(bone.Alignment, result, result);
  }
  return result;
}

Vec3 DecodeBonePosition(int32_t frame, const StudioBone& bone, const AnimRecord& anim) {
  Vec3 result = DefaultPosition(bone, IsDelta(anim));
  if ((anim->Flags & AnimRawPosition) != 0) {
    if (const auto packed = anim.Image.At<PackedVec48>(anim.RawPosition())) DecodeVec48(**packed, result);
  } else if ((anim->Flags & AnimRunPosition) != 0) {
    result = RunValues(anim, anim.PositionRuns(), frame, bone.PositionScale);
    if (!IsDelta(anim)) {
      result = {result.x + bone.Position.x, result.y + bone.Position.y, result.z + bone.Position.z};
    }
  }
  return result;
}

}  // namespace tarnwick::model
