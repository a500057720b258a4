#include "support/plain_animation.h"

#include <vector>

#include "model/bone_math.h"
#include "support/plain_pose.h"

namespace tarnwick::tests {

using namespace decompiler;

namespace {

void Apply(const Matrix3x4& left, Quat& rotation, Vec3& position) {
  Matrix3x4 pose;
  QuatPosToMatrix(rotation, position, pose);
  ConcatMatrix(left, pose, pose);
  MatrixToQuatPos(pose, rotation, position);
}

}  // namespace

void PlainAnimationSmd(std::FILE* file, JobContext& job, const core::Record<StudioAnimDesc>& animation) {
  const Skeleton& skeleton = *GetSkeleton(job);
  const auto count = static_cast<size_t>(skeleton.Count());
  std::fprintf(file, "version 1\nnodes\n");
  for (size_t b = 0; b < count; ++b) {
    std::fprintf(file, "%3d \"%s\" %d\n", static_cast<int>(b), std::string(skeleton.Names[b]).c_str(),
                 skeleton.Bones[static_cast<int64_t>(b)]->Parent);
  }
  std::fprintf(file, "end\nskeleton\n");
  std::vector<Vec3> positions(count);
  std::vector<Quat> rotations(count);
  for (int32_t t = 0; t <= animation->FrameCount; ++t) {
    std::fprintf(file, "time %d\n", t);
    DecodePoseAtFrame(job, skeleton.Bones, animation, t == 0 ? 0 : t - 1, positions, rotations);
    for (size_t b = 0; b < count; ++b) {
      const StudioBone& bone = *skeleton.Bones[static_cast<int64_t>(b)];
      Matrix3x4 left;
      if ((animation->Flags & AnimFlagDelta) != 0 && !job.DeltaReference.empty()) {
        QuatPosToMatrix(bone.Rotation, bone.Position, left);
        Apply(left, rotations[b], positions[b]);
      }
      if (bone.Parent == -1 && !job.KeepRotations()) {
        AnglesPosToMatrix({0, 270, 0}, {0, 0, 0}, left);
        Apply(left, rotations[b], positions[b]);
      }
      EulerAngles angles;
      QuatToEuler(rotations[b], angles);
      const Vec3& p = positions[b];
      std::fprintf(file, "%3d %f %f %f %f %f %f\n", static_cast<int>(b), static_cast<double>(p.x),
                   static_cast<double>(p.y), static_cast<double>(p.z), static_cast<double>(angles.x),
                   static_cast<double>(angles.y), static_cast<double>(angles.z));
    }
  }
  std::fprintf(file, "end\n");
}

std::string PlainAnimationText(JobContext& job, const core::Record<StudioAnimDesc>& animation) {
  std::FILE* const file = std::tmpfile();
  PlainAnimationSmd(file, job, animation);
  std::string text(static_cast<size_t>(std::ftell(file)), '\0');
  std::rewind(file);
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  return text;
}

}  // namespace tarnwick::tests
